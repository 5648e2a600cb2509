// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/WebDAV/DAVResponse.h"

#include "server/Core/FileTransfer.h"
#include "server/Core/Log.h"
#include "server/Core/RequestPath.h"
#include "server/Core/Text.h"

#include <filesystem>

#include <sys/stat.h>

namespace tomelet::http {

namespace {

// Class 2 only for the client that mounts a share read-only without it.
OptionalDAVReply replyToOPTIONS(const DAVRequest &request)
{
    DAVReply reply;
    reply.headers.set("DAV", request.headers.value("User-Agent").starts_with("WebDAVFS/") ? "1, 2" : "1");
    return reply;
}

OptionalDAVReply replyToMKCOL(const DAVRequest &request)
{
    DAVReply reply;
    const auto parent = std::filesystem::path(request.path).parent_path().string();
    if (!request.resourcePath.empty() && !isFolder(parent)) reply.status = 409;
    else if (mkdir(request.path.c_str(), 0777) != 0) reply.status = 405;
    if (reply.status != 200) logLine("Failed creating folder \"" + printable(request.path) + "\"");
    return reply;
}

OptionalDAVReply replyToUNLOCK(const DAVRequest &request)
{
    if (!itemExists(request.path)) return std::nullopt;
    DAVReply reply;
    reply.status = request.headers.contains("Lock-Token") ? 204 : 400;
    return reply;
}

using Handler = OptionalDAVReply (*)(const DAVRequest &);

Handler handlerOfMethod(const std::string &method)
{
    static constexpr struct
    {
        const char *method;
        Handler handler;
    } table[] = {
        {"OPTIONS", replyToOPTIONS}, {"PROPFIND", replyToPROPFIND}, {"MKCOL", replyToMKCOL},   {"MOVE", replyToMOVE},
        {"COPY", replyToCOPY},       {"LOCK", replyToLOCK},         {"UNLOCK", replyToUNLOCK},
    };
    for (const auto &row : table)
        if (method == row.method) return row.handler;
    return nullptr;
}

} // namespace

std::shared_ptr<DAVResponse> DAVResponse::withMethod(const std::string &method, const HTTPHeaders &headers,
                                                     const std::string &bodyData, const std::string &resourcePath,
                                                     const std::string &rootPath)
{
    const Handler handler = handlerOfMethod(method);
    const RequestPath place = pathBelowRoot(resourcePath, rootPath);
    if (!handler || place.fault != PathFault::None) return nullptr;
    auto reply = handler({headers, bodyData, relativeToRoot(place.path, rootPath), rootPath, place.path});
    return reply ? std::make_shared<DAVResponse>(std::move(*reply)) : nullptr;
}

} // namespace tomelet::http
