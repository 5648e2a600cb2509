// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/DocumentForms.h"
#include "conversion/Page.h"
#include "editor/DocumentViewChoice.h"
#include "editor/FormattedPage.h"
#include "editor/LineEnds.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Properties.h"
#include "tests/support/Notebook.h"

using namespace tomelet;

TEST(LineEnds, linesKeepTheirsWhileOthersChange)
{
    const struct
    {
        const char16_t *before, *edited, *after;
    } cases[] = {
        {u"a\nb", u"a\nx\nb", u"a\nx\nb"},
        {u"a\r\nb\nc\r\n", u"a\nb\nc\n", u"a\r\nb\nc\r\n"},
        {u"a\r\nb\nc\r\n", u"a\nx\nb\nc\n", u"a\r\nx\r\nb\nc\r\n"},
        {u"a\r\nb\nc\r\n", u"b\nc\n", u"b\nc\r\n"},
        {u"a\r\nb\r\nc", u"a\nb\nc\nd", u"a\r\nb\r\nc\r\nd"},
        {u"a\r\nb\nc\r\nd\ne\r\n", u"A\nb\nc\nd\nE\n", u"A\r\nb\nc\r\nd\nE\r\n"},
        {u"a\r\nb\nc\r\nd\ne\r\n", u"A\nx\nb\nc\nd\nE\n", u"A\r\nx\r\nb\nc\r\nd\nE\r\n"},
        {u"a\rb\r", u"a\nb\n\n", u"a\rb\r\r"},
        {u"a\r\nb", u"", u""},
        {u"a\r\nb", u"a\rx", u"a\rx"},
    };
    for (const auto &wanted : cases)
        EXPECT_EQ(withLineEndsOf(QString::fromUtf16(wanted.before), QString::fromUtf16(wanted.edited)),
                  QString::fromUtf16(wanted.after));
}

TEST(DocumentForms, bytes)
{
    TextForm roman{TextEncoding::MacRoman, {}};
    EXPECT_EQ(bytesOfText(QStringLiteral("é"), roman), QByteArray("\x8e"));
    EXPECT_EQ(roman.encoding, TextEncoding::MacRoman);
    EXPECT_EQ(bytesOfText(QStringLiteral("中"), roman), QByteArray("中"));
    EXPECT_EQ(roman.encoding, TextEncoding::Utf8);
    TextForm marked{TextEncoding::Utf8, "\xef\xbb\xbf"};
    EXPECT_EQ(bytesOfText(QStringLiteral("a"), marked), QByteArray("\xef\xbb\xbf"
                                                                   "a"));
    EXPECT_EQ(bytesOfText(QString(QChar(0xd800)) + QStringLiteral("a"), marked), QByteArray("\xef\xbb\xbf\xef\xbf\xbd"
                                                                                            "a"));
    EXPECT_EQ(md5OfText(QStringLiteral("a"), {}), QStringLiteral("0CC175B9C0F1B6A831C399E269772661"));
}

TEST(DocumentForms, cleanedBody)
{
    EXPECT_EQ(cleanedBody(QStringLiteral("<ul></ul><p>a</p><h1><br></h1><a href=\"b\"><br></a><a href=\"b\"> </a>"
                                         "<div class=\"x\"></div><li><li class=\"c\">d</li><a href=\"e\">f</a>")),
              QStringLiteral("<p>a</p><li class=\"c\">d</li><a href=\"e\">f</a>"));
}

TEST(DocumentForms, paragraphsFoundAgain)
{
    const QString text = QStringLiteral("# Title\n\nSome *marked* [text](x).\n- item\n");
    EXPECT_EQ(positionOfParagraph(text, QStringLiteral("Title")), 0);
    EXPECT_EQ(positionOfParagraph(text, QStringLiteral("item")), 34);
    EXPECT_EQ(positionOfParagraph(text, QStringLiteral("Some marked text.")), 9);
    EXPECT_EQ(positionOfParagraph(text, QStringLiteral("elsewhere")), -1);
    const QString links = QStringLiteral("one\n\na [link](Some/Where.md) and ![more](b.png) [x](open\n");
    EXPECT_EQ(positionOfParagraph(links, QStringLiteral("a link and more x(open")), 5);
    EXPECT_EQ(positionOfParagraph({}, QStringLiteral("a")), -1);
}

class DocumentKinds : public tomelet::test::Notebook
{};

TEST_F(DocumentKinds, chooseTheirView)
{
    using enum DocumentViewKind;
    const auto choose = [](const char *name, bool toggled = false) {
        return viewForDocument(QString::fromLatin1(name), toggled).kind;
    };
    EXPECT_EQ(choose("/a.md"), Formatted);
    EXPECT_EQ(choose("/a.md", true), PlainText);
    EXPECT_EQ(choose("/a.FOUNTAIN"), Formatted);
    EXPECT_EQ(choose("/a.txt"), PlainText);
    EXPECT_EQ(choose("/a.txt", true), Formatted);
    EXPECT_EQ(choose("/a.html"), Formatted);
    EXPECT_EQ(choose("/a.html", true), PlainText);
    EXPECT_EQ(choose("/a.pdf"), Pdf);
    EXPECT_EQ(choose("/a.png"), Formatted);
    EXPECT_EQ(choose("/a.heic"), Preview);
    EXPECT_EQ(choose("/a.webarchive"), Preview);
    EXPECT_EQ(choose("/a.zip"), Preview);
    EXPECT_FALSE(viewForDocument(QStringLiteral("/a.eml"), false).canToggle);
    settings().setObject(QStringLiteral("showMarkdownAsPlainText"), true);
    settings().setObject(QStringLiteral("openWebarchivesWithTMLTMethods"), true);
    EXPECT_EQ(choose("/a.md"), PlainText);
    EXPECT_EQ(choose("/a.md", true), Formatted);
    EXPECT_EQ(choose("/a.webarchive"), Formatted);
    EXPECT_EQ(viewForNewDocument(QStringLiteral("html")).kind, Formatted);
    EXPECT_EQ(viewForNewDocument(QStringLiteral("md")).kind, PlainText);
}

TEST_F(DocumentKinds, pages)
{
    const QString foreign = write(QStringLiteral("/f.html"), "<p>hi</p>");
    EXPECT_EQ(formattedPageFor(foreign).html, QStringLiteral("<p>hi</p>"));
    EXPECT_EQ(formattedPageFor(foreign).base, foreign);
    EXPECT_TRUE(formattedPageFor(foreign).isForeign);
    tm_setProperty(foreign, QStringLiteral("https://example.org/"), QStringLiteral("URL"));
    EXPECT_EQ(formattedPageFor(foreign).base, QStringLiteral("https://example.org/"));

    const QString own =
        write(QStringLiteral("/o.html"), "<head><!-- Generator: Tomelet for Mac 0.1 --></head><body><h1>A</h1></body>");
    EXPECT_TRUE(formattedPageFor(own).html.startsWith(u"<!DOCTYPE html>"));
    EXPECT_TRUE(formattedPageFor(own).html.contains(u"<title>A</title>"));
    EXPECT_EQ(read(QStringLiteral("/o.html")).left(6), QByteArray("<head>")); // showing writes nothing

    const QString picture = formattedPageFor(write(QStringLiteral("/a b.png"))).html;
    EXPECT_TRUE(picture.contains(root + QStringLiteral("/a%20b.png?"))) << picture.toStdString();
    EXPECT_TRUE(picture.contains(u"max-width: 97%;"));
}

// The stored page follows the program; what would come out the same is not written again.
TEST_F(DocumentKinds, combinedMarkdownIsConvertedAnewOnce)
{
    const QString path =
        write(QStringLiteral("/c.html"), "<!-- Plain Text Representation:\na *b* \\-\\-\\>\n-->\n\n<p>old</p>");
    tm_setProperty(path, QStringLiteral("OK"), QStringLiteral("Markdown"));
    const QString page = formattedPageFor(path).html;
    EXPECT_TRUE(page.contains(u"<em>b</em>"));
    EXPECT_FALSE(page.contains(u"Plain Text Representation"));
    const QByteArray stored = read(QStringLiteral("/c.html"));
    EXPECT_TRUE(stored.startsWith("<!-- Plain Text Representation:\na *b* \\-\\-\\> \n-->\n\n<!DOCTYPE html>"));
    EXPECT_TRUE(stored.contains("<title>a *b* --&gt;</title>"));
    const QDateTime date = fileDates(path).modified;
    (void)formattedPageFor(path);
    EXPECT_EQ(fileDates(path).modified, date);
    EXPECT_EQ(QString::fromUtf8(stored), combinedForm(QStringLiteral("a *b* -->\n")));
}

TEST_F(DocumentKinds, screenplaysAddressesAndExportedNotes)
{
    const QString script =
        write(QStringLiteral("/Film.fdx"), "<?xml version=\"1.0\"?>\n<FinalDraft><Content>"
                                           "<Paragraph Type=\"Scene Heading\"><Text>INT.</Text></Paragraph>"
                                           "<Paragraph Type=\"Action\"><Text>x</Text></Paragraph>"
                                           "<Paragraph Number=\"4\" Type=\"Scene Heading\">\n<Text>EXT.</Text>"
                                           "</Paragraph></Content></FinalDraft>");
    const FormattedPage page = formattedPageFor(script);
    EXPECT_TRUE(page.isXml);
    EXPECT_EQ(readFile(page.base), page.html.toUtf8());
    EXPECT_TRUE(page.base.endsWith(u"/Film.xml"));
    EXPECT_TRUE(page.html.startsWith(u"<?xml version=\"1.0\"?>\n<?xml-stylesheet")) << page.html.toStdString();
    EXPECT_TRUE(page.html.contains(u"<Text>1 INT.</Text>"));
    EXPECT_TRUE(page.html.contains(u"<Text>x</Text>"));
    EXPECT_TRUE(page.html.contains(u"<Text>2 EXT.</Text>"));
    EXPECT_TRUE(page.html.endsWith(u"</FinalDraft>\n</DOC>"));

    const QString address = pageForItem(write(QStringLiteral("/a.url"), "[InternetShortcut]\nURL=http://x.org/?a&b\n"));
    EXPECT_TRUE(address.contains(u"<a href=\"http://x.org/?a&amp;b\">http://x.org/?a&amp;b</a>"));

    const QString notes = formattedPageFor(write(QStringLiteral("/A & B.enex"), "<en-export/>")).html;
    EXPECT_TRUE(notes.contains(u"<h1>A &amp; B.enex</h1>"));
    EXPECT_TRUE(notes.contains(u"<a name=\"link\" href=\"file://" + root + u"/A%20&%20B.enex\">Click to extract"));
    EXPECT_FALSE(notes.contains(u"**"));
}
