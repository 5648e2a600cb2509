// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/LineEnds.h"

#include "editor/EditedText.h"

#include <algorithm>
#include <vector>

namespace tomelet {

namespace {

struct Line
{
    QStringView content;
    QStringView end;
};

std::vector<Line> linesOf(QStringView text)
{
    std::vector<Line> lines;
    qsizetype start = 0;
    while (start <= text.size()) {
        const auto *unit = std::find_if(text.begin() + start, text.end(), isLineEnd);
        const qsizetype contentEnd = unit - text.begin();
        const QStringView rest = text.sliced(contentEnd);
        const qsizetype length = rest.startsWith(u"\r\n") ? 2 : std::min<qsizetype>(1, rest.size());
        lines.push_back({text.sliced(start, contentEnd - start), rest.first(length)});
        if (length == 0) break;
        start = contentEnd + length;
    }
    return lines;
}

QString prevailingEnd(const std::vector<Line> &lines)
{
    const auto count = [&](QStringView end) {
        return std::ranges::count_if(lines, [&](const Line &line) { return line.end == end; });
    };
    QString best = QStringLiteral("\n");
    for (const QStringView end : {QStringView(u"\r\n"), QStringView(u"\r"), QStringView(u"\u2029")})
        if (count(end) > count(best)) best = end.toString();
    return best;
}

bool hasForeignEnds(const QString &text)
{
    return text.contains(u'\r') || text.contains(QChar::ParagraphSeparator);
}

} // namespace

QString withLineEndsOf(const QString &before, const QString &edited)
{
    if (!hasForeignEnds(before) || hasForeignEnds(edited)) return edited;
    const std::vector<Line> old = linesOf(before);
    const std::vector<Line> now = linesOf(edited);
    const QString prevailing = prevailingEnd(old);
    const size_t common = std::min(old.size(), now.size());
    size_t inFront = 0;
    while (inFront < common && old[inFront].content == now[inFront].content) ++inFront;
    size_t behind = 0;
    while (behind < common - inFront &&
           old[old.size() - 1 - behind].content == now[now.size() - 1 - behind].content)
        ++behind;

    QString text;
    text.reserve(before.size() + edited.size());
    for (size_t i = 0; i < now.size(); ++i) {
        text += now[i].content;
        if (now[i].end.isEmpty()) continue;
        const bool wasInFront = i < inFront;
        const bool wasBehind = i >= now.size() - behind;
        const QStringView end = wasInFront  ? old[i].end
                                : wasBehind ? old[i + old.size() - now.size()].end
                                            : QStringView(prevailing);
        text += end.isEmpty() ? QStringView(prevailing) : end;
    }
    return text;
}

} // namespace tomelet
