// SPDX-License-Identifier: GPL-3.0-or-later
#include "screenplay/FNTitlePage.h"

#include "conversion/RegexLayer.h"

#include <optional>
#include <vector>

namespace tomelet {

// -- reading ----------------------------------------------------------------------------------------------------------

namespace {

class TitlePageReader
{
public:
    void readLine(const QString &line);
    /// Whether the lines are a title page at all.
    [[nodiscard]] bool close();

    FNTitlePage page;

private:
    void openKey(const QString &key);
    void closeKey();

    QString m_key; ///< empty while none is open
    QStringList m_values;
    bool m_found = false;
};

QString keyOf(const QString &written)
{
    const QString key = written.toLower();
    return key == u"author" ? QStringLiteral("authors") : key;
}

void TitlePageReader::closeKey()
{
    if (!m_key.isEmpty()) page.append({m_key, m_values});
    m_key.clear();
}

// The list of values goes on from key to key.
void TitlePageReader::openKey(const QString &key)
{
    closeKey();
    m_found = true;
    m_key = key;
}

void TitlePageReader::readLine(const QString &line)
{
    static const QString directive = QStringLiteral("^([^\\t\\s][^:]+):([\\t\\s]*$)");
    static const QString inlined = QStringLiteral("^([^\\t\\s][^:]+):\\s*([^\\t\\s].*$)");
    if (line.isEmpty()) return openKey({});
    if (const QStringList parts = captureComponentsMatchedByRegex(line, directive); !parts.isEmpty())
        return openKey(keyOf(parts[1]));
    if (const QStringList parts = captureComponentsMatchedByRegex(line, inlined); !parts.isEmpty()) {
        closeKey();
        m_values.clear();
        m_found = true;
        page.append({keyOf(parts[1]), {parts[2]}});
    } else if (m_found) {
        m_values.append(line.trimmed());
    }
}

bool TitlePageReader::close()
{
    const bool keyAlone = !m_key.isEmpty() && m_values.isEmpty() && page.isEmpty();
    if (!m_found || keyAlone) return false;
    closeKey();
    return true;
}

// For each beginning of the text, the length of its longest proper beginning that is its end too (Knuth, Morris and
// Pratt): what a search falls back to.
std::vector<qsizetype> bordersOf(const QString &text)
{
    std::vector<qsizetype> borders(size_t(text.size()), 0);
    for (qsizetype i = 1, border = 0; i < text.size(); ++i) {
        while (border > 0 && text[i] != text[border]) border = borders[size_t(border - 1)];
        if (text[i] == text[border]) ++border;
        borders[size_t(i)] = border;
    }
    return borders;
}

// Both may be millions of characters that repeat themselves, which the usual search takes hours for.
QString without(const QString &text, const QString &part)
{
    if (part.isEmpty()) return text;
    const std::vector<qsizetype> borders = bordersOf(part);
    QString rest;
    rest.reserve(text.size());
    qsizetype matched = 0;
    for (const QChar c : text) {
        rest.append(c);
        while (matched > 0 && c != part[matched]) matched = borders[size_t(matched - 1)];
        if (c == part[matched]) ++matched;
        if (matched < part.size()) continue;
        rest.chop(part.size());
        matched = 0;
    }
    return rest;
}

} // namespace

FNTitlePage takeTitlePage(QString &contents)
{
    const QString block = contents.left(contents.indexOf(QStringLiteral("\n\n")));
    TitlePageReader reader;
    for (const QString &line : block.split(u'\n')) reader.readLine(line);
    if (!reader.close()) return {};
    contents = without(contents, block);
    return reader.page;
}

// -- writing ----------------------------------------------------------------------------------------------------------

static QString writtenKey(QString key)
{
    if (!key.isEmpty() && key[0] >= u'a' && key[0] <= u'z') key[0] = key[0].toUpper();
    return key + u':';
}

// A value that stands behind its key on the same line.
static bool fitsOnKeyLine(const QStringList &values)
{
    static const QString pattern = QStringLiteral("^[^\\t\\s].*$");
    return values.size() == 1 && isMatchedByRegex(values[0], pattern);
}

QString textOfTitlePage(const FNTitlePage &page)
{
    QString text;
    QStringList open; // what a key with values below it goes on with
    for (const FNTitleEntry &entry : page) {
        text += writtenKey(entry.key);
        if (fitsOnKeyLine(entry.values)) {
            text += u' ' + entry.values[0] + u'\n';
            open.clear();
            continue;
        }
        text += u'\n';
        const bool goesOn = entry.values.mid(0, open.size()) == open;
        for (const QString &value : entry.values.mid(goesOn ? open.size() : 0)) text += u'\t' + value + u'\n';
        open = entry.values;
    }
    return text;
}

} // namespace tomelet
