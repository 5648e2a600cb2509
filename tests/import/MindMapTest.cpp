// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/MindMap.h"

#include "editor/FormattedPage.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"
#include "tests/support/Notebook.h"
#include "tests/support/ZipArchive.h"

#include <QDateTime>
#include <QFile>

#include <utility>
#include <vector>

using namespace tomelet;
using namespace Qt::StringLiterals;

namespace {

const QByteArray picture("\x89PNG\r\n\x1a\n and more");

class MindMap : public test::Notebook
{
protected:
    QString map(const std::vector<test::ZipMember> &files) const
    {
        const QString path = at(u"/Map.itmz"_s);
        test::writeZipArchive(path, files);
        // No two of them have the same date.
        static qint64 seconds = 1'000'000'000;
        QFile written(path);
        EXPECT_TRUE(written.open(QIODevice::ReadWrite));
        written.setFileTime(QDateTime::fromSecsSinceEpoch(++seconds), QFile::FileModificationTime);
        return path;
    }
};

} // namespace

TEST_F(MindMap, IsShownByItsPicture)
{
    const std::pair<const char *, QByteArray> text{"mapdata.xml", "<iThoughts/>"};
    const QByteArray other = picture + "!";
    const QString first = tm_pathToPreviewOfITMZ(map({text, {"preview.png", picture}}));
    EXPECT_EQ(readFile(first), picture);
    EXPECT_TRUE(first.startsWith(cacheDirectory()));
    EXPECT_TRUE(formattedPageFor(at(u"/Map.itmz"_s)).html.contains(u"<img src=\"" + first));
    // The changed file has another one, in a folder; its own name leads nowhere.
    const QString second = tm_pathToPreviewOfITMZ(map({text, {"../../assets/Preview.PNG", other}}));
    EXPECT_EQ(readFile(second), other);
    EXPECT_NE(first, second);
    EXPECT_EQ(parentPath(first), parentPath(second));
}

TEST_F(MindMap, WithoutPictureIsACard)
{
    const QString cut = map({{"preview.png", picture}});
    const QByteArray whole = read(u"/Map.itmz"_s);
    for (qsizetype size = 0; size < whole.size(); ++size)
        EXPECT_EQ(tm_pathToPreviewOfITMZ(write(u"/Cut.itmz"_s, whole.first(size))), QString());
    EXPECT_EQ(tm_pathToPreviewOfITMZ(map({{"mapdata.xml", "<iThoughts/>"}, {"preview.png.txt", picture}})), QString());
    EXPECT_EQ(tm_pathToPreviewOfITMZ(map({{"preview.png", "<html>"}})), QString());
    EXPECT_EQ(tm_pathToPreviewOfITMZ(map({{"preview.png", picture + QByteArray(33 << 20, '0')}})), QString());
    EXPECT_TRUE(formattedPageFor(at(u"/Map.itmz"_s)).html.contains(u"tm_card"));
}
