// SPDX-License-Identifier: GPL-3.0-or-later
// One element of a screenplay: a heading, a line of action, a speaker, what is said.
#pragma once

#include <QString>

#include <optional>

namespace tomelet {

/// The kinds of elements, compared exactly.
namespace FNType {
inline constexpr QLatin1StringView Action("Action");
inline constexpr QLatin1StringView SceneHeading("Scene Heading");
inline constexpr QLatin1StringView Character("Character");
inline constexpr QLatin1StringView Dialogue("Dialogue");
inline constexpr QLatin1StringView Parenthetical("Parenthetical");
inline constexpr QLatin1StringView Transition("Transition");
inline constexpr QLatin1StringView Lyrics("Lyrics");
inline constexpr QLatin1StringView SectionHeading("Section Heading");
inline constexpr QLatin1StringView Synopsis("Synopsis");
inline constexpr QLatin1StringView Comment("Comment");
inline constexpr QLatin1StringView Boneyard("Boneyard");
inline constexpr QLatin1StringView PageBreak("Page Break");
inline constexpr QLatin1StringView General("General"); ///< laid out like action; no text is read as one
} // namespace FNType

struct FNElement
{
    QString elementType;
    QString elementText; ///< may have several lines; forcing marks of action, speakers and lyrics are part of it
    bool isCentered = false;
    bool isDualDialogue = false; ///< of a speaker who speaks at the same time as another one
    std::optional<QString> sceneNumber = {};
    int sectionDepth = 0;

    [[nodiscard]] static FNElement elementOfType(const QString &type, const QString &text) { return {type, text}; }

    [[nodiscard]] bool is(QLatin1StringView type) const { return elementType == type; }
    /// What a speaker says, and how.
    [[nodiscard]] bool isSpoken() const { return is(FNType::Dialogue) || is(FNType::Parenthetical); }
    /// For the author alone: not on any page.
    [[nodiscard]] bool isHidden() const
    {
        return is(FNType::Boneyard) || is(FNType::Comment) || is(FNType::Synopsis) || is(FNType::SectionHeading);
    }
    [[nodiscard]] bool isBlank() const { return elementText.trimmed().isEmpty(); }

    friend bool operator==(const FNElement &, const FNElement &) = default;
};

} // namespace tomelet
