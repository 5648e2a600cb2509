// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/IndexKeys.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace tomelet {

namespace {

constexpr size_t longestWord = 32;
constexpr size_t longestGap = 4;
constexpr size_t longestTitleKey = 12;
constexpr int charactersOfDenseWord = 2;
constexpr int charactersOfBeginning = 3;

/// A piece of a text up to `end`. What follows in the text cannot make a whole piece longer.
struct Piece
{
    size_t end;
    bool whole;
};

// The end at most so many bytes on, between two characters.
size_t cutAfter(std::string_view text, size_t from, size_t end, size_t bytes)
{
    if (end - from <= bytes) return end;
    end = from + bytes;
    while ((text[end] & '\xc0') == '\x80') --end;
    return end;
}

size_t endOfCharacters(std::string_view text, size_t from, size_t end, int count)
{
    while (count-- > 0 && from < end) from = nextCharacter(text, from);
    return from;
}

bool isInWord(SearchKind kind)
{
    return kind == SearchKind::Letter || kind == SearchKind::Dense;
}

Piece wordAt(const FoldedText &text, size_t from)
{
    size_t end = from;
    while (end < text.text.size() && text.kinds[end] == text.kinds[from]) ++end;
    const size_t cut = text.kinds[from] == SearchKind::Dense ? endOfCharacters(text.text, from, end, charactersOfDenseWord)
                                                              : cutAfter(text.text, from, end, longestWord);
    const bool full = text.kinds[from] == SearchKind::Dense && cut == end &&
                      endOfCharacters(text.text, from, end, charactersOfDenseWord - 1) < end;
    return {cut, cut < end || end < text.text.size() || full};
}

// The word, the gap and the next word; shorter where one of them is cut.
Piece pairAt(const FoldedText &text, size_t from)
{
    const size_t size = text.text.size();
    const Piece first = wordAt(text, from);
    if (first.end < size && text.kinds[first.end] == text.kinds[from]) return first;
    size_t gap = first.end;
    while (gap < size && !isInWord(text.kinds[gap])) ++gap;
    const size_t cut = cutAfter(text.text, first.end, gap, longestGap);
    if (cut < gap) return {cut, true};
    return gap == size ? Piece{size, false} : wordAt(text, gap);
}

std::string keyOf(char kind, const FoldedText &text, size_t from, size_t end)
{
    return kind + text.text.substr(from, end - from);
}

/// Joins keys, each once.
class KeyList
{
public:
    explicit KeyList(size_t expected) { m_seen.reserve(expected); }

    /// False when the piece was there before. The piece must outlive the list.
    bool add(char kind, std::string_view piece)
    {
        if (!m_seen.insert({kind, piece}).second) return false;
        m_joined.push_back(kind);
        m_joined.append(piece);
        m_joined.push_back(keySeparator);
        return true;
    }
    std::string take() { return std::move(m_joined); }

private:
    struct Key
    {
        char kind;
        std::string_view piece;
        bool operator==(const Key &) const = default;
    };
    struct Hash
    {
        size_t operator()(const Key &key) const
        {
            return std::hash<std::string_view>()(key.piece) * 31 + size_t(key.kind);
        }
    };

    std::unordered_set<Key, Hash> m_seen;
    std::string m_joined;
};

void addWord(KeyList &keys, const FoldedText &text, size_t from)
{
    const std::string_view all = text.text;
    const size_t end = wordAt(text, from).end;
    if (text.kinds[from] == SearchKind::Letter) keys.add('p', all.substr(from, pairAt(text, from).end - from));
    if (!keys.add('w', all.substr(from, end - from)) || text.kinds[from] != SearchKind::Letter) return;
    for (int count = 1; count <= charactersOfBeginning; ++count)
        keys.add('b', all.substr(from, endOfCharacters(all, from, end, count) - from));
}

} // namespace

std::string keysOfDocument(const FoldedText &text, const std::string &name)
{
    KeyList keys(text.text.size() / 2);
    const std::string_view all = text.text;
    for (size_t i = 0; i < all.size(); i = nextCharacter(all, i)) {
        if (!text.starts[i]) continue;
        if (isInWord(text.kinds[i])) addWord(keys, text, i);
        else keys.add('s', all.substr(i, nextCharacter(all, i) - i));
    }
    const std::string_view title = name;
    for (size_t i = 0; i < title.size(); i = nextCharacter(title, i))
        keys.add('t', title.substr(i, cutAfter(title, i, title.size(), longestTitleKey) - i));
    return keys.take();
}

namespace {

KeyLookUp lookUpAt(const FoldedText &term, size_t from)
{
    const std::string_view all = term.text;
    const SearchKind kind = term.kinds[from];
    if (!isInWord(kind)) return {keyOf('s', term, from, nextCharacter(all, from)), false};
    const Piece word = wordAt(term, from);
    if (kind == SearchKind::Letter && word.whole) {
        const Piece pair = pairAt(term, from);
        return {keyOf('p', term, from, pair.end), !pair.whole};
    }
    const bool isShort = endOfCharacters(all, from, all.size(), charactersOfBeginning) == all.size();
    if (kind == SearchKind::Letter && isShort) return {keyOf('b', term, from, word.end), false};
    return {keyOf('w', term, from, word.end), !word.whole};
}

} // namespace

TermLookUps contentLookUps(const FoldedText &term)
{
    TermLookUps result;
    for (size_t i = 0; i < term.text.size(); i = nextCharacter(term.text, i))
        if (i == 0 || term.kinds[i] != term.kinds[i - 1] || !isInWord(term.kinds[i]))
            result.keys.push_back(lookUpAt(term, i));
    result.exact = result.keys.front().key.size() == term.text.size() + 1;
    if (result.exact) result.keys.resize(1);
    return result;
}

TermLookUps titleLookUps(const FoldedText &term)
{
    const size_t end = cutAfter(term.text, 0, term.text.size(), longestTitleKey);
    return {{{keyOf('t', term, 0, end), end == term.text.size()}}, end == term.text.size()};
}

} // namespace tomelet
