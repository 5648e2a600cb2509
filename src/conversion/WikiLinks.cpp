// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/WikiLinks.h"

#include "conversion/CodeRanges.h"
#include "conversion/Edits.h"
#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "library/PathForms.h"

namespace tomelet {

static QString trimmedBlanks(QString text)
{
    while (text.startsWith(u' ')) text.remove(0, 1);
    while (text.endsWith(u' ')) text.chop(1);
    return text;
}

static QString markdownLink(const QString &inside)
{
    const QStringList parts = inside.split(u'|');
    QString target = percentDecoded(trimmedBlanks(parts.first()));
    target.remove(QStringLiteral("tomelet://show")).remove(QStringLiteral("tomelet://"));
    QString visible =
        parts.size() > 1 ? percentDecoded(parts[1]) : percentDecoded(lastPathComponent(pathWithoutExtension(target)));
    if (parts.size() > 1 && visible.startsWith(u'#')) visible.remove(0, 1);
    return u'[' + visible + QStringLiteral("](") + tm_pathEscapedForMarkdownLink(target) + u')';
}

QString tm_makeWikiLinksMarkdownLinks(const QString &text)
{
    static const QString pattern = QStringLiteral(R"((?<![`.*|\\])(\[\[([^\[\n]+?)\]\])(?!.*`))");
    const PatternMatches matches = matchesOfPattern(text, pattern, PatternLineAnchored);
    if (matches.isEmpty()) return text;
    const QList<Range> code = tm_rangesOfFencedCodeBlocks(text);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;) {
        if (tm_textCheckingResultsIntersectResult(code, matches[i].range())) continue;
        edits.replace(matches[i].group(1), markdownLink(substring(text, matches[i].group(2))));
    }
    return edits.appliedTo(text);
}

} // namespace tomelet
