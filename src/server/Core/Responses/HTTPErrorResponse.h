// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/HTTPResponse.h"

namespace tomelet::http {

/// A status without a body.
class HTTPErrorResponse : public HTTPResponse
{
public:
    explicit HTTPErrorResponse(int status)
        : m_status(status)
    {}

    std::uint64_t contentLength() override { return 0; }
    std::uint64_t offset() override { return 0; }
    void setOffset(std::uint64_t) override {}
    BodyPiece readDataOfLength(std::size_t) override { return {}; }
    bool isDone() override { return true; }
    int status() override { return m_status; }

protected:
    void setStatus(int status) { m_status = status; }

private:
    int m_status;
};

} // namespace tomelet::http
