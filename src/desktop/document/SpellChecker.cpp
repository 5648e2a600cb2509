// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/document/SpellChecker.h"

#include <QLocale>

#include <enchant.h>

namespace tomelet::desktop {

SpellChecker &SpellChecker::shared()
{
    static SpellChecker checker;
    return checker;
}

SpellChecker::SpellChecker()
    : m_broker(enchant_broker_init())
{
    QStringList languages = QLocale::system().uiLanguages();
    languages.append(QStringLiteral("en_US")); // a machine without a locale ("C") has texts too
    for (const QString &language : languages) {
        const QByteArray tag = QString(language).replace(u'-', u'_').toUtf8();
        m_dictionary = enchant_broker_request_dict(m_broker, tag.constData());
        if (m_dictionary) return;
    }
}

SpellChecker::~SpellChecker()
{
    if (m_dictionary) enchant_broker_free_dict(m_broker, m_dictionary);
    enchant_broker_free(m_broker);
}

std::optional<bool> SpellChecker::remembered(const QString &word) const
{
    const auto known = m_words.constFind(word);
    if (known != m_words.cend()) return *known;
    return isAvailable() ? std::nullopt : std::optional(true);
}

bool SpellChecker::isRight(const QString &word)
{
    if (const auto known = remembered(word)) return *known;
    const QByteArray bytes = word.toUtf8();
    const bool right = enchant_dict_check(m_dictionary, bytes.constData(), bytes.size()) == 0;
    m_words.insert(word, right);
    return right;
}

QStringList SpellChecker::suggestions(const QString &word) const
{
    if (!isAvailable()) return {};
    const QByteArray bytes = word.toUtf8();
    size_t count = 0;
    char **found = enchant_dict_suggest(m_dictionary, bytes.constData(), bytes.size(), &count);
    QStringList words;
    for (size_t i = 0; i < count; ++i) words.append(QString::fromUtf8(found[i]));
    if (found) enchant_dict_free_string_list(m_dictionary, found);
    return words;
}

void SpellChecker::learn(const QString &word)
{
    if (!isAvailable()) return;
    const QByteArray bytes = word.toUtf8();
    enchant_dict_add(m_dictionary, bytes.constData(), bytes.size());
    m_words.insert(word, true);
}

void SpellChecker::ignore(const QString &word)
{
    m_words.insert(word, true);
}

} // namespace tomelet::desktop
