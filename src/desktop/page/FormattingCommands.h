// SPDX-License-Identifier: GPL-3.0-or-later
// The commands of the formatted editor: each is a short script that is run in the page.
#pragma once

#include <QString>

#include <span>

namespace tomelet::desktop {

struct FormattingCommand
{
    const char *name;   ///< under which code asks for it
    const char *text;   ///< for people, to be localised
    const char *label;  ///< on a narrow button
    const char *keys;   ///< "" for none
    const char *script; ///< with "%1" for the argument, if it takes one
};

/// All commands, in the order of the table.
[[nodiscard]] std::span<const FormattingCommand> formattingCommands();
/// The command's script with its argument as it stands inside of single quotes; "" for a name that is none.
[[nodiscard]] QString scriptOfCommand(const QString &name, const QString &argument = {});
/// Marks around the selection, or around the caret.
[[nodiscard]] QString scriptForMarks(const QString &leading, const QString &trailing);
/// A text as the inside of a script's string in single quotes: it's → it\'s.
[[nodiscard]] QString escapedForScript(const QString &text);

} // namespace tomelet::desktop
