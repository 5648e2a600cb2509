// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/PropertyList.h"

#include "foundation/Conversions.h"

#include <QDateTime>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <limits>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

QVariant date(const char *iso)
{
    return dateFromIso(QString::fromLatin1(iso));
}

// Every kind of value, with what is easily lost: both ends of integers, dates far away, texts outside ASCII.
QVariantMap sample()
{
    constexpr auto largest = std::numeric_limits<qlonglong>::max();
    return {
        {u"array"_s, QVariantList{u"one"_s, u"one"_s, QVariantList(), QVariantMap(), u""_s}},
        {u"bools"_s, QVariantList{true, false}},
        {u"data"_s, QByteArray(100, '\xFB')},
        {u"dates"_s,
         QVariantList{date("2026-11-21T08:30:00Z"), date("2071-03-01T23:59:59Z"), date("1904-02-29T00:00:00Z"),
                      date("4001-01-01T00:00:00Z"), date("0001-01-01T00:00:00Z")}},
        {u"empty data"_s, QByteArray("")},
        {u"integers"_s, QVariantList{0LL, -1LL, 255LL, 256LL, 65536LL, 1LL << 32, largest, -largest - 1}},
        {u"reals"_s, QVariantList{0.1, -2.5, 1e300, std::numeric_limits<double>::infinity()}},
        {u"text <&> \"ü\" 😀"_s, u" \t<a href='x'>&amp;]]>\r\nü 😀\n "_s},
    };
}

QByteArray document(const QByteArray &value)
{
    return "<?xml version=\"1.0\"?>\n<plist version=\"1.0\">" + value + "</plist>";
}

QByteArray bigEndian(quint64 number, int size)
{
    QByteArray bytes;
    for (int i = size - 1; i >= 0; --i) bytes += char(number >> (8 * i) & 0xFF);
    return bytes;
}

// A binary list of the given objects, one byte an offset and a reference.
QByteArray binary(const QList<QByteArray> &objects, quint64 count = 0)
{
    QByteArray out = "bplist00", offsets;
    for (const QByteArray &object : objects) {
        offsets += char(out.size());
        out += object;
    }
    const auto table = quint64(out.size());
    return out + offsets + QByteArray(6, '\0') + "\1\1" + bigEndian(count ? count : quint64(objects.size()), 8) +
           bigEndian(0, 8) + bigEndian(table, 8);
}

} // namespace

TEST(PropertyList, everyKindSurvivesBothForms)
{
    EXPECT_EQ(parsePropertyList(xmlPropertyList(sample())), QVariant(sample()));
    EXPECT_EQ(parsePropertyList(binaryPropertyList(sample())), QVariant(sample()));
    const QVariant exact = QDateTime::fromMSecsSinceEpoch(-123456789, Qt::UTC);
    EXPECT_EQ(parsePropertyList(binaryPropertyList(exact)), exact);
    EXPECT_EQ(parsePropertyList(xmlPropertyList(exact)), date("1969-12-30T13:42:23Z"));
}

TEST(PropertyList, layoutOfTheXmlForm)
{
    const QVariantMap tree{{u"b"_s, QVariantMap{{u"list"_s, QVariantList{1LL, 0.1, true}}, {u"none"_s, QVariant()}}},
                           {u"B"_s, QVariantList()},
                           {u"a\u0001\xD800"_s, u"x\u0000\u0008 < & > \"\r\uFFFF"_s},
                           {u"c"_s, QByteArray(60, 'x')},
                           {u"d"_s, date("2026-11-21T08:30:00Z")}};
    const QByteArray x68("eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4eHh4");
    EXPECT_EQ(xmlPropertyList(tree).toStdString(),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
              "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
              "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
              "<plist version=\"1.0\">\n<dict>\n"
              "\t<key>B</key>\n\t<array/>\n"
              "\t<key>a</key>\n\t<string>x &lt; &amp; &gt; \"&#13;</string>\n"
              "\t<key>b</key>\n\t<dict>\n\t\t<key>list</key>\n\t\t<array>\n\t\t\t<integer>1</integer>\n"
              "\t\t\t<real>0.10000000000000001</real>\n\t\t\t<true/>\n\t\t</array>\n\t</dict>\n"
              "\t<key>c</key>\n\t<data>\n\t" +
                  x68.toStdString() +
                  "\n\teHh4eHh4eHh4\n\t</data>\n"
                  "\t<key>d</key>\n\t<date>2026-11-21T08:30:00Z</date>\n"
                  "</dict>\n</plist>\n");
    EXPECT_TRUE(xmlPropertyList(QVariantMap()).endsWith("<dict/>\n</plist>\n"));
}

TEST(PropertyList, whatOtherWritersMake)
{
    const struct
    {
        const char *name;
        QByteArray value;
        QVariant wanted;
    } rows[] = {
        {"hexadecimal", "<integer> 0xFF </integer>", 255LL},
        {"negative", "<integer>-9223372036854775808</integer>", std::numeric_limits<qlonglong>::min()},
        {"unsigned", "<integer>18446744073709551615</integer>", 18446744073709551615.0},
        {"leading zero", "<integer>010</integer>", 10LL},
        {"bare numbers in a real", "<real>1e400</real>", std::numeric_limits<double>::infinity()},
        {"CDATA and comment", "<string>a<![CDATA[<!ENTITY]]><!-- no -->b&#x1F600;</string>", u"a<!ENTITYb😀"_s},
        {"year 0", "<date>0000-12-30T00:00:00Z</date>", date("0001-01-01T00:00:00Z").toDateTime().addDays(-2)},
        {"data in pieces", "<data>\n\tAA\n EC\n</data>", QByteArray("\0\1\2", 3)},
        {"key twice", "<dict><key>k</key><true/><key>k</key><false/></dict>", QVariantMap{{u"k"_s, false}}},
        {"closed in the long form", "<array><true></true><dict></dict></array>", QVariantList{true, QVariantMap()}},
    };
    for (const auto &row : rows) EXPECT_EQ(parsePropertyList(document(row.value)), row.wanted) << row.name;

    const QString text = QString::fromUtf8(document("<string>ü😀</string>"));
    QByteArray utf16("\xFF\xFE", 2);
    for (const QChar c : text) utf16 += char(c.unicode() & 0xFF), utf16 += char(c.unicode() >> 8);
    EXPECT_EQ(parsePropertyList(utf16), u"ü😀"_s);
    EXPECT_EQ(parsePropertyList(utf16.mid(2)), u"ü😀"_s);
    EXPECT_EQ(parsePropertyList(QByteArray("\xEF\xBB\xBF" + text.toUtf8())), u"ü😀"_s);
    EXPECT_EQ(parsePropertyList("<?xml version='1.0' encoding='ISO-8859-1'?><plist><string>\xFC</string></plist>"),
              u"ü"_s);

    const QByteArray wide = QByteArray("\x14", 1) + bigEndian(0, 8) + bigEndian(~0ULL, 8);
    const QByteArray floats = QByteArray("\x22\x3F\x80\0\0", 5);
    EXPECT_EQ(parsePropertyList(binary({QByteArray("\xA3\1\2\3", 4), wide, floats, "\x80\7"})),
              QVariant(QVariantList{18446744073709551615.0, 1.0, QVariantMap{{u"CF$UID"_s, 7LL}}}));
}

TEST(PropertyList, refusesHostileInput)
{
    const auto nested = [](int depth) {
        return document(QByteArray("<array>").repeated(depth) + QByteArray("</array>").repeated(depth));
    };
    EXPECT_TRUE(parsePropertyList(nested(512)));
    QList<QByteArray> doubling;
    for (char i = 1; i < 60; ++i) doubling.append(QByteArray("\xA2", 1) + i + i);
    doubling.append("\x09");
    const QByteArray laughs = "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;\">]>";
    const QByteArray external = "<!DOCTYPE plist SYSTEM \"file:///etc/passwd\">";
    const QByteArray good = binaryPropertyList(sample());
    QByteArray farTable = good;
    farTable.replace(farTable.size() - 8, 8, bigEndian(~0ULL, 8));

    const struct
    {
        const char *name;
        QByteArray bytes;
    } rows[] = {
        {"empty", ""},
        {"no list", "just a text"},
        {"web page", "<html><body/></html>"},
        {"empty list", document("")},
        {"two values", document("<true/><true/>")},
        {"truncated", xmlPropertyList(sample()).chopped(20)},
        {"invalid UTF-8", document("<string>\xC3(</string>")},
        {"too deep", nested(513)},
        {"text between elements", document("<array>x</array>")},
        {"key without a value", document("<dict><key>k</key></dict>")},
        {"value without a key", document("<dict><true/></dict>")},
        {"element in a text", document("<string><b/></string>")},
        {"no integer", document("<integer>12px</integer>")},
        {"signs", document("<integer>-+1</integer>")},
        {"empty integer", document("<integer/>")},
        {"no real", document("<real>1,5</real>")},
        {"day of no month", document("<date>2026-02-30T00:00:00Z</date>")},
        {"date without zone", document("<date>2026-02-03T00:00:00</date>")},
        {"no Base64", document("<data>A*==</data>")},
        {"entities", laughs + document("<string>&b;</string>").mid(22)},
        {"entities behind a comment", "<!-- <plist> -->" + laughs + "<plist><string>&b;</string></plist>"},
        {"many attributes", document("<dict a='>'" + QByteArray(" b=''").repeated(300) + "/>")},
        {"external entity", external + "<plist><string>&b;</string></plist>"},
        {"binary of nothing", "bplist00"},
        {"binary truncated", good.chopped(1)},
        {"table far away", farTable},
        {"doubling containers", binary(doubling)},
        {"cycle", binary({QByteArray("\xA1\0", 2)})},
        {"more objects than table", binary({"\x09"}, 200)},
        {"too many members", binary({QByteArray("\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 10)})},
        {"too many pairs", binary({QByteArray("\xDF\x13\x80\0\0\0\0\0\0\1", 10)})},
        {"long text", binary({QByteArray("\x6F\x13\x80\0\0\0\0\0\0\1", 10)})},
        {"key that is no text", binary({"\xD1\1\1", "\x09"})},
        {"null object", binary({QByteArray(1, '\0')})},
        {"date that is no number", binary({QByteArray("\x33\x7F\xF8\0\0\0\0\0\0", 9)})},
    };
    for (const auto &row : rows) {
        QString error;
        EXPECT_FALSE(parsePropertyList(row.bytes, &error)) << row.name;
        EXPECT_FALSE(error.isEmpty()) << row.name;
    }
    for (qsizetype i = 0; i < good.size(); ++i) EXPECT_FALSE(parsePropertyList(good.first(i))) << i;
}

TEST(PropertyList, anotherReaderAgrees)
{
    const QString plistutil = QStandardPaths::findExecutable(u"plistutil"_s);
    ASSERT_FALSE(plistutil.isEmpty()) << "libplist-utils is among the test packages";
    QTemporaryDir folder;
    // The other program has ways of its own with infinities, dates far away and carriage returns.
    QVariantMap tree = sample();
    tree.insert(u"dates"_s, QVariantList{date("2026-11-21T08:30:00Z"), date("2071-03-01T23:59:59Z")});
    tree.insert(u"reals"_s, QVariantList{0.5, -2.5});
    tree.insert(u"text <&> \"ü\" 😀"_s, u" \t<a href='x'>&amp;]]>\nü 😀\n "_s);
    const struct
    {
        QByteArray bytes;
        QString format;
    } rows[] = {{xmlPropertyList(tree), u"bin"_s}, {binaryPropertyList(tree), u"xml"_s}};
    for (const auto &row : rows) {
        QFile in(folder.filePath(u"in"_s)), out(folder.filePath(u"out"_s));
        ASSERT_TRUE(in.open(QIODevice::WriteOnly));
        in.write(row.bytes);
        in.close();
        ASSERT_EQ(QProcess::execute(plistutil, {u"-i"_s, in.fileName(), u"-o"_s, out.fileName(), u"-f"_s, row.format}),
                  0);
        ASSERT_TRUE(out.open(QIODevice::ReadOnly));
        QString error;
        const auto parsed = parsePropertyList(out.readAll(), &error);
        ASSERT_TRUE(parsed) << error.toStdString();
        for (auto it = tree.begin(); it != tree.end(); ++it)
            EXPECT_EQ(parsed->toMap().value(it.key()), it.value()) << it.key().toStdString();
    }
}
