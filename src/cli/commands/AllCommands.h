// SPDX-License-Identifier: GPL-3.0-or-later
// The entry functions of all commands, one file of this folder each.
#pragma once

namespace tomelet::cli {

struct Invocation;

int runServe(const Invocation &call);
int runSettings(const Invocation &call);

} // namespace tomelet::cli
