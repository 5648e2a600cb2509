// SPDX-License-Identifier: GPL-3.0-or-later
// What the plain text editor completes: paths in wiki links, contexts, and class names of the style sheet. The view
// asks where the caret stands, reads the candidates once while it stands there, and filters them by what is typed.
// Positions are UTF-16 units of one line.
#pragma once

#include "editor/EditedText.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace tomelet {

enum class CompletionKind {
    WikiPath,   ///< behind "[["
    Context,    ///< a word that begins with a marker
    StyleClass, ///< behind ">%" or "> %" at the start of a line, and in a link behind "](class:"
};

struct CompletionPlace
{
    CompletionKind kind;
    qsizetype start; ///< of what is completed
    QString typed;   ///< from there up to the caret
};

/// What the caret stands in; nothing where there is nothing to complete.
[[nodiscard]] std::optional<CompletionPlace> completionPlace(const QString &line, qsizetype caret);

/// Candidates of one of these places hold for another: only what is typed differs.
[[nodiscard]] bool haveSameCandidates(const CompletionPlace &a, const CompletionPlace &b);

/// All that can stand at the place in a document of the book, in the order in which it is offered. `document` gives
/// the style sheet; "" for a new one. For a path one folder is read, the one that is typed so far (from the book on, or
/// from the root after a "/"), and the recent items; folders end in "/". Contexts need their settings on.
[[nodiscard]] QStringList completionCandidates(const CompletionPlace &place, const QString &book,
                                               const QString &document);
/// Those that begin with what is typed, in any case; of a path the last part may do so. What is typed in full already
/// is none.
[[nodiscard]] QStringList completionsFor(const QStringList &candidates, const CompletionPlace &place);
/// The same for documents anywhere in the notebook, given as normalised paths, that were found by what is typed.
[[nodiscard]] QStringList completionsFromLibrary(const QStringList &documents, const QString &book);
/// The longest beginning that all the completions share, at least what is typed.
[[nodiscard]] QString commonBeginning(const QStringList &completions, const QString &typed);

/// Puts the completion in place of what is typed at the caret, with what closes it where that does not stand there; the
/// caret comes behind. A folder and a part of a name are closed later.
void complete(EditedText &edited, const CompletionPlace &place, const QString &completion, bool isWhole = true);

} // namespace tomelet
