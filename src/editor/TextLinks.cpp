// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/TextLinks.h"

#include "conversion/Patterns.h"
#include "conversion/WikiLinks.h"
#include "foundation/Platform.h"

namespace tomelet {

namespace {

// A title behind the address is no part of it.
const QString markdownLink = QStringLiteral(R"x(\[[^\]\[]*?\]\(\s*<?(.*?)>?(?:\s+"[^"]*")?\s*\))x");
const QString plainAddress = QStringLiteral(R"x(<([a-zA-Z][a-zA-Z0-9+.-]*:[^<>\s]+)>)x");
// Behind it, signs belong to the sentence.
const QString bareAddress =
    QStringLiteral(R"x(\b((?:https?://|mailto:|tomelet://|www\.)[^\s<>"]*[^\s<>".,;:!?'()\[\]{}*_]))x");
const QString wikiLink = QStringLiteral(R"x(\[\[[^\]]*?\]\])x");
// No longer line is read by anybody.
constexpr qsizetype longestLine = 100000;

// The group of the match that holds the position; not found where none does.
Range groupAt(const QString &line, qsizetype position, const QString &pattern, size_t group)
{
    const PatternMatches matches = matchesOfPattern(line, pattern);
    for (size_t i = 0; i < matches.size(); ++i)
        if (matches[i].range().location <= position && position < matches[i].range().end())
            return matches[i].group(group);
    return {};
}

QString withScheme(const QString &address)
{
    return address.startsWith(u"www.") ? QString(u"http://" + address) : address;
}

} // namespace

QString addressOfLinkAt(const QString &line, qsizetype position)
{
    if (line.size() > longestLine) return {};
    for (const QString &pattern : {markdownLink, plainAddress})
        if (const Range address = groupAt(line, position, pattern, 1); address.isFound())
            return substring(line, address);
    if (settings().boolean(QStringLiteral("HighlightLinks")))
        if (const Range address = groupAt(line, position, bareAddress, 1); address.isFound())
            return withScheme(substring(line, address));
    if (!settings().boolean(QStringLiteral("WikiActivateLinksInPlaintext"))) return {};
    const Range link = groupAt(line, position, wikiLink, 0);
    return link.isFound() ? addressOfLinkAt(tm_makeWikiLinksMarkdownLinks(substring(line, link)), 0) : QString();
}

} // namespace tomelet
