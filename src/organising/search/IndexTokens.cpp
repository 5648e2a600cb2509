// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/IndexTokens.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <optional>
#include <string_view>
#include <unordered_set>

namespace tomelet {

namespace {

constexpr size_t longestWord = 32;
constexpr size_t longestGap = 8;
constexpr size_t longestEnd = 3;    // of a gap
constexpr size_t longestPiece = 16; // of a gap
constexpr size_t mostPieces = 16;   // of a gap, looked up
constexpr size_t longestRun = 250;  // of one sign
constexpr int charactersOfBeginning = 2;
// Of a pair. Longer words are rarer, and there are many.
constexpr size_t longestWordBeforeBlank = 5;
constexpr size_t longestWordBeforeSign = 8;
constexpr size_t longestTitleKey = 24;
constexpr int charactersOfDenseWord = 2;
constexpr int longestSigns = 3;

bool isInWord(SearchKind kind)
{
    return kind == SearchKind::Letter || kind == SearchKind::Dense;
}

// At most so many bytes, cut between two characters.
std::string_view cut(std::string_view piece, size_t longest)
{
    if (piece.size() <= longest) return piece;
    while (isWithinCharacter(piece[longest])) --longest;
    return piece.substr(0, longest);
}

std::string_view firstCharacters(std::string_view piece, int count)
{
    size_t end = 0;
    while (count-- > 0 && end < piece.size()) end = nextCharacter(piece, end);
    return piece.substr(0, end);
}

int charactersOf(std::string_view piece)
{
    return int(std::ranges::count_if(piece, [](char byte) { return !isWithinCharacter(byte); }));
}

// How many bytes the longest end is that gaps keep.
size_t cutFromEnd(std::string_view piece)
{
    size_t from = piece.size() - std::min(piece.size(), longestEnd);
    while (from < piece.size() && isWithinCharacter(piece[from])) ++from;
    return piece.size() - from;
}

size_t characterBefore(std::string_view text, size_t position)
{
    do --position;
    while (isWithinCharacter(text[position]));
    return position;
}

/// Walks over words and what stands between them.
class Runs
{
public:
    explicit Runs(const FoldedText &text)
        : m_text(text)
        , m_all(text.text)
    {}

    [[nodiscard]] std::string_view piece(size_t from, size_t end) const { return m_all.substr(from, end - from); }
    [[nodiscard]] bool isDense(size_t from) const { return m_text.kinds[from] == SearchKind::Dense; }
    [[nodiscard]] size_t wordFrom(size_t from) const
    {
        while (from < m_all.size() && !isInWord(m_text.kinds[from])) ++from;
        return from;
    }
    [[nodiscard]] size_t gapFrom(size_t from) const
    {
        while (from < m_all.size() && isInWord(m_text.kinds[from])) ++from;
        return from;
    }
    [[nodiscard]] size_t endOfRun(size_t from) const
    {
        const SearchKind kind = m_text.kinds[from];
        while (from < m_all.size() && m_text.kinds[from] == kind) ++from;
        return from;
    }
    // Where the signs right before the position begin, so many at most; the position itself for none.
    [[nodiscard]] size_t signsBefore(size_t position, int most) const
    {
        while (most-- > 0 && position > 0 && m_text.kinds[position - 1] == SearchKind::Sign)
            position = characterBefore(m_all, position);
        return position;
    }
    // The text of the token of a word that begins at the position, in a run up to `end`.
    [[nodiscard]] std::string_view word(size_t from, size_t end) const
    {
        return isDense(from) ? firstCharacters(piece(from, end), charactersOfDenseWord)
                             : cut(piece(from, end), longestWord);
    }

private:
    const FoldedText &m_text;
    std::string_view m_all;
};

void append(std::string &tokens, char kind, std::string_view first, std::string_view second = {})
{
    tokens.push_back(kind);
    tokens.append(first);
    tokens.append(second);
    tokens.push_back(tokenSeparator);
}

void appendWords(std::string &tokens, const FoldedText &text, const Runs &runs, size_t from, size_t end)
{
    append(tokens, 'w', runs.word(from, end));
    size_t before = from;
    for (int count = 1; count <= longestSigns && runs.signsBefore(from, count) < before; ++count) {
        before = runs.signsBefore(from, count);
        append(tokens, 'x', runs.piece(before, from), runs.word(from, end));
    }
    if (!runs.isDense(from)) return;
    for (size_t i = nextCharacter(text.text, from); i < end; i = nextCharacter(text.text, i))
        if (text.starts[i]) append(tokens, 'w', runs.word(i, end));
}

bool leavesNoToken(std::string_view gap)
{
    return gap == " ";
}

// Up to three signs in front of a word are in the word's own tokens.
bool isKnownOfWord(std::string_view lead)
{
    return charactersOf(lead) <= longestSigns && lead.find(' ') == std::string_view::npos;
}

void appendGap(std::string &tokens, std::string_view gap)
{
    if (leavesNoToken(gap)) return;
    append(tokens, 'g', cut(gap, longestGap));
    if (gap.empty()) return;
    for (size_t i = nextCharacter(gap, 0); i < gap.size(); i = nextCharacter(gap, i))
        if (const std::string_view end = gap.substr(i);
            end.size() <= longestEnd && !leavesNoToken(end) && !isKnownOfWord(end))
            append(tokens, 'h', end);
}

void appendText(std::string &tokens, const FoldedText &text)
{
    const Runs runs(text);
    const size_t size = text.text.size();
    for (size_t from = 0; from < size;) {
        const size_t word = runs.wordFrom(from);
        // Latin and dense writing side by side have an empty gap between them.
        if (word > 0) appendGap(tokens, runs.piece(from, word));
        if (word == size) return;
        from = runs.endOfRun(word);
        appendWords(tokens, text, runs, word, from);
    }
}

/// Marks, each once. The pieces have to stay where they are.
class Marks
{
public:
    void add(char kind, std::string_view piece)
    {
        if (m_seen[kind == 's' ? 1 : kind == 'm' ? 2 : 0].insert(piece).second) append(m_marks, kind, piece);
    }
    // Nearly all of them are of Latin letters, and there are two for each word.
    void addBeginning(std::string_view piece)
    {
        const auto letter = [&](size_t i) { return i < piece.size() ? static_cast<unsigned char>(piece[i]) : 0U; };
        if (piece.size() > 2 || letter(0) > 127 || letter(1) > 127) return add('b', piece);
        const size_t place = letter(0) << 7 | letter(1);
        if (!m_seenLatin[place]) append(m_marks, 'b', piece);
        m_seenLatin.set(place);
    }
    void addName(std::string_view piece) { append(m_marks, 't', piece); }
    [[nodiscard]] std::string take() { return std::move(m_marks); }

private:
    std::array<std::unordered_set<std::string_view>, 3> m_seen; // 0: pairs and long runs, 1: signs, 2: words
    std::bitset<128 * 128> m_seenLatin;
    std::string m_marks;
};

void markBeginnings(Marks &marks, const FoldedText &text, const Runs &runs)
{
    for (size_t from = runs.wordFrom(0); from < text.text.size(); from = runs.wordFrom(runs.endOfRun(from))) {
        const size_t end = runs.endOfRun(from);
        for (size_t i = from; i < end; i = nextCharacter(text.text, i))
            if (text.starts[i])
                for (int count = 1; count <= charactersOfBeginning; ++count)
                    marks.addBeginning(firstCharacters(runs.piece(i, end), count));
    }
}

/// Where a word ends together with the sign, or the blank and the character, behind it; nothing where the word has no
/// mark with that.
std::optional<size_t> endOfPair(const FoldedText &text, const Runs &runs, size_t from)
{
    const size_t end = runs.endOfRun(from);
    if (runs.isDense(from) || end == text.text.size()) return std::nullopt;
    const size_t next = nextCharacter(text.text, end);
    if (text.kinds[end] == SearchKind::Sign && end - from <= longestWordBeforeSign) return next;
    if (text.kinds[end] != SearchKind::Blank || end - from > longestWordBeforeBlank) return std::nullopt;
    return next < text.text.size() ? nextCharacter(text.text, next) : next;
}

void markPairs(Marks &marks, const FoldedText &text, const Runs &runs)
{
    for (size_t from = runs.wordFrom(0); from < text.text.size(); from = runs.wordFrom(runs.endOfRun(from)))
        if (const auto end = endOfPair(text, runs, from)) marks.add('n', runs.piece(from, *end));
}

bool isAscii(char byte)
{
    return !(byte & '\x80');
}

void markWordsWithoutBlank(Marks &marks, const FoldedText &text, const Runs &runs)
{
    for (size_t from = runs.wordFrom(0); from < text.text.size();) {
        const size_t end = runs.endOfRun(from);
        const bool isLast = end == text.text.size();
        const bool isBeforeBlank = !isLast && text.kinds[end] == SearchKind::Blank;
        const bool hasPair = !isLast && text.kinds[end] == SearchKind::Sign && isAscii(text.text[end]) &&
                             end - from <= longestWordBeforeSign;
        if (!isBeforeBlank && !hasPair && !runs.isDense(from)) marks.add('m', runs.word(from, end));
        from = runs.wordFrom(end);
    }
}

size_t sizeOfRunOfOne(std::string_view piece)
{
    const std::string_view first = firstCharacters(piece, 1);
    size_t size = first.size();
    while (piece.substr(size).starts_with(first)) size += first.size();
    return size;
}

void markSigns(Marks &marks, std::string_view gap)
{
    size_t endOfRun = 0;
    for (size_t i = 0; i < gap.size(); i = nextCharacter(gap, i)) {
        marks.add('s', cut(gap.substr(i), longestPiece));
        if (i < endOfRun) continue;
        endOfRun = i + sizeOfRunOfOne(gap.substr(i));
        if (endOfRun - i > longestPiece) marks.add('r', cut(gap.substr(i, endOfRun - i), longestRun));
    }
}

void markGaps(Marks &marks, const FoldedText &text, const Runs &runs)
{
    std::unordered_set<std::string_view> seen;
    for (size_t from = 0; from < text.text.size();) {
        const size_t end = runs.gapFrom(from);
        from = runs.wordFrom(end);
        if (const std::string_view gap = runs.piece(end, from); seen.insert(gap).second) markSigns(marks, gap);
    }
}

void markName(Marks &marks, std::string_view name)
{
    for (size_t i = 0; i < name.size(); i = nextCharacter(name, i)) marks.addName(cut(name.substr(i), longestTitleKey));
}

} // namespace

DocumentTokens tokensOfDocument(const FoldedText &text, const std::string &name)
{
    DocumentTokens result;
    result.tokens.reserve(text.text.size() * 2);
    appendText(result.tokens, text);
    Marks marks;
    const Runs runs(text);
    markBeginnings(marks, text, runs);
    markPairs(marks, text, runs);
    markWordsWithoutBlank(marks, text, runs);
    markGaps(marks, text, runs);
    markName(marks, name);
    result.marks = marks.take();
    return result;
}

// -- terms ------------------------------------------------------------------------------------------------------------

namespace {

TokenPhrase markLookUp(char kind, std::string_view text, bool prefix)
{
    TokenPhrase phrase{{}, prefix, true};
    append(phrase.tokens, kind, text);
    return phrase;
}

/// Takes a term apart as a text is, and notes where the tokens tell less than the term.
class TermReader
{
public:
    explicit TermReader(const FoldedText &term)
        : m_term(term)
        , m_runs(term)
        , m_size(term.text.size())
    {}

    TermLookUps read()
    {
        size_t from = m_runs.wordFrom(0);
        if (from == m_size) readSigns();
        else if (from == 0 && isBeginning()) readMark('b', false);
        else if (from == 0 && endOfPair(m_term, m_runs, 0) == m_size) readMark('n', m_term.text.back() == ' ');
        else readLead(m_runs.piece(0, from));
        if (m_isRead) return std::move(m_result);
        while (from < m_size) {
            const size_t end = m_runs.endOfRun(from);
            readWord(from, end);
            from = m_runs.wordFrom(end);
            if (end < m_size) readGap(end, from);
        }
        closePhrase(false);
        return std::move(m_result);
    }

private:
    // A term of signs and blanks alone stands in the text as one.
    void readSigns()
    {
        m_isRead = true;
        if (m_size > longestPiece && sizeOfRunOfOne(m_term.text) == m_size) {
            m_result.exact = m_size <= longestRun;
            addMark('r', cut(m_term.text, longestRun), m_result.exact);
        } else {
            m_result.exact = m_size <= longestPiece;
            addPieces(m_term.text);
        }
    }

    [[nodiscard]] bool isBeginning() const
    {
        return m_runs.endOfRun(0) == m_size && charactersOf(m_term.text) <= charactersOfBeginning;
    }
    void readMark(char kind, bool prefix)
    {
        addMark(kind, m_term.text, prefix);
        m_isRead = true;
    }
    void addMark(char kind, std::string_view text, bool prefix)
    {
        m_result.phrases.push_back(markLookUp(kind, text, prefix));
    }
    // All of what stands between two words, piece by piece.
    void addPieces(std::string_view gap)
    {
        std::unordered_set<std::string_view> seen;
        for (size_t i = 0; i < gap.size() && seen.size() < mostPieces; i = nextCharacter(gap, i)) {
            const std::string_view piece = cut(gap.substr(i), longestPiece);
            if (seen.insert(piece).second) addMark('s', piece, true);
            if (i + piece.size() == gap.size()) return;
        }
    }

    // What stands in front of the first word is in that word's token, or in that of the gap.
    void readLead(std::string_view lead)
    {
        if (isKnownOfWord(lead)) {
            m_signs = lead;
            return;
        }
        const std::string_view kept = lead.substr(lead.size() - cutFromEnd(lead));
        m_result.exact = kept.size() == lead.size() && !leavesNoToken(lead);
        if (kept.size() < lead.size()) addPieces(lead);
        if (isKnownOfWord(kept)) m_signs = kept;
        else if (!leavesNoToken(kept)) append(m_phrase, 'h', kept);
    }

    void readWord(size_t from, size_t end)
    {
        const std::string_view word = m_runs.word(from, end);
        append(m_phrase, m_signs.empty() ? 'w' : 'x', m_signs, word);
        m_signs = {};
        const bool isLast = end == m_size;
        const bool isCut = word.size() < end - from;
        if (isCut || (m_runs.isDense(from) && !isLast)) m_result.exact = false;
        // How many words a dense run holds is known of the document alone.
        if (isLast) closePhrase(!isCut);
        else if (m_runs.isDense(from)) closePhrase(false);
    }

    void readGap(size_t from, size_t end)
    {
        const std::string_view gap = m_runs.piece(from, end);
        const std::string_view kept = cut(gap, longestGap);
        const bool isLast = end == m_size;
        if (kept.size() < gap.size()) m_result.exact = false;
        if (isLast && leavesNoToken(gap)) doubtBlank();
        if (kept.size() < gap.size()) addPieces(gap);
        if (m_phrase.empty() || leavesNoToken(gap)) return;
        append(m_phrase, 'g', kept);
        if (isLast) closePhrase(kept.size() == gap.size());
    }

    // Behind the last word, which the phrase ends with.
    void doubtBlank()
    {
        const size_t end = m_size - 1;
        size_t from = end;
        while (from > 0 && m_term.kinds[from - 1] == SearchKind::Letter) --from;
        if (from == end || end - from > longestWord) {
            m_result.exact = false;
            return;
        }
        const std::string word(m_runs.piece(from, end));
        m_result.doubts.push_back(markLookUp('m', word, false));
        if (word.size() > longestWordBeforeSign) return;
        for (char sign = '!'; sign < '\x7f'; ++sign)
            if (kindOfAscii(sign) == SearchKind::Sign) m_result.doubts.push_back(markLookUp('n', word + sign, false));
    }

    void closePhrase(bool prefix)
    {
        if (!m_phrase.empty()) m_result.phrases.push_back({m_phrase, prefix});
        m_phrase.clear();
    }

    const FoldedText &m_term;
    const Runs m_runs;
    const size_t m_size;
    TermLookUps m_result;
    std::string m_phrase;
    std::string_view m_signs;
    bool m_isRead = false;
};

// The mark of the last word that has one and of what follows it.
std::optional<TokenPhrase> lastPair(const FoldedText &term)
{
    const Runs runs(term);
    std::optional<TokenPhrase> last;
    for (size_t from = runs.wordFrom(0); from < term.text.size(); from = runs.wordFrom(runs.endOfRun(from)))
        if (const auto end = endOfPair(term, runs, from))
            last = markLookUp('n', runs.piece(from, *end), term.text[*end - 1] == ' ');
    return last;
}

} // namespace

TermLookUps contentLookUps(const FoldedText &term)
{
    return TermReader(term).read();
}

TermLookUps titleLookUps(const FoldedText &term)
{
    const std::string_view kept = cut(term.text, longestTitleKey);
    const bool whole = kept.size() == term.text.size();
    return {{markLookUp('t', kept, whole)}, whole, {}};
}

std::optional<TermLookUps> withoutShortEnd(const FoldedText &term)
{
    TermLookUps shorter = contentLookUps(term);
    TokenPhrase &last = shorter.phrases.back();
    if (last.inMarks || !last.prefix) return std::nullopt;
    const std::string_view tokens = std::string_view(last.tokens).substr(0, last.tokens.size() - 1);
    const size_t before = tokens.rfind(tokenSeparator);
    // The kind and a character or two.
    if (before == std::string_view::npos || tokens.size() - before > 4) return std::nullopt;
    last = {last.tokens.substr(0, before + 1), false, false};
    if (auto pair = lastPair(term)) shorter.phrases.push_back(std::move(*pair));
    shorter.exact = false;
    return shorter;
}

} // namespace tomelet
