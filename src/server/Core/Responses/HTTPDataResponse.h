// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/HTTPResponse.h"

#include <string>

namespace tomelet::http {

/// Serves a byte buffer.
class HTTPDataResponse : public HTTPResponse
{
public:
    explicit HTTPDataResponse(std::string data)
        : m_data(std::move(data))
    {}

    std::uint64_t contentLength() override { return m_data.size(); }
    std::uint64_t offset() override { return m_offset; }
    void setOffset(std::uint64_t offset) override { m_offset = offset; }
    BodyPiece readDataOfLength(std::size_t length) override;
    bool isDone() override { return m_offset >= m_data.size(); }

protected:
    void setData(std::string data) { m_data = std::move(data); }

private:
    std::string m_data;
    std::uint64_t m_offset = 0;
};

} // namespace tomelet::http
