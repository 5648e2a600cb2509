// SPDX-License-Identifier: GPL-3.0-or-later
// How many check boxes of a document are open.
#include "conversion/Patterns.h"
#include "foundation/SerialQueue.h"
#include "library/Extensions.h"
#include "library/TextFile.h"
#include "organising/tasks/TaskRows.h"

#include <QCoreApplication>
#include <QMetaObject>

namespace tomelet {

qlonglong openChecklistItems(const QString &path)
{
    const bool isHtml = lowerExtension(path) == u"html";
    if (!isHtml && !hasMarkdownExtension(path)) return 0;
    const auto document = readTextFile(path);
    if (!document) return 0;
    const QString pattern =
        isHtml ? QStringLiteral("class=\"tm_checkbox\"") : QStringLiteral("^\\s*[>:]?\\s*- \\[[ ]\\]");
    return qlonglong(
        matchesOfPattern(document->text, pattern, PatternCaseInsensitive | (isHtml ? 0 : PatternLineAnchored)).size());
}

void countOpenChecklistItems(const QString &path, std::function<void(qlonglong)> taker)
{
    static SerialQueue queue;
    queue.add([path, taker = std::move(taker)] {
        const qlonglong count = openChecklistItems(path);
        // Nobody is there to be told when the program is ending.
        if (QCoreApplication::instance() == nullptr) return;
        QMetaObject::invokeMethod(
            QCoreApplication::instance(), [taker, count] { taker(count); }, Qt::QueuedConnection);
    });
}

} // namespace tomelet
