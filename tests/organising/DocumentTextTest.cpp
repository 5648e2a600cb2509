// SPDX-License-Identifier: GPL-3.0-or-later
// The text that search finds in office documents, electronic books and RTF, damaged ones among them.
#include "organising/search/DocumentText.h"
#include "organising/search/RichText.h"
#include "tests/support/Notebook.h"
#include "tests/support/ZipArchive.h"

#include <vector>

namespace tomelet {

using namespace Qt::StringLiterals;

namespace {

class DocumentTexts : public test::Notebook
{
protected:
    QString archiveOf(const QString &name, const std::vector<test::ZipMember> &files) const
    {
        const QString path = at(u'/' + name);
        test::writeZipArchive(path, files);
        return path;
    }
};

TEST_F(DocumentTexts, OfOfficeDocuments)
{
    const QString text =
        archiveOf(u"Letter.odt"_s,
                  {{"mimetype", "application/vnd.oasis.opendocument.text"},
                   {"content.xml",
                    "<o xmlns:text='t'><style>no text</style>\n <text:h>Über  uns</text:h>\n <text:p>wo<text:span>rd"
                    "</text:span><text:tab/>next</text:p></o>"},
                   {"Object 1/content.xml", "<o xmlns:text='t'><text:p>elsewhere</text:p></o>"}});
    EXPECT_EQ(documentText(text), u"Über  uns\nword next\n"_s);

    const QString report = archiveOf(
        u"Report.DOCX"_s,
        {{"docProps/core.xml", "<x xmlns:w='w'><w:t>properties</w:t></x>"},
         {"word/document.xml", "<w:d xmlns:w='w'><w:p>\n<w:r><w:t>Hel</w:t></w:r>\n<w:r><w:t>lo &amp;</w:t><w:br/><w:t "
                               "xml:space='preserve'>you </w:t></w:r><w:instrText>PAGE</w:instrText></w:p></w:d>"},
         {"word/footnotes.xml", "<w:f xmlns:w='w'><w:p><w:t>note</w:t></w:p></w:f>"}});
    EXPECT_EQ(documentText(report), u"Hello & you \nnote\n"_s);

    const QString table =
        archiveOf(u"Table.xlsx"_s, {{"xl/sharedStrings.xml", "<sst><si><t>one</t></si><si><t>two</t><rPh>"
                                                             "<t>spoken</t></rPh></si></sst>"}});
    EXPECT_EQ(documentText(table), u"one\ntwo\n"_s);

    const QString book =
        archiveOf(u"Book.epub"_s, {{"OEBPS/one.xhtml", "<html><body><p>First <b>page</b></p></body></html>"},
                                   {"OEBPS/style.css", "p { color: red }"}});
    EXPECT_EQ(documentText(book).simplified(), u"First page"_s);
}

TEST_F(DocumentTexts, OfDamagedOfficeDocumentsIsWhatCanBeRead)
{
    QByteArray xml = "<o xmlns:text='t'>";
    for (int i = 0; i < 300; ++i) xml += "<text:p>line " + QByteArray::number(i * 7919) + "</text:p>";
    const QString whole = archiveOf(u"Whole.odt"_s, {{"content.xml", xml + "</o>"}});
    const QByteArray bytes = read(u"/Whole.odt"_s);
    for (qsizetype size = 0; size < bytes.size(); size += 61)
        (void)documentText(write(u"/Cut.odt"_s, bytes.left(size)));
    for (qsizetype at = 0; at < bytes.size(); at += 13) {
        QByteArray changed = bytes;
        changed[at] = char(~changed[at]);
        (void)documentText(write(u"/Changed.odt"_s, changed));
    }
    // A name promises nothing.
    EXPECT_EQ(documentText(write(u"/Text.docx"_s, "plain text")), QString());
    EXPECT_EQ(documentText(archiveOf(u"Open.odt"_s, {{"content.xml", xml}})).count(u'\n'), 300);
}

TEST_F(DocumentTexts, OfAnArchiveThatUnpacksWithoutEndIsCut)
{
    const QByteArray blanks(40 << 20, ' ');
    const QString bomb =
        archiveOf(u"Large.odt"_s,
                  {{"content.xml", "<o xmlns:text='t'><text:p>begin</text:p><text:p>" + blanks + "end</text:p></o>"}});
    const QString text = documentText(bomb);
    EXPECT_TRUE(text.startsWith(u"begin"_s));
    EXPECT_LT(text.size(), 5'000'000);
    const QString deep = archiveOf(u"Deep.odt"_s, {{"content.xml", "<o>" + QByteArray("<p>word").repeated(1 << 20)}});
    EXPECT_TRUE(documentText(deep).startsWith(u"word"_s));
    QByteArray entities = "<!DOCTYPE o [<!ENTITY a0 'aaaaaaaaaa'>";
    for (int i = 1; i < 12; ++i) {
        const QByteArray former = "&a" + QByteArray::number(i - 1) + ";";
        entities += "<!ENTITY a" + QByteArray::number(i) + " '" + former.repeated(10) + "'>";
    }
    const QString laughs = archiveOf(u"Laughs.odt"_s, {{"content.xml", entities + "]><o><p>a</p><p>&a11;</p></o>"}});
    EXPECT_LT(documentText(laughs).size(), 5'000'000);
}

// Each of these once took the square of its length; so this test ends soon or not at all.
TEST_F(DocumentTexts, OfPagesThatCloseNothingAreReadInOneWalk)
{
    for (const char *piece : {"<", "<style ", "<script>", "<body ", "<!--", "&#", "</head>", "<style >x"}) {
        const QByteArray page = QByteArray(piece).repeated(600000 / qsizetype(qstrlen(piece))) + "<p>end";
        EXPECT_TRUE(documentText(write(u"/Page.html"_s, page)).endsWith(u"end"_s)) << piece;
    }
}

TEST_F(DocumentTexts, OfPages)
{
    const struct
    {
        const char *html;
        QString text;
    } rows[] = {
        {"<html><head><title>no</title></head><body class='x'>y<b>e</b>s<p>next</body>", u"yes next"_s},
        {"a<style >no</style>b<SCRIPT>no</script>c<!-- > no -->d<br>e", u"abcd e"_s},
        {"<td>1</td><td>2</td>3 < 4 &amp; &auml;&#252;&#x41; &nosuch; &", u"1 2 3 < 4 & äüA &nosuch; &"_s},
        {"head</head>text <open", u"text <open"_s},
    };
    for (const auto &row : rows)
        EXPECT_EQ(documentText(write(u"/Page.html"_s, row.html)).simplified(), row.text) << row.html;
}

TEST_F(DocumentTexts, OfLongTextsAreCut)
{
    EXPECT_EQ(documentText(write(u"/Words.txt"_s, QByteArray("word ").repeated(4'000'000))).size(), 16'000'000);
    EXPECT_LT(documentText(write(u"/Signs.txt"_s, QByteArray(".,;").repeated(2'000'000))).size(), 4'000'010);
    EXPECT_EQ(documentText(write(u"/Most.txt"_s, QByteArray(".,;").repeated(333'333))).size(), 999'999);
}

TEST(RichText, IsReadWithoutWhatIsNoText)
{
    const struct
    {
        const char *rtf;
        QString text;
    } rows[] = {
        {R"({\rtf1\ansi\ansicpg1252{\fonttbl{\f0 Times;}}{\*\generator x;}\f0\fs24 Hello {\b bold} w\'f6rld\par next})",
         u"Hello bold wörld\nnext"_s},
        {R"({\rtf1 {\info{\title no}}\u8364?\uc2\u233\'c3\'a9 \uc0\u26085 \u-10179\u-8704 x})", u"€é 日😀x"_s},
        {R"({\rtf1\ansicpg1251 \'cf\'f0\'e8\'e2\'e5\'f2\emdash a\~b\-c\_d \{\}\\})", u"Привет—a\u00a0bc-d {}\\"_s},
        {R"({\rtf1 {\field{\*\fldinst HYPERLINK "x"}{\fldrslt link}}\bin3 {{{after)", u"linkafter"_s},
        {R"({\rtf1 \ansicpg77777 a}} b\)", u"a b"_s},
        {"{\\rtf1 bro\nken\\\nline \\'", u"broken\nline "_s},
    };
    for (const auto &row : rows) EXPECT_EQ(textOfRichText(row.rtf), row.text) << row.rtf;
    EXPECT_EQ(textOfRichText(QByteArray(QByteArray(1 << 20, '{') + "deep")), QString());
}

} // namespace

} // namespace tomelet
