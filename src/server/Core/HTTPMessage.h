// SPDX-License-Identifier: GPL-3.0-or-later
// An HTTP/1.x message: a request that is parsed as its bytes arrive, or a message that is built and written
// (RFC 9112). Strict where leniency would let two readers of one stream disagree.
#pragma once

#include "server/Core/HTTPHeaders.h"

#include <string>
#include <string_view>

namespace tomelet::http {

class HTTPMessage
{
public:
    /// An empty request, to be filled by appendData.
    HTTPMessage() = default;
    static HTTPMessage requestWithMethod(std::string method, std::string url, std::string version);
    /// An empty description stands for the status's usual one.
    static HTTPMessage responseWithStatusCode(int status, std::string description, std::string version);

    /// Takes further bytes of a request, in pieces of any size. False for a malformed message: a request line
    /// of other than three parts, a version that is no "HTTP/n.n", a name that is no token or has white space
    /// before its colon, a folded line, a control character, a lone CR or LF, two Content-Length fields that
    /// differ. Empty lines before the request line are skipped. A field that repeats is joined by ", ".
    [[nodiscard]] bool appendData(std::string_view data);
    [[nodiscard]] bool isHeaderComplete() const { return m_state == State::Complete; }

    [[nodiscard]] const std::string &version() const { return m_version; }
    [[nodiscard]] const std::string &method() const { return m_method; }
    /// The request target just as it came.
    [[nodiscard]] const std::string &url() const { return m_url; }
    [[nodiscard]] int statusCode() const { return m_status; }
    [[nodiscard]] const HTTPHeaders &allHeaderFields() const { return m_headers; }
    /// The value, or "" for a field that is missing.
    [[nodiscard]] std::string headerField(std::string_view name) const { return m_headers.value(name); }
    void setHeaderField(std::string_view name, std::string value) { m_headers.set(name, std::move(value)); }

    [[nodiscard]] const std::string &body() const { return m_body; }
    void setBody(std::string body) { m_body = std::move(body); }
    /// The message's bytes: start line, fields, empty line, body.
    [[nodiscard]] std::string messageData() const;

private:
    enum class State { StartLine, Fields, Complete };

    bool appendLine(std::string_view line);
    bool parseRequestLine(std::string_view line);
    bool parseField(std::string_view line);

    State m_state = State::StartLine;
    std::string m_pending; ///< the beginning of a line whose end has not come yet
    std::string m_method;
    std::string m_url;
    std::string m_version;
    int m_status = 0;
    std::string m_description;
    HTTPHeaders m_headers;
    std::string m_body;
};

/// "OK" for 200 and so on; "Unknown" for a status without a usual phrase.
[[nodiscard]] std::string_view statusDescription(int status);

} // namespace tomelet::http
