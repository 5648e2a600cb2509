// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/EvernoteImporter.h"

#include "conversion/TextUtilities.h"
#include "editor/DocumentForms.h"
#include "foundation/Platform.h"
#include "import/ExportedNotes.h"
#include "import/Imports.h"
#include "library/Properties.h"
#include "organising/contexts/Contexts.h"
#include "tests/support/Notebook.h"

#include <QCryptographicHash>
#include <QFileInfo>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

QByteArray hashOf(const QByteArray &bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex();
}

QByteArray resource(const QByteArray &bytes, const QByteArray &rest)
{
    return "<resource><data encoding=\"base64\">\n" + bytes.toBase64() + "\n</data>" + rest + "</resource>\n";
}

QByteArray content(const QByteArray &body)
{
    return "<content><![CDATA[<?xml version=\"1.0\"?><!DOCTYPE en-note SYSTEM \"x.dtd\"><en-note>" + body +
           "</en-note>]]></content>\n";
}

class Notes : public test::Notebook
{
protected:
    Imported import(const QByteArray &notes, const Progress &progress = {})
    {
        const QByteArray head = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE en-export SYSTEM \"e.dtd\">\n";
        return importFile(write(u"/Book/Export.enex"_s, head + "<en-export>" + notes), at(u"/Book"_s), progress);
    }
    [[nodiscard]] QString body(const QString &name) const
    {
        return tm_getInnerHTML(QString::fromUtf8(read(u"/Book/"_s + name)));
    }
};

} // namespace

TEST_F(Notes, BecomeDocuments)
{
    settings().setObject(u"contextsEnabled"_s, true);
    const Imported imported = import(
        "<note><title>One &amp; &uuml;?</title>" + content("<div>Words<en-todo checked=\"true\"/>done</div>") +
        "<created>20260102T030405Z</created><updated>20260203T040506Z</updated><tag>first</tag><tag>second</tag>"
        "<note-attributes><author>Somebody</author><source-url>https://site.org/</source-url></note-attributes></note>"
        "<note><title>One &amp; ü?</title>" +
        content("more") + "</note>" + "<note>" + content("no title") + "<tag>lost</tag></note></en-export>");
    EXPECT_EQ(imported.fault, QString());
    const QString first = at(u"/Book/One - ü.html"_s);
    EXPECT_EQ(imported.documents, (QStringList{first, at(u"/Book/One - ü 1.html"_s)}));

    EXPECT_EQ(body(u"One - ü.html"_s),
              u"<div>Words<input type=\"checkbox\" class=\"tm_checkbox\" checked>done</div>"_s);
    EXPECT_TRUE(tm_generatorIsTomelet(QString::fromUtf8(read(u"/Book/One - ü.html"_s))));
    const QVariantMap properties = plist(u"/Book/One - ü.html.plist"_s);
    EXPECT_EQ(properties.value(u"author"_s).toString(), u"Somebody"_s);
    EXPECT_EQ(properties.value(u"URL"_s).toString(), u"https://site.org/"_s);
    EXPECT_EQ(properties.value(u"CreationDate"_s).toDateTime(), QDateTime({2026, 1, 2}, {3, 4, 5}, Qt::UTC));
    EXPECT_EQ(properties.value(u"Tags"_s).toStringList(), (QStringList{u"first"_s, u"second"_s}));
    EXPECT_EQ(properties.size(), 4);
    EXPECT_EQ(tm_listOfAllItemsForTag(u"second"_s), QStringList{first});
    EXPECT_EQ(QFileInfo(first).lastModified(), QDateTime({2026, 2, 3}, {4, 5, 6}, Qt::UTC));
    // Nothing of it is left for the next.
    EXPECT_FALSE(exists(u"/Book/One - ü 1.html.plist"_s));
    EXPECT_GT(QFileInfo(imported.documents.last()).lastModified(), QDateTime::currentDateTime().addSecs(-60));
    EXPECT_TRUE(exists(u"/Book/Export.enex"_s));
}

TEST_F(Notes, FindTheirFilesByTheirHashes)
{
    const auto media = [](const QByteArray &bytes, const QByteArray &type) -> QByteArray {
        return "<en-media type=\"" + type + "\" hash=\"" + hashOf(bytes) + "\"";
    };
    (void)import("<note><title>Files</title>" +
                 content(media("B", "image/png") + "/>" + media("A", "image/png") + "></en-media>" +
                         media("S", "audio/mpeg") + " style=\"a b\"/>" + media("N", "image/gif") + "/>" +
                         media("none", "") + "/>") +
                 resource("A", "<mime>image/png</mime><resource-attributes><file-name>my pic(1).png</file-name>"
                               "</resource-attributes>") +
                 resource("B", "<resource-attributes><file-name>my pic(1).png</file-name></resource-attributes>"
                               "<recognition><![CDATA[<x/>]]></recognition>") +
                 resource("S", "<file-name>../../up.mp3</file-name>") + resource("N", "<mime>image/gif</mime>") +
                 resource("?", "<width>3</width>") + "</note></en-export>");
    const auto picture = [](const QString &name) -> QString {
        return u"<a href=\"TMImages/"_s + name + u"\"><img src=\"TMImages/"_s + name + u"\"></a>"_s;
    };
    const QString hashN = QString::fromLatin1(hashOf("N"));
    EXPECT_EQ(body(u"Files.html"_s), picture(u"my-pic%281%29 1.png"_s) + picture(u"my-pic%281%29.png"_s) +
                                         u"<br/>&nbsp;<audio src=\"..-..-up.mp3\" controls></audio>&nbsp;<br/>"_s +
                                         picture(hashN + u".gif"_s) + picture(QString::fromLatin1(hashOf("none"))));
    EXPECT_EQ(read(u"/Book/TMImages/my-pic(1).png"_s), "A");
    EXPECT_EQ(read(u"/Book/TMImages/my-pic(1) 1.png"_s), "B");
    EXPECT_EQ(read(u"/Book/TMImages/"_s + hashN + u".gif"_s), "N");
    EXPECT_EQ(read(u"/Book/TMImages/"_s + QString::fromLatin1(hashOf("?"))), "?");
    EXPECT_EQ(names(u"/Book/TMImages"_s).size(), 5);
    EXPECT_EQ(plist(u"/Book/Files.html.plist"_s), QVariantMap());
}

TEST_F(Notes, OfADamagedOrStoppedImportStay)
{
    const auto note = [](const QByteArray &title) -> QByteArray {
        return "<note><title>" + title + "</title>" + content(title) + "</note>";
    };
    EXPECT_EQ(import(note("&nbsp;&none;&#65;") + "</en-export>").documents, QStringList{at(u"/Book/none;A.html"_s)});
    const QByteArray whole = note("a") + note("???") + note("") + note(".. ") + "</en-export>";
    const Imported cut = import(note("x") + note("y").chopped(9));
    EXPECT_EQ(cut.documents, QStringList{at(u"/Book/x.html"_s)});
    EXPECT_FALSE(cut.fault.isEmpty());
    EXPECT_EQ(body(u"x.html"_s), u"x"_s);

    int ends = 0;
    const Imported stopped = import(whole, [&](qsizetype, qsizetype) { return ++ends < 4; });
    EXPECT_EQ(stopped.documents, QStringList{at(u"/Book/a.html"_s)});
    EXPECT_EQ(stopped.fault, QString());

    EXPECT_EQ(import(whole).documents, (QStringList{at(u"/Book/a 1.html"_s), at(u"/Book/-.html"_s),
                                                    at(u"/Book/Untitled.html"_s), at(u"/Book/...html"_s)}));
    EXPECT_FALSE(import("words").fault.isEmpty());
}

TEST_F(Notes, OfNewerExportsKeepTheirTitles)
{
    const Imported imported =
        import("<note><title>Right</title><updated>20260203T040506Z</updated>" + content("text") +
               "<task><title>Wrong</title><updated>20200101T000000Z</updated><taskStatus>open</taskStatus></task>"
               "</note></en-export>");
    EXPECT_EQ(imported.documents, QStringList{at(u"/Book/Right.html"_s)});
    EXPECT_EQ(QFileInfo(at(u"/Book/Right.html"_s)).lastModified().toUTC().date(), QDate(2026, 2, 3));
}

TEST(ExportedNotes, dates)
{
    const QDateTime fixed({2026, 11, 22}, {1, 0}, Qt::UTC);
    platform().clock.fix(fixed);
    const std::pair<const char *, QDateTime> cases[] = {
        {"20260329T023000Z", QDateTime({2026, 3, 29}, {2, 30}, Qt::UTC)},
        {"2026-03-29T02:30:00Z", QDateTime({2026, 3, 29}, {2, 30}, Qt::UTC)},
        {"2026-03-29T02:30:00.2500Z", QDateTime({2026, 3, 29}, {2, 30, 0, 250}, Qt::UTC)},
        {"20260329T0230Z", fixed},
        {"20261332T000000Z", fixed},
        {"yesterday", fixed},
        {"Z", fixed},
    };
    for (const auto &[text, wanted] : cases) EXPECT_EQ(dateFromEvernoteDate(QLatin1StringView(text)), wanted) << text;
    setPlatform(nullptr);
}

TEST(ExportedNotes, contentsAsPages)
{
    const QHash<QString, QString> names{{u"ab"_s, u"50% #1.mov"_s}};
    const auto page = [&names](const char *text) { return pageOfNote(QString::fromUtf8(text), names); };
    EXPECT_EQ(page("<en-note style=\"x\">a</en-note>"), u"<html>\n<head></head>\n<body>\na</body>\n</html>"_s);
    EXPECT_EQ(page("<en-todo/><en-todo checked=\"false\"/><en-todo checked=\"true\"></en-todo>"),
              u"<input type=\"checkbox\" class=\"tm_checkbox\"><input type=\"checkbox\" class=\"tm_checkbox\">"
              "<input type=\"checkbox\" class=\"tm_checkbox\" checked>"_s);
    EXPECT_EQ(page("<EN-MEDIA hash=\"AB\" type='video/quicktime' />"),
              u"<br/>&nbsp;<video src=\"50%25 %231.mov\" controls></video>&nbsp;<br/>"_s);
    EXPECT_EQ(page("<en-media hash=\"AB\""), u"<en-media hash=\"AB\""_s);
    // No longer for each beginning than for one.
    (void)pageOfNote(QString(u"<en-media <en-note <en-todo "_s).repeated(20000), {});
}
