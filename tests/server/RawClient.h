// SPDX-License-Identifier: GPL-3.0-or-later
// A client that sends just the bytes it is given, and the digest of a client that knows the password.
#pragma once

#include "server/Core/HTTPHeaders.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tomelet::test {

struct Reply
{
    int status = 0; ///< 0 when the connection ended without a reply
    http::HTTPHeaders headers;
    std::string body;

    [[nodiscard]] std::string header(const char *name) const { return headers.value(name); }
};

class RawClient
{
public:
    explicit RawClient(std::uint16_t port);
    RawClient(const RawClient &) = delete;
    RawClient &operator=(const RawClient &) = delete;
    ~RawClient();

    /// Sends as much as the peer takes.
    void send(std::string_view bytes);
    /// Sends each byte by itself.
    void sendByByte(std::string_view bytes);
    /// Reads one reply; a body that is not expected (HEAD) is told by withoutBody.
    Reply receive(bool withoutBody = false);
    /// Reads all that comes until the peer ends the connection; false when it does not within ten seconds.
    bool receiveEnd(std::string &bytes);
    /// True when the peer ends the connection without another byte.
    bool isDropped();
    /// Ends the connection by a reset.
    void abort();

    /// Sends a request with a digest, asking for a nonce first where none is known. The fields end with CRLF
    /// each; Content-Length is added to a body.
    Reply request(const std::string &method, const std::string &uri, const std::string &fields = {},
                  const std::string &body = {});
    /// The request's bytes, ready to be sent.
    std::string authorized(const std::string &method, const std::string &uri, const std::string &fields = {},
                           const std::string &body = {});

    std::string nonce;
    unsigned nc = 0;

private:
    bool fill();
    std::string takeLine();
    std::string take(std::size_t count);
    std::string takeChunks();

    int m_socket;
    std::string m_input;
};

/// The value of Authorization for the account "Tomelet" with the password "secret".
std::string digestHeader(const std::string &method, const std::string &uri, const std::string &nonce,
                         const std::string &nc, const std::string &password = "secret");

/// The nonce of a 401.
std::string nonceOf(const Reply &reply);

} // namespace tomelet::test
