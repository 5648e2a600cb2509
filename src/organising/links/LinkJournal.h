// SPDX-License-Identifier: GPL-3.0-or-later
// Moves whose links are still being rewritten, noted in the state of the root: a program that is killed in the middle
// leaves them for the next one to finish.
#pragma once

#include <QList>
#include <QString>

namespace tomelet {

struct MoveInWork
{
    QString from; ///< full paths
    QString to;
    bool allBelow = false; ///< a book with all that lies in it

    friend bool operator==(const MoveInWork &, const MoveInWork &) = default;
};

/// Any thread may call these two.
void noteMove(const MoveInWork &move);
void forgetMove(const MoveInWork &move);

/// Takes the moves out of the journal that programs left behind which run no more.
[[nodiscard]] QList<MoveInWork> takeAbandonedMoves();

} // namespace tomelet
