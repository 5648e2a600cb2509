// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/RichText.h"

#include <QByteArray>
#include <QHash>
#include <QSet>

#include <unicode/ucnv.h>

#include <algorithm>
#include <cctype>
#include <memory>
#include <utility>
#include <vector>

namespace tomelet {

namespace {

constexpr size_t deepestGroup = 2000;

using Converter = std::unique_ptr<UConverter, decltype(&ucnv_close)>;

Converter converterFor(const QByteArray &name)
{
    UErrorCode error = U_ZERO_ERROR;
    return {ucnv_open(name.constData(), &error), ucnv_close};
}

/// Control words that stand for a character.
const QHash<QByteArray, char16_t> &characterWords()
{
    static const QHash<QByteArray, char16_t> words{
        {"par", u'\n'},    {"line", u'\n'},   {"row", u'\n'},      {"page", u'\n'},     {"sect", u'\n'},
        {"tab", u'\t'},    {"cell", u'\t'},   {"emdash", u'—'},    {"endash", u'–'},    {"bullet", u'•'},
        {"lquote", u'‘'},  {"rquote", u'’'},  {"ldblquote", u'“'}, {"rdblquote", u'”'}, {"emspace", u' '},
        {"enspace", u' '}, {"qmspace", u' '},
    };
    return words;
}

/// Groups that hold something other than the document's text, beside those that say so themselves.
bool holdsNoText(const QByteArray &word)
{
    static const QSet<QByteArray> words{
        "fonttbl", "colortbl",  "stylesheet",        "info",   "pict",      "object",
        "fldinst", "listtable", "listoverridetable", "revtbl", "themedata", "datastore"};
    return words.contains(word);
}

class RichTextReader
{
public:
    explicit RichTextReader(QByteArrayView rtf)
        : m_rtf(rtf)
        , m_codePage(converterFor("windows-1252"))
    {}

    QString read()
    {
        while (m_at < m_rtf.size() && m_groups.size() < deepestGroup) {
            const char c = m_rtf[m_at++];
            if (c == '{') m_groups.push_back(m_group);
            else if (c == '}') closeGroup();
            else if (c == '\\') readControl();
            else if (c != '\r' && c != '\n') addByte(c);
        }
        flushBytes();
        return m_text;
    }

private:
    struct Group
    {
        bool silent = false;
        int bytesForCharacter = 1; ///< how many follow a character by number, for programs that know no numbers
    };

    void closeGroup()
    {
        flushBytes();
        if (m_groups.empty()) return;
        m_group = m_groups.back();
        m_groups.pop_back();
    }

    void readControl()
    {
        if (m_at == m_rtf.size()) return;
        const char c = m_rtf[m_at];
        if (std::isalpha(static_cast<unsigned char>(c))) return readWord();
        ++m_at;
        switch (c) {
        case '\'': return readHex();
        case '*': m_group.silent = true; return;
        case '~': return addCharacter(u'\u00a0');
        case '_': return addCharacter(u'-');
        case '\r':
        case '\n': return addCharacter(u'\n');
        case '\\':
        case '{':
        case '}': return addByte(c);
        default: return;
        }
    }

    void readHex()
    {
        const QByteArray digits = m_rtf.sliced(m_at, std::min<qsizetype>(2, m_rtf.size() - m_at)).toByteArray();
        m_at += digits.size();
        if (const int byte = digits.toInt(nullptr, 16); byte > 0) addByte(char(byte));
    }

    void readWord()
    {
        const auto take = [this](auto isPart) {
            const qsizetype from = m_at;
            while (m_at < m_rtf.size() && m_at - from < 32 && isPart(static_cast<unsigned char>(m_rtf[m_at]))) ++m_at;
            return m_rtf.sliced(from, m_at - from).toByteArray();
        };
        const QByteArray word = take([](unsigned char c) { return std::isalpha(c) != 0; });
        const QByteArray digits = take([](unsigned char c) { return c == '-' || std::isdigit(c) != 0; });
        if (m_at < m_rtf.size() && m_rtf[m_at] == ' ') ++m_at;
        obey(word, digits.toInt());
    }

    void obey(const QByteArray &word, int number)
    {
        if (const char16_t character = characterWords().value(word)) addCharacter(character);
        else if (word == "u") addByNumber(number);
        else if (word == "uc") m_group.bytesForCharacter = std::clamp(number, 0, 8);
        else if (word == "bin") m_at = std::min(m_rtf.size(), m_at + std::max(0, number));
        else if (word == "ansicpg") setCodePage(number);
        else if (holdsNoText(word)) m_group.silent = true;
    }

    // Documents say it once; to look for one after the other takes long.
    void setCodePage(int number)
    {
        if (std::exchange(m_saysCodePage, true)) return;
        flushBytes();
        Converter converter = converterFor("windows-" + QByteArray::number(number));
        if (!converter) converter = converterFor("cp" + QByteArray::number(number));
        if (converter) m_codePage = std::move(converter);
    }

    void addByNumber(int number)
    {
        addCharacter(char16_t(number));
        m_bytesToSkip = m_group.bytesForCharacter;
    }
    void addCharacter(char16_t character)
    {
        flushBytes();
        m_bytesToSkip = 0;
        if (!m_group.silent) m_text += QChar(character);
    }
    void addByte(char byte)
    {
        if (m_bytesToSkip > 0) --m_bytesToSkip;
        else if (!m_group.silent) m_bytes += byte;
    }

    void flushBytes()
    {
        if (m_bytes.isEmpty()) return;
        QString text(m_bytes.size() * 2, Qt::Uninitialized);
        UErrorCode error = U_ZERO_ERROR;
        const int32_t size = ucnv_toUChars(m_codePage.get(), reinterpret_cast<UChar *>(text.data()),
                                           int32_t(text.size()), m_bytes.constData(), int32_t(m_bytes.size()), &error);
        if (U_SUCCESS(error)) m_text += QStringView(text).left(size);
        m_bytes.clear();
    }

    QByteArrayView m_rtf;
    qsizetype m_at = 0;
    Converter m_codePage;
    bool m_saysCodePage = false;
    std::vector<Group> m_groups;
    Group m_group;
    int m_bytesToSkip = 0;
    QByteArray m_bytes; // in the code page, not yet read
    QString m_text;
};

} // namespace

QString textOfRichText(QByteArrayView rtf)
{
    return RichTextReader(rtf).read();
}

} // namespace tomelet
