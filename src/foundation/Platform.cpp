// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/Platform.h"

#include "foundation/Directories.h"

namespace tomelet {

static std::unique_ptr<Platform> &current()
{
    static std::unique_ptr<Platform> instance;
    return instance;
}

Platform &platform()
{
    if (!current()) current() = makePlatform();
    return *current();
}

void setPlatform(std::unique_ptr<Platform> replacement)
{
    current() = std::move(replacement);
}

std::unique_ptr<Platform> makePlatform()
{
    auto made = std::make_unique<Platform>();
    made->settings = openSettings(configDirectory() + QStringLiteral("/settings.ini"));
    made->trash = makeDesktopTrash();
    return made;
}

int askQuestion(const Question &question)
{
    const auto &ask = platform().ask;
    return ask ? ask(question) : int(question.buttons.size()) - 1;
}

void drainPendingWork()
{
    Platform &now = platform();
    while (!now.delayedCalls.isEmpty() || !now.serialQueue.isEmpty()) {
        now.delayedCalls.drain();
        now.serialQueue.drain();
    }
}

} // namespace tomelet
