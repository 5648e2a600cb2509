// SPDX-License-Identifier: GPL-3.0-or-later
// A text with a selection while an editing command works on it. All changes go through it, so that a command comes out
// as one replacement, which a widget makes in one undo step. Positions are UTF-16 units.
#pragma once

#include "foundation/Range.h"

#include <QString>

#include <vector>

namespace tomelet {

struct Replacement
{
    Range range; ///< of the text before
    QString text;
    friend bool operator==(const Replacement &, const Replacement &) = default;
};

/// What makes one text of another, without what both have in front and behind; not found for equal texts. No half of a
/// surrogate pair stands at its edges.
[[nodiscard]] Replacement smallestReplacement(QStringView from, QStringView to);

class EditedText
{
public:
    /// A selection that reaches outside of the text is cut to it.
    EditedText(QString text, Range selection);

    [[nodiscard]] const QString &text() const { return m_text; }
    [[nodiscard]] Range selection() const { return m_selection; }
    void select(Range selection);
    [[nodiscard]] QString part(Range range) const { return m_text.mid(range.location, range.length); }
    /// The unit at the position; a null one outside of the text.
    [[nodiscard]] QChar at(qsizetype position) const;

    /// Replaces the range, which must lie in the text. The ends of the selection stay with the text they stand in;
    /// one at the end of the range or inside of it comes to stand behind what was put in.
    void tm_replaceCharactersInRange(Range range, const QString &replacement);
    /// Many replacements in one go, sorted and without overlaps.
    void replaceAll(const std::vector<Replacement> &replacements);

    /// All changes since the start as one replacement in the text as it was then; not found when there was none.
    [[nodiscard]] Replacement change() const;

private:
    QString m_text;
    Range m_selection;
    qsizetype m_originalSize;
    qsizetype m_untouchedInFront;
    qsizetype m_untouchedBehind;
};

/// The paragraphs that the range touches, with the line end of the last. Line ends are LF, CR LF, CR and U+2029.
[[nodiscard]] Range paragraphRange(QStringView text, Range range);
/// The units of the line end that closes the text: 0, 1, or 2 for CR LF.
[[nodiscard]] qsizetype lineEndLength(QStringView text);
/// The paragraph without its line end.
[[nodiscard]] Range withoutLineEnd(QStringView text, Range paragraph);
[[nodiscard]] bool isLineEnd(QChar unit);

} // namespace tomelet
