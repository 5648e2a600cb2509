// SPDX-License-Identifier: GPL-3.0-or-later
// Commands on the paragraphs of the selection: lists and comments on and off, sorting, moving up and down, headings.
// All give whether anything was done. None changes whether the text ends in a line end.
#pragma once

#include "editor/EditedText.h"
#include "editor/EditorSettings.h"

namespace tomelet {

/// Bullets become numbers (each 1), numbers check boxes, check boxes plain lines, and plain lines bullets. What the
/// first line is decides for all.
bool tm_toggleList(EditedText &edited);
/// Puts "// " in front of each line, or takes it away where the first line has it.
bool tm_toggleComment(EditedText &edited);
/// Sorts the lines under the current locale; each place keeps its line end.
bool tm_sortSelectionbyAlphabet(EditedText &edited, const EditorSettings &settings);
/// Changes places with the line behind or in front, and brings the numbers of a list in order.
bool tm_moveLineDown(EditedText &edited);
bool tm_moveLineUp(EditedText &edited);
/// Puts `level` hash marks in front of the paragraph, in place of those that stand there; none for 0.
bool insertMarkdownHeading(EditedText &edited, int level);

} // namespace tomelet
