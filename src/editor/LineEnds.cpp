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

// How many lines the two have in common from the start, or from the end.
template <typename Iterator>
size_t commonLines(Iterator a, Iterator aEnd, Iterator b, Iterator bEnd)
{
    const auto same = [](const Line &x, const Line &y) { return x.content == y.content; };
    return size_t(std::mismatch(a, aEnd, b, bEnd, same).first - a);
}

// The line ends of the edited text. Between the first and the last change, lines are found again a little further on.
std::vector<QStringView> endsOf(const std::vector<Line> &old, const std::vector<Line> &now, QStringView prevailing)
{
    static constexpr size_t lookAhead = 200;
    const size_t inFront = commonLines(old.begin(), old.end(), now.begin(), now.end());
    const auto left = std::ptrdiff_t(std::min(old.size(), now.size()) - inFront);
    const size_t behind = commonLines(old.rbegin(), old.rbegin() + left, now.rbegin(), now.rbegin() + left);

    std::vector<QStringView> ends;
    size_t next = inFront;
    for (size_t i = 0; i < now.size(); ++i) {
        const bool isBehind = i >= now.size() - behind;
        size_t found = i < inFront ? i : isBehind ? i + old.size() - now.size() : old.size();
        for (size_t j = next; found == old.size() && j < std::min(next + lookAhead, old.size() - behind); ++j)
            if (old[j].content == now[i].content) found = j;
        if (found < old.size()) next = found + 1;
        else if (old.size() == now.size()) found = i; // changed in place
        ends.push_back(found < old.size() && !old[found].end.isEmpty() ? old[found].end : prevailing);
    }
    return ends;
}

} // namespace

QString withLineEndsOf(const QString &before, const QString &edited)
{
    if (!hasForeignEnds(before) || hasForeignEnds(edited)) return edited;
    const std::vector<Line> old = linesOf(before);
    const std::vector<Line> now = linesOf(edited);
    const QString prevailing = prevailingEnd(old);
    const std::vector<QStringView> ends = endsOf(old, now, prevailing);
    QString text;
    text.reserve(before.size() + edited.size());
    for (size_t i = 0; i < now.size(); ++i) {
        text += now[i].content;
        if (!now[i].end.isEmpty()) text += ends[i];
    }
    return text;
}

} // namespace tomelet
