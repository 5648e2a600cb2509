// SPDX-License-Identifier: GPL-3.0-or-later
//
// COPY and MOVE. An existing target is never replaced, whatever the client allows.
#include "server/WebDAV/DAVRequest.h"

#include "server/Core/FileTransfer.h"
#include "server/Core/Log.h"
#include "server/Core/RequestPath.h"
#include "server/Core/TemporaryItem.h"
#include "server/Core/Text.h"

#include <filesystem>

namespace tomelet::http {

namespace {

namespace fs = std::filesystem;

// The path that the header Destination names below the root, or "": it must name the host that was asked.
std::string destinationPath(const DAVRequest &request)
{
    const std::string destination = request.headers.value("Destination");
    const std::string host = request.headers.value("Host");
    const auto found = host.empty() ? destination.npos : destination.find(host);
    if (found == destination.npos) return {};
    const auto place = pathForEscapedPath(std::string_view(destination).substr(found + host.size()), request.rootPath);
    const std::string relative = relativeToRoot(place.path, request.rootPath);
    return isTemporaryName(relative.substr(0, relative.find('/'))) ? std::string() : place.path;
}

// A folder cannot go into itself, by whichever way its inside is named.
bool liesInside(const std::string &folder, const std::string &item)
{
    std::error_code error;
    if (!fs::is_directory(fs::symlink_status(item, error))) return false;
    return isInsideRoot(fs::weakly_canonical(folder, error).string(), fs::weakly_canonical(item, error).string());
}

OptionalDAVReply transfer(const DAVRequest &request, bool copies)
{
    const std::string destination = destinationPath(request);
    if (request.resourcePath.empty() || !itemExists(request.path) || destination.empty()) return std::nullopt;
    if (itemExists(destination)) return std::nullopt;
    DAVReply reply;
    const std::string parent = fs::path(destination).parent_path().string();
    if (!isFolder(parent)) {
        reply.status = 409;
        return reply;
    }
    // The target may have come up since the first look.
    const bool appeared = itemExists(destination);
    if (appeared && request.headers.value("Overwrite") == "F") {
        reply.status = 412;
        return reply;
    }
    const auto carryOut = copies ? copyItem : moveItem;
    const bool done = !liesInside(parent, request.path) && carryOut(request.path, destination, request.rootPath);
    reply.status = !done ? 403 : appeared ? 204 : 201;
    if (!done)
        logLine(std::string(copies ? "Failed copying \"" : "Failed moving \"") + printable(request.path) + "\" to \"" +
                printable(destination) + "\"");
    return reply;
}

} // namespace

OptionalDAVReply replyToCOPY(const DAVRequest &request)
{
    if (request.headers.value("Depth") != "infinity") return std::nullopt;
    return transfer(request, true);
}

OptionalDAVReply replyToMOVE(const DAVRequest &request)
{
    return transfer(request, false);
}

} // namespace tomelet::http
