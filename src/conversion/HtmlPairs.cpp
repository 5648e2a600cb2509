// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/HtmlSteps_p.h"

#include "conversion/NestedRewrites.h"
#include "conversion/PairedElements.h"
#include "library/Root.h"

namespace tomelet {

namespace {

OpeningTag tagUpTo(qsizetype bracket, const QString &before, const QString &after)
{
    return {bracket < 0 ? qsizetype(OpeningTag::Unfinished) : bracket + 1, before, after};
}

bool isWholeWord(QStringView text, const QString &opener)
{
    return rangeOfPattern(text.left(opener.size() + 2).toString(), opener + QStringLiteral("\\b")).isFound();
}

// For "<name", which must be a whole word, up to the next bracket.
std::function<OpeningTag(QStringView)> wholeWordTag(const QString &opener)
{
    return [opener](QStringView text) -> OpeningTag {
        if (!isWholeWord(text, opener)) return {};
        return tagUpTo(text.indexOf(u'>'), QStringLiteral("\n"), QStringLiteral("\n"));
    };
}

} // namespace

void convertParagraphs(QString &text)
{
    PairedElement paragraph{QStringLiteral("<p"), QStringLiteral("</p>"), wholeWordTag(QStringLiteral("<p"))};
    paragraph.dropsEmpty = true;
    text = rewritePairedElements(text, paragraph);
}

// -- tables -----------------------------------------------------------------------------------------------------------

namespace {

QString delimiterRow(const QString &table)
{
    QStringList cells;
    const PatternMatches heads = matchesOfPattern(table, QStringLiteral("<th(\\b[^>]*)>"), PatternCaseInsensitive);
    for (size_t i = 0; i < heads.size(); ++i) {
        const QString attributes = substring(table, heads[i].group(1));
        cells.append(attributes.contains(u"right")    ? QStringLiteral(" ----------: ")
                     : attributes.contains(u"center") ? QStringLiteral(" :---------: ")
                                                      : QStringLiteral(" ----------- "));
    }
    return cells.join(u'|');
}

// A sweep for texts that hold a tag: indents of deep lists have too many blanks to be tried in vain.
struct TagSweep
{
    QStringView tag;
    QString pattern, replacement;
};

const TagSweep rowSweeps[] = {
    {u"<colgroup>", QStringLiteral("(?s)<colgroup>.+?</colgroup>"), {}},
    {u"</td>", QStringLiteral("\\s*</td>\\s*<td\\b[^>]*>"), QStringLiteral(" | ")},
    {u"</td>", QStringLiteral("</td>\\s*</tr>"), QStringLiteral("\n")},
    {u"<tr", QStringLiteral("<tr\\b[^>]*>\\s*<td\\b[^>]*>"), {}},
    {u"<tbody", QStringLiteral("<tbody\\b[^>]*>"), {}},
    {u"</tbody>", QStringLiteral("</tbody>"), {}},
    {u"</th>", QStringLiteral("</th>\\s*<th\\b[^>]*>"), QStringLiteral(" | ")},
    {u"</th>", QStringLiteral("</th>\\s*</tr>"), QStringLiteral("\n")},
    {u"<tr", QStringLiteral("<tr\\b[^>]*>\\s*<th\\b[^>]*>"), {}},
    {u"<thead", QStringLiteral("<thead\\b[^>]*>"), {}},
};

QString markdownRows(QString rows, QStringView table)
{
    const bool isWhole = rows.size() == table.size();
    for (const TagSweep &sweep : rowSweeps)
        if (rows.contains(sweep.tag)) rows = regexSweep(rows, sweep.pattern, sweep.replacement);
    if (isWhole) rows = regexSweep(rows, QStringLiteral("^[\\s|]*$"), {});
    rows = regexSweep(rows, QStringLiteral("\\n{2,}"), QStringLiteral("\n"));
    if (rows.contains(u"</thead>"))
        rows.replace(QStringLiteral("</thead>"), delimiterRow(table.toString()) + u'\n')
            .replace(QStringLiteral("\n\n"), QStringLiteral("\n"));
    return rows;
}

} // namespace

void convertTables(QString &text)
{
    PairedElement table{QStringLiteral("<table"), QStringLiteral("</table>"), [](QStringView tag) {
                            return tagUpTo(tag.indexOf(u'>'), QStringLiteral("\n\n"), QStringLiteral("\n\n"));
                        }};
    table.rewritePart = markdownRows;
    table.barrier = QStringLiteral("<colgroup>");
    table.trimsContent = true;
    text = rewritePairedElements(text, table);
}

// -- links ------------------------------------------------------------------------------------------------------------

namespace {

QString withoutRoot(QString address)
{
    const QString root = tomeletRoot();
    return root.isEmpty() ? address : address.remove(root);
}

// As "<a [^>]*?href=\"(.+?)\".*?>" has it: the address can hold brackets, what stands in front of it cannot.
OpeningTag linkTag(QStringView text)
{
    constexpr QStringView attribute = u"href=\"";
    const qsizetype bracket = text.indexOf(u'>');
    const qsizetype found = text.left(bracket).indexOf(attribute, 3);
    if (found < 0) return {bracket < 0 ? OpeningTag::Unfinished : OpeningTag::None};
    const qsizetype begin = found + attribute.size();
    const qsizetype quote = text.indexOf(u'"', begin + 1);
    if (quote < 0) return {OpeningTag::Unfinished};
    const qsizetype end = text.indexOf(u'>', quote);
    const QString address = withoutRoot(text.sliced(begin, quote - begin).toString());
    if (address.startsWith(u"x-apple")) return tagUpTo(end, {}, {});
    return tagUpTo(end, QStringLiteral("["), QStringLiteral("](") + address + u')');
}

} // namespace

void convertLinks(QString &text)
{
    text = rewritePairedElements(text, {QStringLiteral("<a "), QStringLiteral("</a>"), linkTag});
}

void convertImages(QString &text)
{
    text =
        replaceFirstMatches(text, QStringLiteral("<img[^>]* src=\"(.+?)\".*?>"), PatternDotAll, QStringLiteral("<img"),
                            QStringLiteral(">"), [](const PatternMatch &match, const QString &all) {
                                const QString source =
                                    withoutRoot(substring(all, match.group(1))).replace(u')', QStringLiteral("%29"));
                                return QString(QStringLiteral("![](") + source + u')');
                            });
}

void convertDefinitionLists(QString &text)
{
    PairedElement list{QStringLiteral("<dl"), QStringLiteral("</dl>"), wholeWordTag(QStringLiteral("<dl"))};
    list.rewritePart = [](QString part, QStringView) {
        for (const auto &[pattern, to] : {std::pair{QStringLiteral("<dt.*?>"), QStringLiteral("\n")},
                                          {QStringLiteral("</dt>"), QStringLiteral("\n")},
                                          {QStringLiteral("<dd.*?>"), QStringLiteral(": ")},
                                          {QStringLiteral("</dd>"), QStringLiteral("\n")}})
            part = regexSweep(part, pattern, to, PatternDotAll);
        return part;
    };
    text = rewritePairedElements(text, list);
}

} // namespace tomelet
