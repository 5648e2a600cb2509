// SPDX-License-Identifier: GPL-3.0-or-later
// The entry functions of all commands, in the files of this folder.
#pragma once

namespace tomelet::cli {

struct Invocation;

int runBenchEngine(const Invocation &call);
int runBacklinks(const Invocation &call);
int runBook(const Invocation &call);
int runCheckLinks(const Invocation &call);
int runContext(const Invocation &call);
int runContexts(const Invocation &call);
int runConvert(const Invocation &call);
int runCp(const Invocation &call);
int runDue(const Invocation &call);
int runDuplicate(const Invocation &call);
int runExtract(const Invocation &call);
int runFavorite(const Invocation &call);
int runGet(const Invocation &call);
int runImport(const Invocation &call);
int runIndex(const Invocation &call);
int runLabel(const Invocation &call);
int runLinks(const Invocation &call);
int runList(const Invocation &call);
int runMarkdownify(const Invocation &call);
int runMv(const Invocation &call);
int runNew(const Invocation &call);
int runOp(const Invocation &call);
int runOps(const Invocation &call);
int runPin(const Invocation &call);
int runRefreshLinks(const Invocation &call);
int runPlain(const Invocation &call);
int runRender(const Invocation &call);
int runReminders(const Invocation &call);
int runRm(const Invocation &call);
int runRoot(const Invocation &call);
int runScreenplay(const Invocation &call);
int runSearch(const Invocation &call);
int runServe(const Invocation &call);
int runSet(const Invocation &call);
int runSettings(const Invocation &call);
int runShow(const Invocation &call);
int runTask(const Invocation &call);
int runTasklist(const Invocation &call);
int runTasks(const Invocation &call);
int runTree(const Invocation &call);
int runUndoRm(const Invocation &call);
int runUnset(const Invocation &call);
int runUrl(const Invocation &call);
int runWatch(const Invocation &call);

} // namespace tomelet::cli
