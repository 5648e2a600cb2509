// SPDX-License-Identifier: GPL-3.0-or-later
// Previews of every kind of file, and the style inside documents on disk.
#include "conversion/Preview.h"
#include "conversion/EmbeddedStyle.h"
#include "conversion/FontFaces.h"
#include "foundation/FileOperations.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Properties.h"

#include "tests/support/Notebook.h"

#include <gtest/gtest.h>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

class Preview : public test::Notebook
{
protected:
    QString of(const QString &path, const QByteArray &bytes, const QString &title = u"?"_s) const
    {
        return tm_previewOfNoteWithTitle(write(path, bytes), title);
    }
};

// A file of pages with one line each, with the table of its objects left to the reader to rebuild.
QByteArray pdfOf(const QList<QByteArray> &lines)
{
    QByteArray objects = "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                         "3 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj\n";
    QByteArray kids;
    int number = 4;
    for (const QByteArray &line : lines) {
        const QByteArray page = QByteArray::number(number);
        const QByteArray content = QByteArray::number(number + 1);
        const QByteArray stream = "BT /F1 12 Tf 20 700 Td (" + line + ") Tj ET";
        objects += page + " 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 2000 800]/Contents " + content +
                   " 0 R/Resources<</Font<</F1 3 0 R>>>>>>endobj\n" + content + " 0 obj<</Length " +
                   QByteArray::number(stream.size()) + ">>stream\n" + stream + "\nendstream endobj\n";
        kids += page + " 0 R ";
        number += 2;
    }
    return objects + "2 0 obj<</Type/Pages/Count " + QByteArray::number(lines.size()) + "/Kids[" + kids +
           "]>>endobj\ntrailer<</Root 1 0 R>>\n%%EOF\n";
}

} // namespace

TEST_F(Preview, texts)
{
    EXPECT_EQ(of(u"/a.txt"_s, "\n one\r\n\n\ntwo \n"), u"one\ntwo"_s);
    EXPECT_EQ(of(u"/Plan.txt"_s, "## Plan ##\nmore"), u"more"_s);
    EXPECT_EQ(of(u"/b.txt"_s, "a/b\nmore", u"a-b"_s), u"more"_s);
    EXPECT_EQ(of(u"/c.txt"_s, QByteArray(450, 'x')).size(), 450);
    EXPECT_EQ(of(u"/d.txt"_s, QByteArray(451, 'x')).size(), 449);
    EXPECT_EQ(of(u"/e.txt"_s, ""), QString());
    EXPECT_EQ(of(u"/f.zip"_s, "x"), QString());
    EXPECT_EQ(tm_previewOfNoteWithTitle(at(u"/missing.md"_s), u""_s), QString());
    for (const int converter : {0, 1}) {
        settings().setObject(u"MarkdownConverter"_s, converter);
        EXPECT_EQ(of(u"/m.md"_s, "# T\n\n**b** [[x.md|y]]\n- c\n", u"T"_s), u"b y\n- c"_s) << converter;
    }
}

TEST_F(Preview, pagesAndKeptTexts)
{
    EXPECT_EQ(of(u"/page.html"_s, "<html><body><p>a</p><p>b</p></body></html>"), u"a\nb"_s);
    EXPECT_EQ(of(u"/b.html"_s, "<!-- Plain Text Representation:\n*a* \n-->\n<p>x</p>"), u"*a*"_s);
    const QString other = write(u"/c.zip"_s);
    const QString sideCar = tm_sideCarPathCreatingParentIfNeeded(other);
    ASSERT_TRUE(writeFile(sideCar, "<!DOCTYPE html><p>kept</p>"));
    EXPECT_EQ(tm_previewOfNoteWithTitle(other, u""_s), u"kept"_s);
    ASSERT_TRUE(writeFile(sideCar, "No Document Selected\n"));
    EXPECT_EQ(tm_previewOfNoteWithTitle(other, u""_s), QString());
    EXPECT_FALSE(itemExists(sideCar));
    const QString image = write(u"/i.png"_s);
    (void)write(u"/ocr.txt"_s, "seen");
    tm_setProperty(image, u"/ocr.txt"_s, u"OCR"_s);
    EXPECT_EQ(tm_previewOfNoteWithTitle(image, u""_s), u"seen"_s);
    tm_setProperty(image, u"told"_s, u"Description"_s);
    EXPECT_EQ(tm_previewOfNoteWithTitle(image, u""_s), u"told"_s);
}

TEST_F(Preview, portableDocuments)
{
    const QString path = write(u"/a.pdf"_s, pdfOf({"short", "second"}));
    EXPECT_TRUE(beginningOfPdf(path).contains(u"short"_s));
    EXPECT_TRUE(beginningOfPdf(path).contains(u"second"_s));
    EXPECT_FALSE(beginningOfPdf(write(u"/b.pdf"_s, pdfOf({QByteArray(120, 'x'), "second"}))).contains(u"second"_s));
    EXPECT_TRUE(tm_previewOfNoteWithTitle(path, u""_s).startsWith(u"short"_s));
    EXPECT_TRUE(itemExists(tm_sideCarPath(path))) << "kept for the next time";
    EXPECT_EQ(of(u"/broken.pdf"_s, "%PDF-1.4 nothing"), QString());
}

TEST_F(Preview, embeddedStyle)
{
    const QString path =
        write(u"/n.html"_s, "<!-- Plain Text Representation:\na \n-->\n\n<!DOCTYPE html>\n<html><head></head>"
                            "<body>\n<p>a</p>\n</body></html>");
    int posts = 0;
    const auto watching =
        notifications().observe(u"TMLTFileModifiedOnDiskNotification"_s, [&](const QVariantMap &) { ++posts; });
    tm_applyCurrentStyle(path);
    EXPECT_EQ(posts, 1);
    const QByteArray once = read(u"/n.html"_s);
    EXPECT_TRUE(once.startsWith("<!-- Plain Text Representation:\na \n-->\n\n<!DOCTYPE html>\n<html xmlns"))
        << once.toStdString();
    EXPECT_TRUE(once.contains("<title>n</title>"));
    EXPECT_TRUE(once.endsWith("<body>\n<p>a</p>\n</body>\n</html>"));
    (void)write(u"/n.html"_s, QByteArray(once).replace("Tomelet for Mac ", "Tomelet for Mac 0."));
    tm_applyCurrentStyle(path);
    EXPECT_EQ(posts, 1) << "another version is no change";
    tm_applyCurrentStyle(write(u"/n.txt"_s, "x"));
    EXPECT_EQ(read(u"/n.txt"_s), "x");
}

TEST_F(Preview, outlines)
{
    const QByteArray outline =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<opml version=\"2.0\"><head><title>Plan</title></head>"
        "<body><outline text=\"one &amp; all\"><outline text=\"two\"/></outline></body></opml>";
    EXPECT_EQ(of(u"/o.opml"_s, outline), u"Plan\n- one & all\n- two"_s);
    EXPECT_EQ(of(u"/Plan.opml"_s, outline), u"- one & all\n- two"_s);
    EXPECT_EQ(of(u"/p.opml"_s, "no outline"), QString());
}

TEST(FontFaces, filesOfFaces)
{
    const std::pair<QString, QStringList> rows[] = {
        {u"Montserrat-Light"_s,
         {u"Montserrat-Light.otf"_s, u"Montserrat-Regular.otf"_s, u"Montserrat-LightItalic.otf"_s,
          u"Montserrat-Italic.otf"_s}},
        {u"Vollkorn-Regular"_s,
         {u"Vollkorn-Regular.ttf"_s, u"Vollkorn-Bold.ttf"_s, u"Vollkorn-Italic.ttf"_s, u"Vollkorn-BoldItalic.ttf"_s}},
        {u"CMUSerif-Roman"_s, {u"cmunrm.ttf"_s, u"cmunbx.ttf"_s, u"cmunti.ttf"_s, u"cmunbi.ttf"_s}},
        {u"Muli-BoldItalic"_s, {u"Muli Bold Italic.ttf"_s}},
        {u"TypeWritersSubstitute-Black"_s, {u"TypeWritersSubstitute-Oblique.ttf"_s}},
        {u"Merriweather-Bold"_s, {u"Merriweather-Bold.otf"_s}},
        {u"Lexend Deca"_s, {u"Lexend Deca.ttf"_s}},
    };
    for (const auto &[face, files] : rows)
        EXPECT_EQ(tm_fontsToIncludeForFace(face, true).mid(1), files) << face.toStdString();
    EXPECT_EQ(tm_fontsToIncludeForFace(u"Nobody"_s, true), QStringList());
    EXPECT_EQ(tm_fontsToIncludeForFace(u"Inconsolata"_s, true).first(),
              u"@font-face {\n\tfont-family: Inconsolata;\nfont-style: normal;\nfont-weight: normal;\n"
              "src:url(\"../fonts/Inconsolata.otf\");\n}\n"_s);
    EXPECT_TRUE(
        tm_fontsToIncludeForFace(u"Muli"_s, true)
            .first()
            .startsWith(
                u"@font-face {\tfont-family: Muli;\tfont-style: normal; font-weight: normal;\tsrc:url(\"../fonts/Muli.ttf\");\t}\n"_s));
    EXPECT_TRUE(tm_fontsToIncludeForFace(u"Muli"_s, false).first().contains(u"url(\"file:///"_s));
}
