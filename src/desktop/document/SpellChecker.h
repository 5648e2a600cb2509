// SPDX-License-Identifier: GPL-3.0-or-later
// Spelling in the person's language, with whatever dictionaries the machine has (through Enchant). Words that
// were looked at once are remembered, as a text on the screen is drawn over and over.
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>

#include <optional>

struct str_enchant_broker;
struct str_enchant_dict;

namespace tomelet::desktop {

class SpellChecker
{
public:
    /// The one of the program. Without a dictionary for the language every word is right.
    [[nodiscard]] static SpellChecker &shared();
    ~SpellChecker();
    SpellChecker(const SpellChecker &) = delete;
    SpellChecker &operator=(const SpellChecker &) = delete;

    [[nodiscard]] bool isAvailable() const { return m_dictionary != nullptr; }
    /// Nothing for a word that was not looked at yet.
    [[nodiscard]] std::optional<bool> remembered(const QString &word) const;
    [[nodiscard]] bool isRight(const QString &word);
    [[nodiscard]] QStringList suggestions(const QString &word) const;
    /// Into the person's own dictionary, which other programs share.
    void learn(const QString &word);
    /// Right until the program ends.
    void ignore(const QString &word);

private:
    SpellChecker();

    str_enchant_broker *m_broker;
    str_enchant_dict *m_dictionary = nullptr;
    QHash<QString, bool> m_words;
};

} // namespace tomelet::desktop
