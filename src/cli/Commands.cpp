// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"

#include "cli/Invocation.h"
#include "cli/commands/AllCommands.h"

namespace tomelet::cli {

std::span<const Command> commands()
{
    static constexpr Command table[] = {
        {"serve", "serves the notebook over HTTP and WebDAV", runServe},
        {"settings", "reads and changes the settings", runSettings},
    };
    return table;
}

} // namespace tomelet::cli
