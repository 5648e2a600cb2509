// SPDX-License-Identifier: GPL-3.0-or-later
// Marks around the caret or the selection, and closing characters that come by themselves.
#pragma once

#include "editor/EditedText.h"
#include "editor/EditorSettings.h"

namespace tomelet {

/// Encloses the selection, or puts both marks around the caret. Marks that stand there already are taken away: around a
/// caret those of two or more units, around a selection all but "[]" and "{}", which are meant to be doubled.
/// Emphasis is marked by "_" or "*" as the setting tells, whichever is given.
void insertMarkdownString(EditedText &edited, QString tag, QString closeTag, const EditorSettings &settings);

/// A typed character that closing characters have to do with. False: it is to be inserted as it is.
bool typeWithClosingCharacters(EditedText &edited, QChar typed, const EditorSettings &settings);
/// Deletes an opening character together with its partner right behind it; false where the caret is not between two.
bool deleteOpeningWithClosing(EditedText &edited);
/// A return in front of a closing bracket goes behind it; false where there is none.
bool newLineBehindClosingBrackets(EditedText &edited);

/// Replaces the range by the string, with a blank at each side where neither white space nor an end of the text is.
void tm_smartReplaceCharactersInRange(EditedText &edited, Range range, const QString &string);

} // namespace tomelet
