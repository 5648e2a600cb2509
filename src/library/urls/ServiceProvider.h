// SPDX-License-Identifier: GPL-3.0-or-later
// The small services for other programs: what is selected there becomes a document or goes into the one that is open.
#pragma once

#include <QString>

namespace tomelet {

/// What the services need of windows.
class ServiceShell
{
public:
    virtual ~ServiceShell() = default;
    /// A place to write a note in at once.
    virtual void openQuickNote() = 0;
    /// Into the frontmost window that shows a document which can be edited; false where there is none.
    virtual bool insertIntoFrontmostDocument(const QString &text) = 0;
};

/// What a person selected in another program.
struct SelectedText
{
    QString plain;
    QString html; ///< "" where the selection has no formatting
};

class TMLTServiceProvider
{
public:
    explicit TMLTServiceProvider(ServiceShell &shell)
        : m_shell(shell)
    {}

    /// A fifth of a second later, when the other program has let go of the keys.
    void addQuickNote();
    /// A text document in the inbox, or the root where there is none, named after the first line of the plain text; the
    /// formatted text, where there is one, is what it says. Gives its path; "" for nothing selected.
    QString addSelection(const SelectedText &selection);
    /// The plain text alone.
    QString addSelectionPlain(const SelectedText &selection);
    /// False when nothing took the text.
    bool insertIntoCurrentDocument(const SelectedText &selection);

private:
    ServiceShell &m_shell;
};

} // namespace tomelet
