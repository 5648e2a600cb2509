// SPDX-License-Identifier: GPL-3.0-or-later
// The one object through which the subsystems reach what a desktop platform gives.
#pragma once

#include "foundation/Clock.h"
#include "foundation/DelayedCalls.h"
#include "foundation/NotificationCenter.h"
#include "foundation/SerialQueue.h"
#include "foundation/Settings.h"
#include "foundation/Trash.h"

#include <functional>
#include <memory>

namespace tomelet {

/// A question with a title, a longer text and the buttons' texts, the first the one that Return takes.
struct Question
{
    QString title;
    QString text;
    QStringList buttons;
};

struct Platform
{
    std::unique_ptr<Settings> settings;
    std::unique_ptr<Trash> trash;
    NotificationCenter notifications;
    DelayedCalls delayedCalls;
    /// Link rewriting, in the order of the moves.
    SerialQueue serialQueue;
    Clock clock;
    /// A root that holds for this process alone, in place of the setting `TomeletFolder`; empty for none.
    QString rootOverride;
    /// Asks the person at the window or terminal; gives the index of the button taken. Unset, or with nobody to
    /// ask, the answer is the last button, which is always the safe one.
    std::function<int(const Question &)> ask;
};

/// The platform in force; the first call makes the real one.
[[nodiscard]] Platform &platform();
/// Puts another one in its place, for tests; a null pointer makes the next call begin anew.
void setPlatform(std::unique_ptr<Platform> replacement);
/// The platform of this machine and user.
[[nodiscard]] std::unique_ptr<Platform> makePlatform();

/// Shorthands for what nearly every operation needs.
[[nodiscard]] inline Settings &settings()
{
    return *platform().settings;
}
[[nodiscard]] inline NotificationCenter &notifications()
{
    return platform().notifications;
}
/// Asks by platform().ask; the last button's index when nobody can be asked.
[[nodiscard]] int askQuestion(const Question &question);
/// Finishes delayed calls and queued work, in turns, until there is none of either.
void drainPendingWork();

} // namespace tomelet
