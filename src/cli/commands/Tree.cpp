// SPDX-License-Identifier: GPL-3.0-or-later
// `tomelet tree [BOOK]`: the tree of books as the outline shows it, smart books first.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Folder.h"
#include "library/ItemPath.h"
#include "library/OutlineItem.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace tomelet::cli {

namespace {

// Depth first without recursion into linked folders, which may lead back up.
QJsonArray childrenAsJson(TMLTOutlineItem *item);

QJsonObject asJson(TMLTOutlineItem *item)
{
    QJsonObject object{{QStringLiteral("title"), item->title()}};
    if (item->smartBookType() != OrdinaryBook) object.insert(QStringLiteral("smartType"), int(item->smartBookType()));
    else if (item->groupItemType() != SmartBooksGroup) object.insert(QStringLiteral("path"), item->fullPath());
    object.insert(QStringLiteral("children"), childrenAsJson(item));
    return object;
}

bool isLink(const TMLTOutlineItem *item)
{
    return item->smartBookType() == OrdinaryBook && !item->isGroupItem() && QFileInfo(item->fullPath()).isSymLink();
}

QJsonArray childrenAsJson(TMLTOutlineItem *item)
{
    QJsonArray array;
    if (isLink(item)) return array;
    if (const auto *children = item->children())
        for (const auto &child : *children) array.append(asJson(child.get()));
    return array;
}

void print(TMLTOutlineItem *item, int depth)
{
    writeLine(QString(depth * 2, u' ') + item->title());
    if (isLink(item)) return;
    if (const auto *children = item->children())
        for (const auto &child : *children) print(child.get(), depth + 1);
}

} // namespace

int runTree(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints the tree of books, smart books first."));
    parser.addPositionalArgument(QStringLiteral("book"), QStringLiteral("Only this book and those below it."),
                                 QStringLiteral("[BOOK]"));
    if (const auto status = parse(call, parser)) return *status;
    if (parser.positionalArguments().size() > 1) return wrongUsage(call, QStringLiteral("tree takes one book"));
    if (const auto status = openNotebook(call)) return *status;

    QList<TMLTOutlineItem *> items{TMLTOutlineItem::smartBooksItem(), TMLTOutlineItem::booksItem()};
    if (!parser.positionalArguments().isEmpty()) {
        const QString path = itemPath(parser.positionalArguments().first());
        TMLTOutlineItem *book = TMLTOutlineItem::childAtPath(path);
        if (!book) return fail(QStringLiteral("%1 is no book of the notebook").arg(path));
        items = {book};
    }
    QJsonArray all;
    for (TMLTOutlineItem *item : items) {
        if (call.json) all.append(asJson(item));
        else print(item, 0);
    }
    if (call.json) writeJson(all);
    return Done;
}

} // namespace tomelet::cli
