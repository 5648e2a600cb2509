// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/IndexTokens.h"

#include <string_view>
#include <unordered_set>

namespace tomelet {

namespace {

constexpr size_t longestWord = 32;
constexpr size_t longestGap = 8;
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
        append(tokens, sharedPlaceToken, runs.piece(before, from), runs.word(from, end));
    }
    if (!runs.isDense(from)) return;
    for (size_t i = nextCharacter(text.text, from); i < end; i = nextCharacter(text.text, i))
        if (text.starts[i]) append(tokens, 'w', runs.word(i, end));
}

bool leavesNoToken(std::string_view gap)
{
    return gap == " ";
}

void appendText(std::string &tokens, const FoldedText &text)
{
    const Runs runs(text);
    const size_t size = text.text.size();
    for (size_t from = runs.wordFrom(0); from < size;) {
        const size_t end = runs.endOfRun(from);
        appendWords(tokens, text, runs, from, end);
        from = runs.wordFrom(end);
        const std::string_view gap = runs.piece(end, from);
        if (end < size && !leavesNoToken(gap)) append(tokens, 'g', cut(gap, longestGap));
    }
}

// How long the token of signs at the position is: a sign with the sign behind it, or the character alone.
size_t endOfSigns(const FoldedText &text, size_t from)
{
    const size_t next = nextCharacter(text.text, from);
    const bool isPair =
        next < text.text.size() && text.kinds[from] == SearchKind::Sign && text.kinds[next] == SearchKind::Sign;
    return isPair ? nextCharacter(text.text, next) : next;
}

void appendSigns(std::string &tokens, const FoldedText &text)
{
    std::unordered_set<std::string_view> seen;
    const std::string_view all = text.text;
    const auto addOnce = [&](size_t from, size_t end) {
        const std::string_view piece = all.substr(from, end - from);
        if (seen.insert(piece).second) append(tokens, 's', piece);
    };
    for (size_t i = 0; i < all.size(); ++i) {
        if (isInWord(text.kinds[i]) || isWithinCharacter(all[i]) || (all[i] == ' ' && i > 0 && seen.contains(" ")))
            continue;
        addOnce(i, nextCharacter(all, i));
        addOnce(i, endOfSigns(text, i));
    }
}

void appendName(std::string &tokens, std::string_view name)
{
    for (size_t i = 0; i < name.size(); i = nextCharacter(name, i))
        append(tokens, 't', cut(name.substr(i), longestTitleKey));
}

} // namespace

std::string tokensOfDocument(const FoldedText &text, const std::string &name)
{
    std::string tokens;
    tokens.reserve(text.text.size() * 2);
    appendText(tokens, text);
    appendSigns(tokens, text);
    appendName(tokens, name);
    return tokens;
}

// -- terms ------------------------------------------------------------------------------------------------------------

namespace {

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
        readLead(from);
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
    // The signs right in front of the first word are in its token; the rest is looked up by itself.
    void readLead(size_t end)
    {
        const size_t signs = end < m_size ? m_runs.signsBefore(end, longestSigns) : end;
        m_signs = m_runs.piece(signs, end);
        for (size_t i = 0; i < signs; i = nextCharacter(m_term.text, i)) {
            append(m_phrase, 's', m_runs.piece(i, endOfSigns(m_term, i)));
            closePhrase(false);
        }
        m_result.exact = signs == 0 || (end == m_size && endOfSigns(m_term, 0) == m_size);
        if (end == m_size && m_result.exact && m_result.phrases.size() > 1) m_result.phrases.resize(1);
    }

    void readWord(size_t from, size_t end)
    {
        const std::string_view word = m_runs.word(from, end);
        append(m_phrase, m_signs.empty() ? 'w' : sharedPlaceToken, m_signs, word);
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
        if (kept.size() < gap.size() || (isLast && leavesNoToken(gap))) m_result.exact = false;
        if (m_phrase.empty() || leavesNoToken(gap)) return;
        append(m_phrase, 'g', kept);
        if (isLast) closePhrase(kept.size() == gap.size());
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
};

} // namespace

TermLookUps contentLookUps(const FoldedText &term)
{
    return TermReader(term).read();
}

TermLookUps titleLookUps(const FoldedText &term)
{
    const std::string_view kept = cut(term.text, longestTitleKey);
    const bool whole = kept.size() == term.text.size();
    TokenPhrase phrase{{}, whole};
    append(phrase.tokens, 't', kept);
    return {{phrase}, whole};
}

} // namespace tomelet
