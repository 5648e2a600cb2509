// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/Commands.h"

#include "cli/Invocation.h"
#include "cli/commands/AllCommands.h"

namespace tomelet::cli {

std::span<const Command> commands()
{
    static constexpr Command table[] = {
        {"root", "prints the notebook's folder, or chooses one and sets it up", runRoot},
        {"settings", "reads and changes the settings", runSettings},
        {"tree", "the tree of books, smart books first", runTree},
        {"list", "the documents of a book or smart book in its order", runList},
        {"show", "the complete page of a document", runShow},
        {"render", "documents as complete pages by their settings", runRender},
        {"markdownify", "converts HTML to Markdown", runMarkdownify},
        {"screenplay", "a screenplay as its pages, or as its text again", runScreenplay},
        {"plain", "converts HTML to plain text", runPlain},
        {"convert", "converts Markdown with the engine alone", runConvert},
        {"bench-engine", "times the Markdown engine", runBenchEngine},
        {"import", "makes documents of exported notes, web archives and outlines", runImport},
        {"new", "makes a document from standard input", runNew},
        {"book", "makes a book", runBook},
        {"mv", "moves or renames an item with all that belongs to it", runMv},
        {"cp", "copies an item with all that belongs to it", runCp},
        {"duplicate", "copies an item beside itself", runDuplicate},
        {"rm", "moves items to the trash", runRm},
        {"undo-rm", "brings back what the last rm moved to the trash", runUndoRm},
        {"get", "prints properties of an item", runGet},
        {"set", "stores a property of an item", runSet},
        {"unset", "removes a property of an item", runUnset},
        {"pin", "pins an item to the top of its book, or unpins it", runPin},
        {"favorite", "makes an item a favorite, or no longer one", runFavorite},
        {"label", "labels an item with a colour", runLabel},
        {"tasks", "the tasks of a tasklist", runTasks},
        {"tasklist", "switches a tasklist on or off, or resets it", runTasklist},
        {"task", "changes tasks: state, due date, repeat", runTask},
        {"due", "the due tasks of all tasklists", runDue},
        {"extract", "makes tasks of the marked lines of a document", runExtract},
        {"reminders", "the reminders to come", runReminders},
        {"contexts", "all contexts with the numbers of their items", runContexts},
        {"context", "changes contexts", runContext},
        {"links", "the items that a document refers to", runLinks},
        {"backlinks", "the documents that refer to an item", runBacklinks},
        {"check-links", "finds, repairs or removes backlinks", runCheckLinks},
        {"refresh-links", "reads the backlinks of all documents", runRefreshLinks},
        {"search", "documents that hold what is searched for", runSearch},
        {"index", "brings the text index up to date", runIndex},
        {"url", "carries out a tomelet:// URL", runUrl},
        {"serve", "serves the notebook over HTTP and WebDAV", runServe},
        {"watch", "follows the notebook and prints each change", runWatch},
        {"op", "calls one operation by its name", runOp},
        {"ops", "calls many operations, a line of JSON each", runOps},
    };
    return table;
}

} // namespace tomelet::cli
