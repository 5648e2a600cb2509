// SPDX-License-Identifier: GPL-3.0-or-later
//
// LOCK: a token for clients that insist on one. Nothing is remembered, and nobody is kept out.
#include "server/WebDAV/DAVRequest.h"

#include "server/Core/FileTransfer.h"
#include "server/Core/Log.h"
#include "server/Core/TemporaryItem.h"
#include "server/Core/Text.h"
#include "server/Core/UUID.h"
#include "server/WebDAV/XMLBody.h"

namespace tomelet::http {

namespace {

struct Lock
{
    LockInfo info;
    std::string depth;
    std::string token;
};

std::string withoutBrackets(std::string_view text)
{
    const auto first = text.find_first_not_of("(<>)");
    if (first == text.npos) return {};
    return std::string(text.substr(first, text.find_last_not_of("(<>)") - first + 1));
}

Lock requestedLock(const DAVRequest &request)
{
    if (!request.bodyData.empty())
        return {parseLockInfo(request.bodyData).value_or(LockInfo{}), request.headers.value("Depth"),
                "urn:uuid:" + makeUUID()};
    // A refresh: the token that the client holds is all that is left of its lock.
    if (const std::string *const token = request.headers.find("If"))
        return {{"exclusive", "write", {}}, "0", withoutBrackets(*token)};
    return {};
}

std::string bodyOfLock(const DAVRequest &request, const Lock &lock)
{
    std::string body = std::string(xmlDeclaration) + "<D:prop xmlns:D=\"DAV:\">\n<D:lockdiscovery>\n<D:activelock>\n";
    const auto add = [&body](const char *before, const std::string &text, const char *after) {
        body.append(before).append(escapedForXML(text)).append(after);
    };
    add("<D:locktype><D:", lock.info.type, "/></D:locktype>\n");
    add("<D:lockscope><D:", lock.info.scope, "/></D:lockscope>\n");
    add("<D:depth>", lock.depth, "</D:depth>\n");
    if (!lock.info.owner.empty()) add("<D:owner><D:href>", lock.info.owner, "</D:href></D:owner>\n");
    if (const std::string *const timeout = request.headers.find("Timeout"))
        add("<D:timeout>", *timeout, "</D:timeout>\n");
    add("<D:locktoken><D:href>", lock.token, "</D:href></D:locktoken>\n");
    add("<D:lockroot><D:href>", "http://" + request.headers.value("Host") + "/" + request.resourcePath,
        "</D:href></D:lockroot>\n");
    return body + "</D:activelock>\n</D:lockdiscovery>\n</D:prop>";
}

} // namespace

OptionalDAVReply replyToLOCK(const DAVRequest &request)
{
    const Lock lock = requestedLock(request);
    DAVReply reply;
    if (lock.info.scope != "exclusive" || lock.info.type != "write" || lock.depth != "0") {
        logLine("Locking request \"" + printable(lock.info.scope + "/" + lock.info.type + "/" + lock.depth) +
                "\" for \"" + printable(request.resourcePath) + "\" is not allowed");
        reply.status = 403;
    } else if (!itemExists(request.path) && !writeFileAtomically(request.rootPath, request.path, {})) {
        logLine("Failed locking \"" + printable(request.path) + "\"");
        reply.status = 403;
    } else {
        reply.headers.set("Content-Type", xmlContentType);
        reply.data = bodyOfLock(request, lock);
    }
    return reply;
}

} // namespace tomelet::http
