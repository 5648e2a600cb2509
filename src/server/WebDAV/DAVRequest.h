// SPDX-License-Identifier: GPL-3.0-or-later
// What the WebDAV methods are given and what they give back: one function per method, without a connection
// around it.
#pragma once

#include "server/Core/HTTPHeaders.h"

#include <optional>
#include <string>

namespace tomelet::http {

struct DAVRequest
{
    HTTPHeaders headers;
    std::string bodyData;     ///< empty when there is none
    std::string resourcePath; ///< relative to the root, decoded, without a "/" at either end; "" is the root
    std::string rootPath;
    std::string path; ///< both joined
};

struct DAVReply
{
    int status = 200;
    HTTPHeaders headers;
    std::string data;
};

/// Nothing means status 404.
using OptionalDAVReply = std::optional<DAVReply>;

OptionalDAVReply replyToPROPFIND(const DAVRequest &request);
OptionalDAVReply replyToCOPY(const DAVRequest &request);
OptionalDAVReply replyToMOVE(const DAVRequest &request);
OptionalDAVReply replyToLOCK(const DAVRequest &request);

/// The first bytes of every XML body that is sent, and its media type.
inline constexpr const char *xmlDeclaration = "<?xml version=\"1.0\" encoding=\"utf-8\" ?>";
inline constexpr const char *xmlContentType = "application/xml; charset=\"utf-8\"";

} // namespace tomelet::http
