// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/HTTPDate.h"

#include <cstdio>

namespace tomelet::http {

namespace {

constexpr const char *dayNames[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char *monthNames[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

std::tm inGMT(std::time_t time)
{
    std::tm parts{};
    gmtime_r(&time, &parts);
    return parts;
}

std::string withNames(const char *format, std::time_t time)
{
    const std::tm t = inGMT(time);
    char text[80];
    std::snprintf(text, sizeof text, format, dayNames[t.tm_wday], t.tm_mday, monthNames[t.tm_mon], t.tm_year + 1900,
                  t.tm_hour, t.tm_min, t.tm_sec);
    return text;
}

} // namespace

std::string headerDate(std::time_t time)
{
    return withNames("%s, %02d %s %d %02d:%02d:%02d GMT", time);
}

std::string modificationDate(std::time_t time)
{
    return withNames("%s, %d %s %04d %02d:%02d:%02d GMT", time);
}

std::string creationDate(std::time_t time)
{
    const std::tm t = inGMT(time);
    char text[80];
    std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d+00:00", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday,
                  t.tm_hour, t.tm_min, t.tm_sec);
    return text;
}

} // namespace tomelet::http
