// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/Responses/HTTPDataResponse.h"
#include "server/WebDAV/DAVRequest.h"

#include <memory>
#include <string>

namespace tomelet::http {

/// The reply to one WebDAV method, carried out when the response is made.
class DAVResponse : public HTTPDataResponse
{
public:
    /// Null, which is answered with 404, for an unknown method, a resource outside the root and whatever the
    /// method itself answers so. The body is empty when the request has none.
    static std::shared_ptr<DAVResponse> withMethod(const std::string &method, const HTTPHeaders &headers,
                                                   const std::string &bodyData, const std::string &resourcePath,
                                                   const std::string &rootPath);

    explicit DAVResponse(DAVReply reply)
        : HTTPDataResponse(std::move(reply.data))
        , m_status(reply.status)
        , m_headers(std::move(reply.headers))
    {}

    int status() override { return m_status; }
    HTTPHeaders httpHeaders() override { return m_headers; }

private:
    int m_status;
    HTTPHeaders m_headers;
};

} // namespace tomelet::http
