// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/Log.h"

#include <cstdio>
#include <mutex>
#include <utility>

namespace tomelet::http {

namespace {

std::mutex sinkMutex;
std::function<void(const std::string &)> currentSink;

} // namespace

void logLine(const std::string &line)
{
    const std::lock_guard lock(sinkMutex);
    if (currentSink) currentSink(line);
    else std::fprintf(stderr, "%s\n", line.c_str());
}

void setLogSink(std::function<void(const std::string &)> sink)
{
    const std::lock_guard lock(sinkMutex);
    currentSink = std::move(sink);
}

std::string logPrefix(const char *name, const void *object)
{
    char text[80];
    std::snprintf(text, sizeof text, "%s[%p]: ", name, object);
    return text;
}

} // namespace tomelet::http
