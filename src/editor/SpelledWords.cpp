// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/SpelledWords.h"

#include <algorithm>

namespace tomelet {

namespace {

bool isApostrophe(QChar unit)
{
    return unit == u'\'' || unit == u'\u2019';
}

bool isPlainToken(QStringView token)
{
    if (token.contains(u"://")) return false;
    return std::ranges::none_of(token, [](QChar unit) {
        return unit.isDigit() || unit.isSurrogate() || QStringView(u"@/\\_<>{}&=|$").contains(unit);
    });
}

// Names of files and hosts, and what is cut short: a point inside.
bool isNameWithPoints(QStringView token, qsizetype start, qsizetype end)
{
    const auto isJoint = [&](qsizetype point, qsizetype beyond) {
        return point >= 0 && beyond >= 0 && std::max(point, beyond) < token.size() && token[point] == u'.' &&
               token[beyond].isLetter();
    };
    return isJoint(end, end + 1) || isJoint(start - 1, start - 2);
}

void addWords(QStringView token, qsizetype start, std::vector<Range> &words)
{
    for (qsizetype i = 0; i < token.size();) {
        qsizetype end = i;
        while (end < token.size() &&
               (token[end].isLetter() || token[end].isMark() ||
                (end > i && isApostrophe(token[end]) && end + 1 < token.size() && token[end + 1].isLetter())))
            ++end;
        if (end > i + 1 && !isNameWithPoints(token, i, end)) words.push_back({start + i, end - i});
        i = std::max(end, i + 1);
    }
}

} // namespace

std::vector<Range> spelledWords(QStringView line)
{
    std::vector<Range> words;
    for (qsizetype i = 0; i < line.size();) {
        if (line[i] == u'`') {
            const qsizetype close = line.indexOf(u'`', i + 1);
            i = close < 0 ? line.size() : close + 1;
            continue;
        }
        qsizetype end = i;
        while (end < line.size() && !line[end].isSpace() && line[end] != u'`') ++end;
        const QStringView token = line.sliced(i, end - i);
        if (isPlainToken(token)) addWords(token, i, words);
        i = std::max(end, line.size() > end && line[end] == u'`' ? end : end + 1);
    }
    return words;
}

} // namespace tomelet
