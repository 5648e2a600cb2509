// SPDX-License-Identifier: GPL-3.0-or-later
// Lists in plain text: items that go on after a new line, indentation by the tab key, numbers in order.
#pragma once

#include "editor/EditedText.h"
#include "editor/EditorSettings.h"

#include <optional>

namespace tomelet {

/// Numbers of more digits are text: they could not be counted on from.
inline constexpr qsizetype longestNumber = 18;

/// Goes on with the list after a new line, behind which the caret stands. With Shift the new line is only indented to
/// the text of the item. A return on an item without text outdents it, or ends the list. False: nothing to go on with.
bool tryToInsertListItem(EditedText &edited, const EditorSettings &settings, bool shiftKeyPressed);

/// Indents or outdents the paragraphs of the selection. Without force, indenting needs a caret right behind the mark of
/// an item. False, and nothing changed, where the key is to have its ordinary meaning.
bool tabButtonPressedForceIndent(EditedText &edited, const EditorSettings &settings, bool forceIndent, bool outdent);

/// Puts the numbers of the list around the range in order, level by level. The first item gets `count`, or keeps its
/// number for 0. The list begins and ends at an empty line.
void updateNumberedListAtRange(EditedText &edited, Range range, qlonglong count = 0);
/// The list that the selection stands in; false where the line has no number.
bool tm_updateNumberedList(EditedText &edited);
/// The number of the first numbered line of the list around the range; nothing where there is none.
[[nodiscard]] std::optional<qlonglong> firstNumberOfList(const QString &text, Range range);

} // namespace tomelet
