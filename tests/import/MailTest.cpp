// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/Mail.h"

#include "conversion/Page.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"
#include "import/MailDate.h"
#include "import/MailText.h"

#include "tests/support/Notebook.h"
#include "tests/support/TextCase.h"

#include <gtest/gtest.h>

using namespace tomelet;
using tomelet::test::Case;
using namespace Qt::StringLiterals;

namespace {

class Mail : public test::Notebook
{
protected:
    static QString caseFile(const char *name)
    {
        const QString path = QStringLiteral(TOMELET_SOURCE_DIR "/tests/import/cases/") + QLatin1StringView(name);
        return QString::fromUtf8(readFile(path).value_or("(missing)"));
    }
    static QString bodyOf(const QString &message)
    {
        const QString page = tm_emlToHTML(message);
        const qsizetype from = page.indexOf(u'>', page.indexOf(u"<body")) + 1;
        return page.mid(from, page.indexOf(u"</body>") - from).trimmed();
    }
    /// The bytes of the file that the page refers to by the end of its name.
    static QByteArray fileNamed(const QString &page, const QString &ending)
    {
        const QString folder = u"file://"_s + workingDirectory();
        for (const QString &name : namesInFolder(workingDirectory()))
            if (name.endsWith(ending) && page.contains(folder + u'/' + QString(name).replace(u' ', u"%20"_s)))
                return readFile(joinPath(workingDirectory(), name)).value_or("(unreadable)");
        return "(missing)";
    }
};

} // namespace

TEST(MailText, encodedWords)
{
    test::check(stringWithEncodedWordsString,
                {{"quoted", u"=?UTF-8?Q?J=C3=BCrgen_M?= <j>"_s, u"Jürgen M <j>"_s},
                 {"lower case", u"=?utf-8?q?=C3=BC?= =?utf-8?b?w7w=?="_s, u"ü ü"_s},
                 {"Latin-1", u"=?iso-8859-1?Q?Andr=E9?="_s, u"André"_s},
                 {"base64 loses its underscores too", u"=?UTF-8?B?YV9i?="_s, u"a b"_s},
                 {"no base64", u"=?UTF-8?B?**?= x"_s, u"=?UTF-8?B?**?= x"_s},
                 {"bytes that are no text", u"=?iso-8859-1?B?6Q==?="_s, u"=?iso-8859-1?B?6Q==?="_s},
                 {"cut in the middle", u"=?UTF-8?Q?J=C3"_s, u"=?UTF-8?Q?J=C3"_s},
                 {"folded", u"=?UTF-8?Q?a?=\r\n =?UTF-8?Q?b?="_s, u"ab"_s},
                 {"a result is not read again", u"=?UTF-8?Q?=3D=3Fx=3FQ=3Fy=3F=3D?="_s, u"=?x?Q?y?="_s}});
}

TEST(MailText, quotedPrintable)
{
    test::check(stringWithQuotedPrintableString, {{"UTF-8", u"a=C3=A4=\nb=\r\nc"_s, u"aäbc"_s},
                                                  {"percent signs stay", u"100% =3D x %41"_s, u"100% = x %41"_s},
                                                  {"a sign at the end goes", u"a="_s, u"a"_s},
                                                  {"Latin-1", u"caf=E9 =3d=\n%"_s, u"café =%"_s},
                                                  {"a sign alone", u"a = b =41"_s, u"a = b A"_s},
                                                  {"characters that are none of ASCII", u"ä=C3=A4"_s, u"ää"_s}});
    EXPECT_EQ(stringWithBase64Encoding(u" w7xi\nZXI= \n"_s), u"über"_s);
    EXPECT_FALSE(stringWithBase64Encoding(u"6Q=="_s).has_value());
    EXPECT_FALSE(stringWithBase64Encoding(u"<p>"_s).has_value());
}

TEST_F(Mail, dates)
{
    const auto plain = [](const char *text) {
        return readableMailDate(QString::fromLatin1(text)).replace(QChar(0x202F), u' ');
    };
    EXPECT_EQ(plain("Tue, 03 Feb 2026 10:00:00 +0000 "), u"February 3, 2026 at 11:00 AM"_s);
    EXPECT_EQ(plain("3 Feb 2026 10:00:00 EST"), u"February 3, 2026 at 4:00 PM"_s);
    for (const char *broken :
         {"", "yesterday", "31 Feb 2026 10:00:00 +0000", "3 anF 2026 10:00:00 +0000", "3 Feb 2026"})
        EXPECT_EQ(plain(broken), QString()) << broken;
}

TEST_F(Mail, everyKindOfPart)
{
    const QString page = tm_emlToHTML(caseFile("everything.eml"));
    const QString top = u"<html><body class=\"x\"><div style=\"padding: 5%; font-family: **TomeletFont**;\"><b>"
                        "<a href=\"mailto:jm@example.org\">Jürgen Müller </a></b><br/>"
                        "To: <a href=\"mailto:ann@example.org\">Ann (Team) &lt;ann@example.org&gt;</a><br/>\n"_s;
    EXPECT_TRUE(page.startsWith(top)) << page.toStdString();
    EXPECT_TRUE(
        page.contains(u"font-weight: bold;\">Größe and a subject that goes on for so long that the header has to be "
                      "folded twice, which happens</div>"_s))
        << page.toStdString();
    EXPECT_FALSE(page.contains(u"plain text"_s));
    EXPECT_TRUE(page.contains(u"<p>Grüße &amp; 100% of x=1</p>"_s));
    EXPECT_EQ(page.count(u"<img"_s), 2) << "in place, and not again at the end";
    EXPECT_FALSE(page.contains(u"cid:"_s, Qt::CaseInsensitive));
    EXPECT_EQ(fileNamed(page, u"in place.png"_s), "\x89PNG1");
    EXPECT_EQ(fileNamed(page, u"loose.png"_s), "\x89PNG2");
    EXPECT_EQ(fileNamed(page, u"evil.pdf"_s), "%PDF-1.4 x");
    EXPECT_TRUE(fileNamed(page, u"message.eml"_s).contains("Subject: inner"));
    EXPECT_EQ(page.count(u"📎 <a href=\"file://"_s), 2);
    EXPECT_TRUE(page.indexOf(u"📎"_s) < page.indexOf(u"</body>"_s));
    const auto files = namesInFolder(workingDirectory());
    EXPECT_EQ(tm_emlToHTML(caseFile("everything.eml")), page);
    EXPECT_EQ(namesInFolder(workingDirectory()), files) << "shown again, it writes nothing new";
}

TEST_F(Mail, characterSets)
{
    const QString page = tm_emlToHTML(caseFile("windows-1252.eml"));
    EXPECT_TRUE(page.contains(u"<b><a href=\"mailto:a@example.org\">André Café </a></b>"_s)) << page.toStdString();
    EXPECT_TRUE(page.contains(u"<p>déjà vu"_s)) << page.toStdString();
    const QString base64 = tm_emlToHTML(caseFile("base64.eml"));
    EXPECT_TRUE(base64.contains(u"<p>übér > all</p>"_s)) << base64.toStdString();
    EXPECT_TRUE(base64.contains(u"<blockquote><p>quoted</p></blockquote>"_s));
    // Bytes of a file that are no UTF-8 are read by the rules for all documents.
    EXPECT_TRUE(pageForItem(write(u"/a.eml"_s, "Subject: x\r\n\r\nd\xe9j\xe0\r\n")).contains(u"<p>déjà</p>"_s));
}

TEST_F(Mail, wholeAndHalf)
{
    const QString alternative =
        u"Content-Type: multipart/mixed; boundary=\"x\"\n\n--x\nContent-Type: text/plain\n\nplain\n"
        "--x\nContent-Type: text/html\n\n<html><head><style>b</style></head><body>rich<br></body></html>\n"_s;
    const Case cases[] = {
        {"no type, two lines", u"Subject: s\n\na\nb"_s, u"<p>a<br/>\nb</p>"_s},
        {"no empty line", u"Subject: s"_s, u""_s},
        {"nothing", u""_s, u""_s},
        {"a boundary that never closes", alternative, u"rich<br/>"_s},
        {"closed", alternative + u"--x--\nepilogue\n\nx"_s, u"rich<br/>"_s},
        {"no boundary", u"Content-Type: multipart/mixed\n\na"_s, u"<p>a</p>"_s},
        {"a part without a header", u"Content-Type: multipart/mixed; boundary=x\n\npreamble\n--x\n\na\n--x--"_s,
         u"<p>a</p>"_s},
        {"unknown type", u"Content-Type: text/calendar\n\na"_s, u""_s},
        {"HTML without a body", u"Content-Type: text/html\n\n<b>a</b>"_s, u"<b>a</b>"_s},
        {"undecodable", u"Content-Type: text/html\nContent-Transfer-Encoding: base64\n\n6Q=="_s, u""_s},
    };
    for (const Case &row : cases) {
        QString body = bodyOf(row.text);
        if (const qsizetype at = body.indexOf(u"<div style=\"padding-bottom: 20px;\"></div>"_s); at >= 0)
            body = body.mid(at + 41).trimmed();
        EXPECT_EQ(body, row.wanted) << row.name;
    }
    QString deep;
    for (int i = 0; i < 3000; ++i) deep += u"Content-Type: multipart/mixed; boundary=b%1;\n\n--b%1\n"_s.arg(i);
    EXPECT_TRUE(tm_emlToHTML(deep).endsWith(u"</html>"_s));
}

TEST_F(Mail, attachedTextIsAFile)
{
    const QString page =
        tm_emlToHTML(u"Content-Type: multipart/mixed; boundary=x\n\n--x\nContent-Type: text/plain\n\nbody\n--x\n"
                     "Content-Type: text/html; charset=utf-8\nContent-Transfer-Encoding: quoted-printable\n"
                     "Content-Disposition: attachment;\n filename=\"a b.html\"\n\n<p>=C3=A4</p>\n--x--\n"_s);
    EXPECT_TRUE(page.contains(u"<p>body</p>"_s)) << page.toStdString();
    EXPECT_EQ(fileNamed(page, u"a b.html"_s), "<p>ä</p>\n");
}

TEST_F(Mail, frames)
{
    EXPECT_EQ(convertToHTML(u"a\n\n> b"_s), u"<p>a</p>\n\n<blockquote><p>b</p></blockquote>\n"_s);
    const QString page = wrapTextInHTML(u"x"_s);
    EXPECT_TRUE(page.startsWith(u"<html>\n<head>\n<meta name=\"viewport\""_s));
    EXPECT_TRUE(page.endsWith(u"<body style=\"font-family:**TomeletFont**; padding: **BodyPadding**%; color:black; "
                              "font-size:**TomeletFontSize**px;\">\nx\n</body>\n</html>"_s));
    EXPECT_FALSE(pageForItem(write(u"/a.eml"_s, "Subject: x\n\na")).contains(u"**"_s));
}
