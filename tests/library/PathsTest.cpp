// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/Notebook.h"

#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/TextFile.h"

using namespace tomelet;
using Paths = tomelet::test::Notebook;

namespace {

struct Row
{
    const char16_t *given;
    const char16_t *wanted;
};

QString text(const char16_t *literal)
{
    return QString::fromUtf16(literal);
}

} // namespace

TEST_F(Paths, whatIsHidden)
{
    const struct
    {
        const char *path;
        bool dotFile;
        bool excluded;
    } rows[] = {
        {"/r/Book/a.md", false, false},
        {"/r/.hidden.md", true, true},
        {"/r/.git/a.md", true, true},
        {"/r/Book/..foo", false, false},
        {"/r/.x/..foo", true, true},
        {"/r/a.md~", true, true},
        {"/r/a.md.plist", false, true},
        {"/r/mine.plist", false, true},
        {"/r/Icon\r", false, true},
        {"/r/Icons", false, true},
        {"/r/Icon.md", false, false},
        {"/r/__NewNoteTmp3.md", false, true},
        {"/r/TMResources/Misc/S.txt", false, true},
        {"/r/TMResources/CSS/Theme.css", false, false},
        {"/r/Book/TMImages", false, true},
        {"/r/Book/TMImages/a.png", false, false},
        {"/r/x.__sidecar", false, true},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(tm_pathIsDotFile(QString::fromLatin1(row.path)), row.dotFile) << row.path;
        EXPECT_EQ(tm_pathIsExcludedFromDisplay(QString::fromLatin1(row.path)), row.excluded) << row.path;
    }
}

TEST_F(Paths, anchors)
{
    EXPECT_EQ(tm_pathAnchor(QStringLiteral("Book/Doc.md#Intro")), QStringLiteral("Intro"));
    EXPECT_EQ(tm_pathWithoutAnchor(QStringLiteral("Book/Doc.md#Intro")), QStringLiteral("Book/Doc.md"));
    EXPECT_EQ(tm_pathAnchor(QStringLiteral("/root/Book/My #1 note")), QStringLiteral("1 note"));
    EXPECT_EQ(tm_pathAnchor(QStringLiteral("/root/Book/My #1 note.md")), QString());
    EXPECT_EQ(tm_pathWithoutAnchor(QStringLiteral("/r/C#.md")), QStringLiteral("/r/C#.md"));
    EXPECT_EQ(tm_pathAnchor(QStringLiteral("/a#b/c")), QString());
    EXPECT_EQ(tm_pathByAppendingAnchor(QStringLiteral("/a.md"), QString()), QStringLiteral("/a.md"));
}

TEST_F(Paths, forms)
{
    EXPECT_EQ(tm_pathFromTomeletURLScheme(QStringLiteral("tomelet://show/Book/a%20b.md")),
              QStringLiteral("/Book/a%20b.md"));
    EXPECT_EQ(tm_normalizedPath(at(QStringLiteral("/Book/a.md"))), QStringLiteral("/Book/a.md"));
    EXPECT_EQ(tm_normalizedPath(root.toUpper() + QStringLiteral("/Book")), QStringLiteral("/Book"));
    EXPECT_EQ(tm_normalizedPath(QStringLiteral("/elsewhere/a.md")), QStringLiteral("/elsewhere/a.md"));
    EXPECT_EQ(tm_pathFormattedForDisplay(QStringLiteral("https://x.org/a/")), QStringLiteral("x.org ⟩ a"));
    EXPECT_EQ(tm_iCloudStub(QStringLiteral("/r/B/a.md")), QStringLiteral("/r/B/.a.md.icloud"));
    settings().remove(QStringLiteral("TomeletFolder"));
    EXPECT_FALSE(tm_itemIsChildOfTomelet(QStringLiteral("/x")));
}

TEST_F(Paths, linkEscaping)
{
    const Row rows[] = {
        {u"my file.md", u"my%20file.md"},
        {u"my%20file.md", u"my%20file.md"},
        {u"a b.md#Some Part", u"a%20b.md#Some Part"},
        {u"file:///a b/c(1).md", u"file:///a%20b/c%281%29.md"},
        {u"http://x.org/a b(c)", u"http://x.org/a b%28c%29"},
        {u"mailto:me(you)@x.org", u"mailto:me%28you%29@x.org"},
        {u"Über/ß.md", u"%C3%9Cber/%C3%9F.md"},
        {u"100%.md", u"100%25.md"},
    };
    for (const Row &row : rows) EXPECT_EQ(tm_pathEscapedForMarkdownLink(text(row.given)), text(row.wanted));
}

TEST_F(Paths, relativePaths)
{
    write(QStringLiteral("/Book/my file.md"));
    const struct
    {
        const char16_t *target;
        const char16_t *folder;
        const char16_t *wanted;
    } rows[] = {
        {u"/Book/a.md", u"/Book", u"a.md"},
        {u"/Book", u"/Book", u"./"},
        {u"/Bookshelf/a.md", u"/Book", u"../Bookshelf/a.md"},
        {u"/a.md", u"/Book/Sub", u"../../a.md"},
        {u"/a.md", u"", u"a.md"},
        {u"tomelet://show/Book/Sub/a.md", u"/Book", u"Sub/a.md"},
        {u"/Book/my%20file.md", u"/Other", u"../Book/my%20file.md"},
        {u"/Bücher/a.md", u"/Bu\u0308cher", u"a.md"},
        {u"", u"/Book", u""},
    };
    for (const auto &row : rows) EXPECT_EQ(tm_makeRelativeToPath(text(row.target), text(row.folder)), text(row.wanted));
    EXPECT_EQ(tm_makeRelativeToPath(at(QStringLiteral("/Book/a.md")), at(QStringLiteral("/Other"))),
              QStringLiteral("../Book/a.md"));
}

TEST_F(Paths, newNames)
{
    const Row rows[] = {
        {u"a/b:c", u"a-b-c"},         {u"???", u"-"}, {u"--a--b__", u"a-b"}, {u" #Title& ", u"Title"},
        {u"a <b> | c", u"a -b- - c"},
    };
    for (const Row &row : rows) EXPECT_EQ(tm_escapeIllegalCharacters(text(row.given)), text(row.wanted));

    write(QStringLiteral("/a.md"));
    write(QStringLiteral("/a 1.md"));
    EXPECT_EQ(tm_uniqueNameForFileatPath(QStringLiteral("a.md"), root), at(QStringLiteral("/a 2.md")));
    EXPECT_EQ(tm_uniqueNameForFileatPath(QStringLiteral("new"), root), at(QStringLiteral("/new")));
    const QString longName = QString(400, QChar(u'ä')) + QStringLiteral(".md");
    EXPECT_LE(lastPathComponent(tm_uniqueNameForFileatPath(longName, root)).toUtf8().size(), 249);
    EXPECT_EQ(tm_stringByEscapingWildcards(QStringLiteral("a1*ß")), QStringLiteral("a\\1\\*ß"));
}

TEST_F(Paths, existenceFollowsTheStoredName)
{
    write(QStringLiteral("/Bu\u0308cher.md"));
    EXPECT_TRUE(tm_fileExistsAtPathIsDirectory(at(QStringLiteral("/Bücher.md"))).exists);
    EXPECT_FALSE(tm_fileExistsAtPathIsDirectory(at(QStringLiteral("/bücher.md"))).exists);
    EXPECT_TRUE(tm_fileExistsAtPathIsDirectory(root).isFolder);
    EXPECT_FALSE(tm_fileExistsAtPathIsDirectory(at(QStringLiteral("/none/x"))).exists);
}

TEST_F(Paths, kinds)
{
    EXPECT_EQ(tm_mimeTypeForExtension(QStringLiteral("MD")), QStringLiteral("text/plain"));
    EXPECT_EQ(tm_mimeTypeForExtension(QStringLiteral("flac")), QStringLiteral("audio/mpeg"));
    EXPECT_EQ(tm_mimeTypeForExtension(QStringLiteral("zzz")), QStringLiteral("text/html"));
    EXPECT_EQ(tm_extensionForMimeType(QStringLiteral("image/jpeg")), QStringLiteral("jpeg"));
    EXPECT_FALSE(hasPlainTextExtension(QStringLiteral("a.zzz")));
    write(QStringLiteral("/TMResources/Misc/CustomPlainTextExtensions.txt"), "zzz\n yyy zzz\n");
    EXPECT_TRUE(hasPlainTextExtension(QStringLiteral("a.zzz")));
    EXPECT_EQ(customPlainTextExtensions().size(), 2);
    EXPECT_EQ(recognisedExtensions().size(), 77);
    EXPECT_EQ(builtInPlainTextExtensions().size(), 40);
    EXPECT_TRUE(tm_isEmptyBook(makeBook(QStringLiteral("/Empty"))));
}

TEST_F(Paths, encodings)
{
    const struct
    {
        QByteArray bytes;
        qlonglong encoding;
        const char16_t *text;
    } rows[] = {
        {"plain", 4, u"plain"},
        {"\xc3\xa4", 4, u"ä"},
        {"\xef\xbb\xbfx", 4, u"x"},
        {"caf\x8e", 30, u"café"},
        {"caf\xe9\r\n", 12, u"café\r\n"},
        {"\x81\xe9\r\n", 30, u"ÅÈ\r\n"},
        {QByteArray("\xff\xfe\x41\x00", 4), 10, u"A"},
        {QByteArray("\xfe\xff\x00\x41", 4), 10, u"A"},
    };
    for (const auto &row : rows) {
        const QString path = write(QStringLiteral("/t.txt"), row.bytes);
        EXPECT_EQ(tm_textEncodingOfFile(path), row.encoding) << row.bytes.toHex().toStdString();
        const auto decoded = readTextFile(path);
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->text, text(row.text));
        EXPECT_EQ(encodeText(decoded->text, decoded->encoding, decoded->byteOrderMark), row.bytes);
    }
    EXPECT_EQ(tm_textEncodingOfFile(at(QStringLiteral("/missing.txt"))), 1);
}
