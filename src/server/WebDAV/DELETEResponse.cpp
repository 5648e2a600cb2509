// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/WebDAV/DELETEResponse.h"

#include "server/Core/FileTransfer.h"
#include "server/Core/Log.h"
#include "server/Core/Text.h"

#include <filesystem>

namespace tomelet::http {

namespace {

bool removeItem(const std::string &path)
{
    std::error_code error;
    const auto count = std::filesystem::remove_all(path, error);
    return !error && count > 0;
}

int statusOfRemoving(const std::string &path, const std::string &rootPath)
{
    const bool existed = itemExists(path);
    if (path != rootPath && removeItem(path)) return existed ? 200 : 204;
    logLine("DELETEResponse: failed deleting " + printable(path));
    return 404;
}

} // namespace

DELETEResponse::DELETEResponse(const std::string &filePath, const std::string &rootPath)
    : HTTPErrorResponse(statusOfRemoving(filePath, rootPath))
{}

} // namespace tomelet::http
