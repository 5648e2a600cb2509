// SPDX-License-Identifier: GPL-3.0-or-later
// One step of what a person does, on the stack of what can be undone.
#pragma once

#include <QUndoCommand>

namespace tomelet::desktop {

/// A step that was carried out already when it is pushed, so that a failure never reaches the stack.
class Step : public QUndoCommand
{
public:
    using QUndoCommand::QUndoCommand;
    void redo() final
    {
        if (m_first) m_first = false;
        else again();
    }
    virtual void again() = 0;

private:
    bool m_first = true;
};

} // namespace tomelet::desktop
