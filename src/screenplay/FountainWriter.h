// SPDX-License-Identifier: GPL-3.0-or-later
// Screenplays as plain text again. What is written is read as the same elements, for every script that was read from
// a text: marks are put where a line would be taken for something else, and left out where they are not needed.
//
// Not written: elements of blanks alone, unless something hangs on them. Not kept: a speaker without a name. Page
// breaks are always "====".
#pragma once

#include "screenplay/FNScript.h"

#include <QString>

namespace tomelet {

class FountainWriter
{
public:
    /// Title page, an empty line, and the body; ends in a newline. "" for an empty script.
    [[nodiscard]] static QString documentFromScript(const FNScript &script);
    /// Each entry with its line end.
    [[nodiscard]] static QString titlePageFromScript(const FNScript &script);
    /// Begins with an empty line.
    [[nodiscard]] static QString bodyFromScript(const FNScript &script);
};

} // namespace tomelet
