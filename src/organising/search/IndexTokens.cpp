// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/IndexTokens.h"

#include <set>
#include <string_view>

namespace tomelet {

namespace {

constexpr size_t longestWord = 32;
constexpr size_t longestGap = 8;
constexpr size_t longestTitleKey = 12;
constexpr int charactersOfDenseWord = 2;

bool isInWord(SearchKind kind)
{
    return kind == SearchKind::Letter || kind == SearchKind::Dense;
}

// At most so many bytes, cut between two characters.
std::string_view cut(std::string_view piece, size_t longest)
{
    if (piece.size() <= longest) return piece;
    while ((piece[longest] & '\xc0') == '\x80') --longest;
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
    while ((text[position] & '\xc0') == '\x80');
    return position;
}

/// Walks over words and what stands between them.
class Runs
{
public:
    explicit Runs(const FoldedText &text) : m_text(text), m_all(text.text) {}

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
    // The sign right before the position; "" for none.
    [[nodiscard]] std::string_view signBefore(size_t position) const
    {
        if (position == 0 || m_text.kinds[position - 1] != SearchKind::Sign) return {};
        return piece(characterBefore(m_all, position), position);
    }
    // The text of the token of a word that begins at the position, in a run up to `end`.
    [[nodiscard]] std::string_view word(size_t from, size_t end) const
    {
        return isDense(from) ? firstCharacters(piece(from, end), charactersOfDenseWord) : cut(piece(from, end), longestWord);
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
    if (const std::string_view sign = runs.signBefore(from); !sign.empty())
        append(tokens, sharedPlaceToken, sign, runs.word(from, end));
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

void appendSigns(std::string &tokens, const FoldedText &text)
{
    std::set<std::string_view> signs;
    const std::string_view all = text.text;
    for (size_t i = 0; i < all.size(); i = nextCharacter(all, i))
        if (!isInWord(text.kinds[i])) signs.insert(all.substr(i, nextCharacter(all, i) - i));
    for (const std::string_view sign : signs) append(tokens, 's', sign);
}

void appendName(std::string &tokens, std::string_view name)
{
    for (size_t i = 0; i < name.size(); i = nextCharacter(name, i)) append(tokens, 't', cut(name.substr(i), longestTitleKey));
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
    explicit TermReader(const FoldedText &term) : m_term(term), m_runs(term), m_size(term.text.size()) {}

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
    // Signs in front of the first word are looked up one by one, but for the one that the word's token has.
    void readLead(size_t end)
    {
        m_sign = end < m_size ? m_runs.signBefore(end) : std::string_view();
        size_t count = 0;
        for (size_t i = 0; i < end; i = nextCharacter(m_term.text, i), ++count) {
            if (!m_sign.empty() && i + m_sign.size() == end) continue;
            append(m_phrase, 's', m_runs.piece(i, nextCharacter(m_term.text, i)));
            closePhrase(false);
        }
        if (count > 1 || (count == 1 && end < m_size && m_sign.empty())) m_result.exact = false;
    }

    void readWord(size_t from, size_t end)
    {
        const std::string_view word = m_runs.word(from, end);
        append(m_phrase, m_sign.empty() ? 'w' : sharedPlaceToken, m_sign, word);
        m_sign = {};
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
    std::string_view m_sign;
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
