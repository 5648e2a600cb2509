// SPDX-License-Identifier: GPL-3.0-or-later
// Back and forward among documents that move and vanish.
#include "tests/support/Notebook.h"

#include "editor/BackList.h"

#include <QFile>

using namespace tomelet;

namespace {

class Back : public tomelet::test::Notebook
{
protected:
    Back()
    {
        for (const auto *name : {"/a.md", "/b.md", "/Book/c.md"}) list.visit(write(QString::fromLatin1(name)));
    }
    BackList list;
};

} // namespace

TEST_F(Back, goesBothWaysUntilSomethingElseIsVisited)
{
    EXPECT_EQ(list.forward(), QString());
    EXPECT_EQ(list.back(), at(QStringLiteral("/b.md")));
    list.visit(at(QStringLiteral("/b.md"))); // being shown is no new visit
    EXPECT_EQ(list.forward(), at(QStringLiteral("/Book/c.md")));
    EXPECT_EQ(list.back(), at(QStringLiteral("/b.md")));
    EXPECT_EQ(list.back(), at(QStringLiteral("/a.md")));
    EXPECT_EQ(list.back(), QString());
    list.visit(write(QStringLiteral("/d.md")));
    EXPECT_EQ(list.forward(), QString());
    EXPECT_EQ(list.back(), at(QStringLiteral("/a.md")));
}

TEST_F(Back, followsMovesAndPassesOverWhatIsGone)
{
    QFile::remove(at(QStringLiteral("/b.md")));
    EXPECT_EQ(list.back(), at(QStringLiteral("/a.md")));
    QFile::rename(at(QStringLiteral("/Book")), at(QStringLiteral("/Moved")));
    list.follow(at(QStringLiteral("/Book")), at(QStringLiteral("/Moved")));
    EXPECT_EQ(list.forward(), at(QStringLiteral("/Moved/c.md")));
    QFile::rename(at(QStringLiteral("/Moved/c.md")), at(QStringLiteral("/Moved/e.md")));
    list.visit(at(QStringLiteral("/Moved/e.md")));
    list.follow(at(QStringLiteral("/Moved/c.md")), at(QStringLiteral("/Moved/e.md")));
    EXPECT_EQ(list.back(), at(QStringLiteral("/a.md"))) << "one entry, not two";
}
