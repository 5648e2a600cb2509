// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/Discount.h"

#include "conversion/Edits.h"
#include "conversion/Patterns.h"
#include "foundation/Collation.h"
#include "foundation/Platform.h"
#include "library/PathForms.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>

extern "C" {
#include <mkdio.h>
}

namespace tomelet {

namespace {

struct CleanUp
{
    void operator()(MMIOT *document) const { mkd_cleanup(document); }
};
using Document = std::unique_ptr<MMIOT, CleanUp>;

constexpr mkd_flag_t pageFlags = MKD_TOC | MKD_EXTRA_FOOTNOTE | MKD_FENCEDCODE | MKD_LATEX | MKD_GITHUBTAGS |
                                 MKD_AUTOLINK | MKD_EXPLICITLIST | MKD_DLEXTRA | MKD_IDANCHOR | MKD_NOSTYLE;
constexpr mkd_flag_t mailFlags = MKD_TOC | MKD_EXTRA_FOOTNOTE | MKD_AUTOLINK;

mkd_flag_t withTypography(mkd_flag_t flags)
{
    return flags | (settings().boolean(QStringLiteral("useSmartyPants")) ? 0 : MKD_NOPANTS);
}

bool usesCompatibleAnchors()
{
    return settings().boolean(QStringLiteral("useMMDCompatibleAnchors"));
}

QString compatibleAnchor(const QString &heading)
{
    if (heading.endsWith(u']')) {
        const PatternMatches labels = matchesOfPattern(heading, QStringLiteral(R"(\[(.+?)\])"), PatternLineAnchored);
        if (!labels.isEmpty()) return percentEncodedPath(substring(heading, labels[labels.size() - 1].group(1)));
    }
    const QString dashed = regexSweep(heading, QStringLiteral(R"([^a-zA-Z0-9\-])"), QStringLiteral("-"));
    return regexSweep(dashed, QStringLiteral(R"(\-+)"), QStringLiteral("-")).toLower();
}

// The library's callbacks are plain C: the text with its length in, memory that it gives back for freeing out.
char *makeAnchor(const char *text, const int size, void *)
{
    return ::strdup(compatibleAnchor(QString::fromUtf8(text, size)).toUtf8().constData());
}

void freeAnchor(char *anchor, void *)
{
    std::free(anchor);
}

Document compiled(const QByteArray &source, mkd_flag_t flags)
{
    // The library's tables are made at the first use, which must not happen twice at once.
    static std::once_flag prepared;
    std::call_once(prepared, mkd_initialize);
    Document document(mkd_string(source.constData(), int(source.size()), flags));
    if (!document) return {};
    if (usesCompatibleAnchors()) {
        mkd_e_anchor(document.get(), makeAnchor);
        mkd_e_free(document.get(), freeAnchor);
    }
    if (!mkd_compile(document.get(), flags)) return {};
    return document;
}

QString titleBlockOf(MMIOT *document)
{
    const QString title = QString::fromUtf8(mkd_doc_title(document));
    if (title.isEmpty()) return {};
    const QString author = QString::fromUtf8(mkd_doc_author(document));
    const QString date = QString::fromUtf8(mkd_doc_date(document));
    QString block = QStringLiteral("<div id=\"header\"><h1 class=\"title\">%1</h1>").arg(title);
    if (!author.isEmpty()) block += QStringLiteral("\n<h2 class=\"author\">%1</h2>").arg(author);
    if (!date.isEmpty()) block += QStringLiteral("\n<h3 class=\"date\">%1</h3>").arg(date);
    return block + QStringLiteral("</div>\n<hr class=\"invisible-pagebreak\">\n");
}

QString generated(MMIOT *document)
{
    char *buffer = nullptr;
    size_t size = 0;
    FILE *stream = ::open_memstream(&buffer, &size);
    if (!stream) return {};
    mkd_generatehtml(document, stream);
    std::fclose(stream);
    QString html = QString::fromUtf8(buffer, qsizetype(size));
    std::free(buffer);
    return html;
}

// -- contents ---------------------------------------------------------------------------------------------------------

// Takes a heading's own "[anchor]" out of what is shown, where the anchor is that very label.
QString withoutOwnAnchors(const QString &html, const QString &pattern)
{
    const PatternMatches matches = matchesOfPattern(html, pattern, PatternLineAnchored);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;) {
        const QString anchor = substring(html, matches[i].group(1));
        if (localizedCompare(anchor, substring(html, matches[i].group(4))) == 0)
            edits.replace(matches[i].group(2), substring(html, matches[i].group(3)));
    }
    return edits.appliedTo(html);
}

QString contentsOf(MMIOT *document)
{
    char *buffer = nullptr;
    const int size = mkd_toc(document, &buffer);
    QString table = buffer && size > 0 ? QString::fromUtf8(buffer, size) : QString();
    std::free(buffer);
    if (usesCompatibleAnchors())
        table = withoutOwnAnchors(table, QStringLiteral(R"x(href="#(.+?)">((.+?)\[(.+?)\])</a>)x"));
    return table;
}

QString contentsBlock(const QString &table)
{
    return QStringLiteral("<!-- TOC -->\n<div id=\"TOC\" class=\"TOC\">\n") + table + QStringLiteral("\n</div>\n");
}

// "2", "2-" and "2-4" as lowest and highest level; nothing for what is no range.
std::optional<std::pair<int, int>> levelsOf(const QString &spec)
{
    const int lowest = std::max(1, spec.first(1).toInt());
    int highest = lowest;
    if (spec.size() == 2 && spec.endsWith(u'-')) highest = 9;
    if (spec.size() == 3) {
        if (!spec.contains(u'-')) return std::nullopt;
        highest = spec.mid(2, 1).toInt();
    }
    if (highest < lowest) return std::nullopt;
    return std::pair(lowest, highest);
}

QString linesOfLevels(const QString &table, int lowest, int highest)
{
    QStringList kept;
    int depth = 0;
    for (const QString &line : table.split(u'\n')) {
        if (line.contains(u"<ul>")) ++depth;
        if (depth >= lowest && depth <= highest) kept.append(line);
        if (line.contains(u"</ul>")) --depth;
    }
    return kept.join(u'\n');
}

QString withContentsPlaced(QString html, const QString &table)
{
    const QString block = contentsBlock(table);
    const QString marker = QStringLiteral(R"(<p>\s*\{\{TOC\}\})");
    if (html.contains(u"<p><TOC><") || rangeOfPattern(html, marker).isFound()) {
        html.replace(QStringLiteral("<p><TOC></p>"), block).replace(QStringLiteral("<p><TOC>"), block);
        Edits edits;
        const PatternMatches markers = matchesOfPattern(html, marker + QStringLiteral(".*?</p>"));
        for (size_t i = markers.size(); i-- > 0;) edits.replace(markers[i].range(), block);
        html = edits.appliedTo(html);
    }
    const PatternMatches ranges = matchesOfPattern(html, QStringLiteral(R"(<p>\s*\{\{TOC:(.{1,3})\}\}.*?</p>)"));
    Edits edits;
    for (size_t i = ranges.size(); i-- > 0;) {
        const auto levels = levelsOf(substring(html, ranges[i].group(1)));
        if (!levels) continue;
        const QString lines = linesOfLevels(table, levels->first, levels->second);
        edits.replace(ranges[i].range(), lines.isEmpty() ? QString() : contentsBlock(lines));
    }
    return edits.appliedTo(html);
}

// The library marks a task by a glyph and a blank; style sheets and the way back know it by its class.
QString withTaskClasses(const QString &html)
{
    QString result = html;
    for (const auto &[glyph, name] : {std::pair{QStringLiteral("&#x2610;"), QStringLiteral("tm_checkbox")},
                                      {QStringLiteral("&#x2611;"), QStringLiteral("tm_checkbox_done")}})
        result = regexSweep(result,
                            QStringLiteral("<li class=\"github_checkbox\">((?:<p>)?)") + glyph + QStringLiteral(" ?"),
                            QStringLiteral("<li class=\"") + name + QStringLiteral("\">$1"));
    return result;
}

} // namespace

QString tm_markdownWithPandoc(const QString &text, bool titleBlock, bool andTOC)
{
    const QByteArray source = text.toUtf8();
    const Document document = compiled(source, withTypography(pageFlags));
    if (!document) return {};
    const QString table = contentsOf(document.get());
    QString html = titleBlock ? titleBlockOf(document.get()) : QString();
    if (andTOC && !text.contains(u"<TOC>") && !text.contains(u"{{TOC")) html += contentsBlock(table);
    html += generated(document.get());
    if (!html.isEmpty()) html = withContentsPlaced(html, table);
    html = withTaskClasses(html);
    if (usesCompatibleAnchors())
        html = withoutOwnAnchors(html, QStringLiteral(R"x(^<h[1-6] id="(.+?)">((.+?)\[(.+?)\])</h[1-6]>$)x"));
    return html;
}

QString discountFragment(const QString &text)
{
    const QByteArray source = text.toUtf8();
    const Document document = compiled(source, withTypography(mailFlags));
    return document ? generated(document.get()) : QString();
}

} // namespace tomelet
