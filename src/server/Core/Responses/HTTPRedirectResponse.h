// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/Responses/HTTPErrorResponse.h"

#include <string>

namespace tomelet::http {

/// Status 302 and a Location, without a body.
class HTTPRedirectResponse : public HTTPErrorResponse
{
public:
    explicit HTTPRedirectResponse(std::string location)
        : HTTPErrorResponse(302)
        , m_location(std::move(location))
    {}

    HTTPHeaders httpHeaders() override
    {
        HTTPHeaders headers;
        headers.set("Location", m_location);
        return headers;
    }

private:
    std::string m_location;
};

} // namespace tomelet::http
