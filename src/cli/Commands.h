// SPDX-License-Identifier: GPL-3.0-or-later
// The table of commands. A command is one function in commands/; a line in Commands.cpp makes it known.
#pragma once

#include <span>

namespace tomelet::cli {

struct Invocation;

struct Command
{
    const char *name;
    const char *summary; ///< one line for `tomelet --help`
    int (*run)(const Invocation &call);
};

/// All commands in the order in which help shows them.
std::span<const Command> commands();

} // namespace tomelet::cli
