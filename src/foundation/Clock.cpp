// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Clock.h"

namespace tomelet {

QDateTime farPast()
{
    return {QDate(1, 1, 1), QTime(0, 0), Qt::UTC};
}

QDateTime farFuture()
{
    return {QDate(4001, 1, 1), QTime(0, 0), Qt::UTC};
}

} // namespace tomelet
