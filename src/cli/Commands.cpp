// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"

#include "cli/Invocation.h"
#include "cli/commands/AllCommands.h"

namespace tomelet::cli {

std::span<const Command> commands()
{
    static constexpr Command table[] = {
        {"convert", "converts Markdown with the engine alone", runConvert},
        {"bench-engine", "times the Markdown engine", runBenchEngine},
        {"settings", "reads and changes the settings", runSettings},
    };
    return table;
}

} // namespace tomelet::cli
