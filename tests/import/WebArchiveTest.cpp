// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/WebArchive.h"

#include "conversion/Page.h"
#include "conversion/Patterns.h"
#include "editor/DocumentForms.h"
#include "editor/FormattedPage.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/PropertyList.h"
#include "foundation/SafeWriter.h"
#include "import/ArchiveReferences.h"
#include "library/EmbeddedPhotos.h"
#include "library/ItemOperations.h"
#include "library/Properties.h"
#include "organising/search/DocumentText.h"
#include "tests/support/Notebook.h"

#include <QRandomGenerator>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

QVariantMap resource(const QString &url, const QString &type, const QByteArray &data)
{
    return {{u"WebResourceURL"_s, url}, {u"WebResourceMIMEType"_s, type}, {u"WebResourceData"_s, data}};
}

QVariantMap picture(const QString &url, const QByteArray &data = "picture")
{
    return resource(url, u"image/png"_s, data);
}

QVariantMap archiveOf(const QByteArray &page, const QVariantList &resources)
{
    return {{u"WebMainResource"_s, resource(u"https://site.org/news/today.html"_s, u"text/html"_s, page)},
            {u"WebSubresources"_s, resources}};
}

class WebArchive : public test::Notebook
{
protected:
    // Pages that are told apart, archives in both forms.
    QString archive(const QByteArray &page, const QVariantList &resources) const
    {
        const QVariantMap contents = archiveOf(page, resources);
        const QByteArray binary = binaryPropertyList(contents);
        EXPECT_EQ(tm_webarchiveToHTML(write(u"/Xml.webarchive"_s, xmlPropertyList(contents))),
                  tm_webarchiveToHTML(write(u"/Saved.webarchive"_s, binary)));
        return at(u"/Saved.webarchive"_s);
    }
    [[nodiscard]] QString page(const QByteArray &source, const QVariantList &resources) const
    {
        return tm_webarchiveToHTML(archive(source, resources)).replace(u"file://"_s + folder() + u'/', u"FILES/"_s);
    }
    [[nodiscard]] static QString folder() { return joinPath(workingDirectory(), u"webarchiveExtract"_s); }
    [[nodiscard]] static QByteArray extracted(const QString &name)
    {
        return readFile(joinPath(folder(), name)).value_or("missing");
    }
};

} // namespace

TEST_F(WebArchive, ReferencesLeadToTheExtractedFiles)
{
    const QString logo = u"https://site.org/img/logo.png"_s;
    const struct
    {
        const char *name;
        QByteArray source;
        QVariantList resources;
        const char *wanted;
    } cases[] = {
        {"address, path, name",
         R"(<img src="https://site.org/img/logo.png"><img src="/img/logo.png"><img src="../../x/logo.png">)",
         {picture(logo)},
         R"(<img src="FILES/logo.png"><img src="FILES/logo.png"><img src="FILES/logo.png">)"},
        {"links to pictures, but no other attributes",
         R"(<a href="/img/logo.png" title="logo.png"><img alt="/img/logo.png" SRC="/img/logo.png"></a>)",
         {picture(logo)},
         R"(<a href="FILES/logo.png" title="logo.png"><img alt="/img/logo.png" SRC="/img/logo.png"></a>)"},
        {"one address twice: the first counts",
         R"(<img src="/img/logo.png">)",
         {picture(logo, "first"), picture(logo, "second")},
         R"(<img src="FILES/logo.png">)"},
        {"one name, two addresses, in each form",
         R"(<img src="https://b.org/logo.png"><img src="../img/logo.png"><img src="//b.org/logo.png">)",
         {picture(logo, "a"), picture(u"https://b.org/logo.png"_s, "b")},
         R"(<img src="FILES/logo%201.png"><img src="FILES/logo.png"><img src="FILES/logo%201.png">)"},
        {"a name that ends another one",
         R"(<img src="x/biglogo.png"><img src="x/logo.png">)",
         {picture(logo), picture(u"https://site.org/biglogo.png"_s)},
         R"(<img src="FILES/biglogo.png"><img src="FILES/logo.png">)"},
        {"style sheets by address and path alone",
         R"(<link href="https://cdn.org/a/main.css"><link href="/a/main.css"><link href="other/main.css">)",
         {resource(u"https://cdn.org/a/main.css"_s, u"text/css"_s, "p{}")},
         R"(<link href="FILES/main.css"><link href="FILES/main.css"><link href="other/main.css">)"},
        {"a style sheet beside the page",
         R"(<link href="css/main.css">)",
         {resource(u"https://site.org/news/css/main.css"_s, u"text/css"_s, "p{}")},
         R"(<link href="FILES/main.css">)"},
        {"a query is no part of the name, an ampersand is escaped",
         R"(<link href="https://f.org/css?a=1&amp;b=2"><img src="i.png?v=2">)",
         {resource(u"https://f.org/css?a=1&b=2"_s, u"text/css"_s, "p{}"),
          picture(u"https://site.org/news/i.png?v=2"_s)},
         R"(<link href="FILES/css.css"><img src="FILES/i.png">)"},
        {"blanks and escapes",
         R"(<img src="https://h.org/a b.png"><img src="p/a%20b.png"><img src="c%20d.png">)",
         {picture(u"https://h.org/a b.png"_s), picture(u"https://h.org/c%20d.png"_s)},
         R"(<img src="FILES/a%2520b.png"><img src="FILES/a%2520b.png"><img src="FILES/c%252520d.png">)"},
        {"signs of patterns",
         R"(<img src="x/a+(1).png"><img src="x/aXpng">)",
         {picture(u"https://h.org/a+(1).png"_s), picture(u"https://h.org/a.png"_s)},
         R"(<img src="FILES/a+(1).png"><img src="x/aXpng">)"},
        {"pictures to choose from",
         R"(<img srcset="/no.png 1x, /img/logo.png 2x" src="/no.png"><source srcset="/no.png 1x,/a,b.png">)",
         {picture(logo)},
         R"(<img srcset="FILES/logo.png" src="/no.png"><source srcset="">)"},
        {"others stay",
         R"(<script src="/a.js"></script><img src="/b.png">)",
         {resource(u"https://site.org/a.js"_s, u"text/javascript"_s, "x"), QVariant(u"none"_s), QVariantMap(),
          QVariantMap{{u"WebResourceURL"_s, u"https://site.org/b.png"_s},
                      {u"WebResourceMIMEType"_s, u"image/png"_s},
                      {u"WebResourceData"_s, u"text"_s}}},
         R"(<script src="/a.js"></script><img src="/b.png">)"},
        {"points in front of an address",
         R"(<img SRC="../../file:///x.png"><img src="unclosed>)",
         {picture(logo)},
         R"(<img src="file:///x.png"><img src="unclosed>)"},
    };
    for (const auto &row : cases) EXPECT_EQ(page(row.source, row.resources), QLatin1StringView(row.wanted)) << row.name;
    EXPECT_EQ(page(cases[3].source, cases[3].resources), QLatin1StringView(cases[3].wanted));
    EXPECT_EQ(extracted(u"logo.png"_s), "a");
    EXPECT_EQ(extracted(u"logo 1.png"_s), "b");
    EXPECT_EQ(extracted(u"a.js"_s), "missing");
    (void)page(cases[2].source, cases[2].resources);
    EXPECT_EQ(extracted(u"logo.png"_s), "first");
}

TEST_F(WebArchive, NamesLeadNowhereElse)
{
    const QString letters = QString(400, u'n');
    QVariantList resources;
    for (const QString &url :
         {u".."_s, u"."_s, u""_s, u"/"_s, u"https://h.org/a/.."_s, u"https://h.org/%2e%2e%2fup.png"_s, u"..\\up.png"_s,
          u"h:/../../../up.png/"_s, QString(u"https://h.org/" + letters + u".png"),
          QString(u"https://h.org/" + letters + u"n.png"), u"nul\0l.png"_s, u"new\nline.png"_s})
        resources.append(picture(url));
    makeFolder(folder());
    const QStringList before = names(u"/.."_s);
    const QString path = archive("<p>text</p>", resources);
    EXPECT_EQ(namesInFolder(workingDirectory()), QStringList{u"webarchiveExtract"_s});
    EXPECT_EQ(names(u"/.."_s), before);
    EXPECT_EQ(namesInFolder(folder()).size(), 8);
    for (const QString &name : namesInFolder(folder())) {
        EXPECT_LE(name.toUtf8().size(), 255);
        EXPECT_TRUE(name.endsWith(u".png")) << name.toStdString();
    }
    EXPECT_FALSE(tm_saveWebarchiveAsHTML(path).isEmpty());
    EXPECT_EQ(namesInFolder(at(u"/TMImages"_s)).size(), 7); // XML has no zero
    EXPECT_EQ(names({}).filter(u"up.png"_s), QStringList());
}

TEST_F(WebArchive, WhatIsNoArchiveHasNoPage)
{
    const QByteArray whole = binaryPropertyList(archiveOf("<p>text", {picture(u"https://h.org/a.png"_s)}));
    const QByteArray broken[] = {
        "",
        "text",
        whole.first(whole.size() / 2),
        xmlPropertyList(QVariantList{1, 2}),
        xmlPropertyList(QVariantMap{{u"WebMainResource"_s, u"<p>text"_s}}),
        xmlPropertyList(QVariantMap{{u"WebMainResource"_s, QVariantMap{{u"WebResourceData"_s, u"<p>text"_s}}}})};
    settings().setObject(u"openWebarchivesWithTMLTMethods"_s, true);
    for (const QByteArray &bytes : broken) {
        const QString path = write(u"/Bad.webarchive"_s, bytes);
        EXPECT_EQ(tm_webarchiveToHTML(path), QString());
        EXPECT_EQ(tm_saveWebarchiveAsHTML(path), QString());
        EXPECT_EQ(documentText(path), QString());
        EXPECT_TRUE(formattedPageFor(path).html.contains(u"tm_card"));
    }
    EXPECT_EQ(names({}), QStringList{u"Bad.webarchive"_s});
    // A page alone is one.
    QVariantMap alone = archiveOf("<p>text", {});
    alone[u"WebSubresources"_s] = u"no list"_s;
    EXPECT_EQ(tm_webarchiveToHTML(write(u"/Bad.webarchive"_s, xmlPropertyList(alone))), u"<p>text"_s);
}

TEST_F(WebArchive, IsShownByItsSetting)
{
    const QString path = archive("<html><head></head><body>Große <b>Worte</b><img src=\"a.png\"></body></html>",
                                 {picture(u"https://site.org/news/a.png"_s)});
    EXPECT_EQ(documentText(path).simplified(), u"Große Worte"_s);
    EXPECT_TRUE(formattedPageFor(path).html.contains(u"tm_card"));
    settings().setObject(u"openWebarchivesWithTMLTMethods"_s, true);
    const FormattedPage shown = formattedPageFor(path);
    EXPECT_EQ(shown.html, tm_webarchiveToHTML(path));
    EXPECT_EQ(pageForItem(path), shown.html);
    EXPECT_FALSE(shown.isEditable);
}

TEST_F(WebArchive, IsSavedAsADocumentOfTheProgram)
{
    makeBook(u"/Other"_s);
    write(u"/TMImages/logo.png"_s, "another one");
    write(u"/Saved.html"_s, "in the way");
    const QString path = archive(
        R"(<!doctype html><HTML><head lang="en"><link href="/s.css"></head><body
 class="x"><p>Words</p><img SRC="/img/LOGO.png"><img src="../img/logo.png"><img src="https://b.org/logo.png"><img src="/(1).png"></body></HTML>)",
        {picture(u"https://site.org/img/logo.png"_s, "a"), picture(u"https://b.org/logo.png"_s, "b"),
         picture(u"https://site.org/(1).png"_s, "c"), resource(u"https://site.org/s.css"_s, u"text/css"_s, "p{}")});
    const QString saved = tm_saveWebarchiveAsHTML(path);
    EXPECT_EQ(saved, at(u"/Saved 1.html"_s));
    const QString text = QString::fromUtf8(read(u"/Saved 1.html"_s));
    EXPECT_EQ(text, uR"(<!doctype html><HTML><head lang="en"><link href="TMImages/s.css"><!-- Generator: Tomelet -->
<style ></style>
</head><body><p>Words</p><img src="TMImages/logo%201.png"><img src="TMImages/logo%201.png"><img src="TMImages/logo%202.png"><img src="TMImages/%281%29.png"></body></HTML>)"_s);
    EXPECT_EQ(read(u"/TMImages/logo.png"_s), "another one");
    EXPECT_EQ(read(u"/TMImages/logo 1.png"_s), "a");
    EXPECT_EQ(read(u"/TMImages/logo 2.png"_s), "b");
    EXPECT_EQ(tm_propertyForKey(saved, u"CSS"_s).toString(), u"CSS/Minimalist Theme.css"_s);
    EXPECT_TRUE(storedProperties(saved).contains(u"CreationDate"_s));

    // It is edited like any other, and its pictures go where it goes.
    const FormattedPage shown = formattedPageFor(saved);
    EXPECT_TRUE(tm_generatorIsTomelet(text) && shown.isEditable && !shown.isForeign);
    EXPECT_TRUE(shown.html.contains(u"<p>Words</p>"));
    const QString moved = at(u"/Other/Saved.html"_s);
    EXPECT_TRUE(tm_moveItemToPath(saved, moved));
    EXPECT_EQ(names(u"/Other/TMImages"_s), (QStringList{u"(1).png"_s, u"logo 1.png"_s, u"logo 2.png"_s, u"s.css"_s}));
}

TEST_F(WebArchive, WithoutAHeadGetsAFrame)
{
    const QString wanted = uR"(<!DOCTYPE html>
<html>
<head>
<meta name= "viewport" content = "initial-scale=1.0">
<meta http-equiv="Content-Type" content="text/html; charset=UTF-8" />
<!-- Generator: Tomelet -->
<style ></style>
</head>
<body>
<p>Wörter</p>
</body>
</html>)"_s;
    for (const char *source : {"<!DOCTYPE html><p>Wörter</p>", "<p>Wörter</p>", "<!doctype HTML><p>Wörter</p>"}) {
        const QString saved = tm_saveWebarchiveAsHTML(archive(source, {}));
        EXPECT_EQ(QString::fromUtf8(readFile(saved).value_or("")), wanted) << source;
    }
}

// -- the same by plain loops ------------------------------------------------------------------------------------------

namespace {

// One pass over the text for each address, path and name.
QString byLoops(QString text, const QList<SavedResource> &resources)
{
    for (const SavedResource &entry : resources)
        for (const QString &form : {entry.url, QUrl(entry.url).path()})
            for (const QString &attribute : {u"src=\""_s, u"href=\""_s})
                text.replace(attribute + form + u'"', attribute + entry.reference + u'"');
    for (const SavedResource &entry : resources)
        text = regexSweep(text, u"src=\"[^\"]*\\Q"_s + nameOfResource(entry.url) + u"\\E\""_s,
                          u"src=\""_s + entry.reference + u'"');
    return text;
}

} // namespace

TEST(ArchiveReferences, areThoseOfPlainLoops)
{
    // Of one length, so that none is the end of another.
    const auto nameOf = [](quint32 number) { return u"name%1.png"_s.arg(number, 3, 10, QChar(u'0')); };
    QRandomGenerator random(7);
    QList<SavedResource> resources;
    for (quint32 i = 0; i < 40; ++i)
        resources.append(SavedResource{QString(u"https://h%1.org/d%2/"_s.arg(i % 3).arg(i % 5) + nameOf(i)),
                                       QString(u"FILES/"_s + nameOf(i)), true});
    const QStringList pieces{
        u"<p>text</p>\n"_s, u"<img src=\""_s, u"<a href=\""_s,         u"data-src=\""_s, u"\">"_s,   u"\""_s,
        u"../"_s,           u"/d1/"_s,        u"https://h1.org/d2/"_s, u"x"_s,           u"SRC=\""_s};
    for (int round = 0; round < 3000; ++round) {
        QString text;
        for (int i = 0; i < 30; ++i) {
            const quint32 which = random.bounded(quint32(pieces.size()) * 2);
            if (which < pieces.size()) text += pieces[which];
            else if (which % 2) text += nameOf(random.bounded(44)) + u"\">"_s;
            else text += u"<img src=\""_s + resources[random.bounded(40)].url + u'"';
        }
        const QString wanted = byLoops(text, resources);
        ASSERT_EQ(ArchiveReferences(resources, {}, Qt::CaseSensitive).writtenInto(text), wanted) << text.toStdString();
    }
}
