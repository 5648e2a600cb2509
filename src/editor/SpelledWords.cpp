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

void addWords(QStringView token, qsizetype start, std::vector<Range> &words)
{
    for (qsizetype i = 0; i < token.size();) {
        qsizetype end = i;
        while (end < token.size() &&
               (token[end].isLetter() || token[end].isMark() ||
                (end > i && isApostrophe(token[end]) && end + 1 < token.size() && token[end + 1].isLetter())))
            ++end;
        if (end > i + 1) words.push_back({start + i, end - i});
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
