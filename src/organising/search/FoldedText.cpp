// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/FoldedText.h"

#include <QList>

#include <unicode/ubrk.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <algorithm>
#include <array>
#include <memory>
#include <unordered_map>

namespace tomelet {

namespace {

/// What one character becomes: bytes and their kinds, side by side.
struct FoldedCharacter
{
    std::string bytes;
    std::vector<SearchKind> kinds;
};

bool isDense(char32_t c)
{
    switch (u_getIntPropertyValue(UChar32(c), UCHAR_LINE_BREAK)) {
    case U_LB_COMPLEX_CONTEXT:
    case U_LB_IDEOGRAPHIC:
    case U_LB_CONDITIONAL_JAPANESE_STARTER:
    case U_LB_NONSTARTER: return true;
    default: return false;
    }
}

SearchKind kindOf(char32_t c)
{
    if (u_isUWhiteSpace(UChar32(c)) || u_iscntrl(UChar32(c))) return SearchKind::Blank;
    const bool inWord = (U_GET_GC_MASK(UChar32(c)) & (U_GC_L_MASK | U_GC_N_MASK | U_GC_M_MASK)) != 0 || c == U'_';
    if (!inWord) return SearchKind::Sign;
    return isDense(c) ? SearchKind::Dense : SearchKind::Letter;
}

// General marks (classes from 200) and the points of Hebrew, Arabic and Syriac (10 to 36). The marks of other scripts
// make other letters: tones of Thai, voicing of Japanese.
bool isAccent(char32_t c)
{
    const int combiningClass = u_getCombiningClass(UChar32(c));
    return combiningClass >= 200 || (combiningClass >= 10 && combiningClass <= 36);
}

using Normalizer = const UNormalizer2 *(*)(UErrorCode *);

QString normalized(const QString &text, Normalizer normalizer)
{
    UErrorCode error = U_ZERO_ERROR;
    std::array<UChar, 256> buffer{};
    const int length = unorm2_normalize(normalizer(&error), reinterpret_cast<const UChar *>(text.utf16()),
                                        int(text.size()), buffer.data(), int(buffer.size()), &error);
    return U_SUCCESS(error) ? QString::fromUtf16(buffer.data(), length) : text;
}

QString withoutAccents(const QString &text)
{
    QString result;
    for (const char32_t c : normalized(text, unorm2_getNFDInstance).toUcs4())
        if (!isAccent(c)) result += QString::fromUcs4(&c, 1);
    return normalized(result, unorm2_getNFCInstance);
}

FoldedCharacter makeFoldedCharacter(char32_t c)
{
    if (U_IS_SURROGATE(c)) c = 0xfffd;
    const QString folded = withoutAccents(normalized(QString::fromUcs4(&c, 1), unorm2_getNFKCCasefoldInstance));
    FoldedCharacter result;
    for (const char32_t part : folded.toUcs4()) {
        const SearchKind kind = kindOf(part);
        const QByteArray bytes = kind == SearchKind::Blank ? QByteArray(" ") : QString::fromUcs4(&part, 1).toUtf8();
        result.bytes.append(bytes.constData(), size_t(bytes.size()));
        result.kinds.insert(result.kinds.end(), size_t(bytes.size()), kind);
    }
    return result;
}

/// Remembers what characters become, a page of 256 at a time.
class Characters
{
public:
    const FoldedCharacter &operator[](char32_t c)
    {
        std::unique_ptr<Page> &page = m_pages[c >> 8];
        if (!page) page = makePage(c >> 8);
        return (*page)[c & 0xff];
    }

private:
    using Page = std::array<FoldedCharacter, 256>;

    static std::unique_ptr<Page> makePage(char32_t number)
    {
        auto page = std::make_unique<Page>();
        for (char32_t i = 0; i < 256; ++i) (*page)[i] = makeFoldedCharacter(number << 8 | i);
        return page;
    }

    std::unordered_map<char32_t, std::unique_ptr<Page>> m_pages;
};

constexpr char32_t endOfAsciiCharacters = 128;

struct AsciiFolding
{
    std::array<char, endOfAsciiCharacters> bytes;
    std::array<SearchKind, endOfAsciiCharacters> kinds;
};

const AsciiFolding &asciiFolding()
{
    static const AsciiFolding folding = [] {
        AsciiFolding made{};
        for (char32_t c = 0; c < endOfAsciiCharacters; ++c) {
            const FoldedCharacter folded = makeFoldedCharacter(c);
            made.bytes[c] = folded.bytes[0];
            made.kinds[c] = folded.kinds[0];
        }
        return made;
    }();
    return folding;
}

qsizetype endOfAscii(QStringView text, qsizetype from)
{
    while (from < text.size() && text[from].unicode() < endOfAsciiCharacters) ++from;
    return from;
}

// Each of these characters becomes one byte. Most texts are of them, so they are not put one by one.
void appendAscii(FoldedText &result, QStringView run)
{
    const AsciiFolding &folding = asciiFolding();
    const size_t from = result.text.size();
    result.text.resize(from + size_t(run.size()));
    result.kinds.resize(from + size_t(run.size()));
    bool followsBlank = from > 0 && result.kinds[from - 1] == SearchKind::Blank;
    char *byte = result.text.data() + from;
    SearchKind *kindOfByte = result.kinds.data() + from;
    for (const QChar unit : run) {
        const SearchKind kind = folding.kinds[unit.unicode()];
        const bool isBlank = kind == SearchKind::Blank;
        if (isBlank && followsBlank) continue;
        followsBlank = isBlank;
        *byte++ = folding.bytes[unit.unicode()];
        *kindOfByte++ = kind;
    }
    result.text.resize(size_t(byte - result.text.data()));
    result.kinds.resize(result.text.size());
}

void appendFolded(FoldedText &result, const FoldedCharacter &folded)
{
    for (size_t i = 0; i < folded.bytes.size(); ++i) {
        const SearchKind kind = folded.kinds[i];
        if (kind == SearchKind::Blank && !result.kinds.empty() && result.kinds.back() == kind) continue;
        result.text.push_back(folded.bytes[i]);
        result.kinds.push_back(kind);
    }
}

void markWordsOfDenseRun(FoldedText &result, size_t begin, size_t end)
{
    UErrorCode error = U_ZERO_ERROR;
    thread_local const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> words(
        ubrk_open(UBRK_WORD, "", nullptr, 0, &error), ubrk_close);
    const QString run = QString::fromUtf8(result.text.data() + begin, qsizetype(end - begin));
    ubrk_setText(words.get(), reinterpret_cast<const UChar *>(run.utf16()), int(run.size()), &error);
    if (U_FAILURE(error)) return;
    size_t byte = begin;
    int unit = 0;
    for (int next = ubrk_next(words.get()); next != UBRK_DONE && next < run.size(); next = ubrk_next(words.get())) {
        for (; unit < next; byte = nextCharacter(result.text, byte))
            unit += (result.text[byte] & '\xf8') == '\xf0' ? 2 : 1;
        result.starts[byte] = true;
    }
}

void markWords(FoldedText &result)
{
    const auto &kinds = result.kinds;
    result.starts.resize(kinds.size());
    char *start = result.starts.data(); // by itself, as all bytes may be those of one vector to the compiler
    const char *byte = result.text.data();
    SearchKind before = SearchKind::Blank;
    for (const SearchKind kind : kinds) {
        const bool isInWord = kind == SearchKind::Letter || kind == SearchKind::Dense;
        *start++ = !isWithinCharacter(*byte++) && (!isInWord || kind != before);
        before = kind;
    }
    const auto isDense = [](SearchKind kind) { return kind == SearchKind::Dense; };
    for (auto from = std::ranges::find_if(kinds, isDense); from != kinds.end();) {
        const auto end = std::find_if_not(from, kinds.end(), isDense);
        markWordsOfDenseRun(result, size_t(from - kinds.begin()), size_t(end - kinds.begin()));
        from = std::find_if(end, kinds.end(), isDense);
    }
}

} // namespace

FoldedText foldedForSearch(const QString &text)
{
    thread_local Characters characters;
    const QString composed = text.normalized(QString::NormalizationForm_C);
    FoldedText result;
    result.text.reserve(size_t(composed.size()));
    result.kinds.reserve(size_t(composed.size()));
    for (qsizetype i = 0; i < composed.size(); ++i) {
        if (const qsizetype end = endOfAscii(composed, i); end > i) {
            appendAscii(result, QStringView(composed).sliced(i, end - i));
            i = end - 1;
            continue;
        }
        char32_t c = composed[i].unicode();
        if (QChar::isHighSurrogate(c) && i + 1 < composed.size() && composed[i + 1].isLowSurrogate())
            c = QChar::surrogateToUcs4(char16_t(c), composed[++i].unicode());
        appendFolded(result, characters[c]);
    }
    markWords(result);
    return result;
}

SearchKind kindOfAscii(char character)
{
    return asciiFolding().kinds[size_t(character)];
}

bool beginsWordIn(const FoldedText &text, std::string_view term)
{
    for (size_t at = text.text.find(term); at != std::string::npos; at = text.text.find(term, at + 1))
        if (text.starts[at]) return true;
    return false;
}

} // namespace tomelet
