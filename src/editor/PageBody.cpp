// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/PageBody.h"

#include "conversion/Patterns.h"
#include "foundation/Range.h"

namespace tomelet {

namespace {

// What only looks like a tag: comments and the texts of elements that hold no markup. Blanked, so that places
// stay.
QString withoutRawText(const QString &page)
{
    static const QString raw = QStringLiteral(R"((?is)<!--.*?-->|<(script|style|title|textarea)\b[^>]*>.*?</\1\s*>)");
    QString blanked = page;
    for (Range range = rangeOfPattern(blanked, raw); range.isFound(); range = rangeOfPattern(blanked, raw))
        blanked.replace(range.location, range.length, QString(range.length, u' '));
    return blanked;
}

// Where the head ends in front of the body's tag: what no head may hold begins the body before its tag does.
qsizetype endOfHead(const QString &markup, qsizetype bodyTag)
{
    static const QString head =
        QStringLiteral(R"((?is)\A(?:\s|<!doctype[^>]*>|</?(?:html|head|meta|link|base|noscript|template)\b[^>]*>)*+)");
    const Range allowed = rangeOfPattern(markup, head, 0, {0, bodyTag});
    return allowed.isFound() ? allowed.end() : bodyTag;
}

} // namespace

QString pageWithBody(const QString &source, const QString &body)
{
    const QString markup = withoutRawText(source);
    Range start = rangeOfPattern(markup, QStringLiteral(R"((?is)<body\b(?:"[^"]*"|'[^']*'|[^>"'])*>)"));
    const bool hasTag = start.isFound();
    if (!hasTag) start = rangeOfPattern(markup, QStringLiteral(R"((?i)</head\s*>)"));
    if (!start.isFound()) return body;
    if (const qsizetype end = endOfHead(markup, start.location); end < start.location)
        return pageWithBody(source.left(end) + source.mid(start.location), body);
    const bool endsBody = rangeOfPattern(markup, QStringLiteral(R"((?i)</body\s*>)")).isFound();
    const bool endsPage = rangeOfPattern(markup, QStringLiteral(R"((?i)</html\s*>)")).isFound();
    return source.left(start.end()) + body + (endsBody ? u"</body>" : u"") + (endsPage ? u"\n</html>\n" : u"");
}

QString headOfPage(const QString &page)
{
    const QString markup = withoutRawText(page);
    const Range start = rangeOfPattern(markup, QStringLiteral(R"((?i)<head\b[^>]*>)"));
    const Range end = rangeOfPattern(markup, QStringLiteral(R"((?i)</head\s*>)"));
    if (!start.isFound() || !end.isFound() || end.location < start.end()) return {};
    return page.mid(start.end(), end.location - start.end());
}

} // namespace tomelet
