// SPDX-License-Identifier: GPL-3.0-or-later
// The time, which tests and scripts can fix, and the two dates that stand for a missing one.
#pragma once

#include <QDateTime>

#include <optional>

namespace tomelet {

class Clock
{
public:
    /// The present moment in UTC, or the moment that the clock was fixed at.
    [[nodiscard]] QDateTime now() const { return m_fixed ? *m_fixed : QDateTime::currentDateTimeUtc(); }
    /// Fixes the clock; nothing lets it run again.
    void fix(std::optional<QDateTime> moment) { m_fixed = std::move(moment); }

private:
    std::optional<QDateTime> m_fixed;
};

/// 0001-01-01 in UTC: before any date that a person keeps.
[[nodiscard]] QDateTime farPast();
/// 4001-01-01 in UTC: after any date that a person keeps.
[[nodiscard]] QDateTime farFuture();

} // namespace tomelet
