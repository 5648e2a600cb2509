// SPDX-License-Identifier: GPL-3.0-or-later
// The Authorization header of a request (RFC 7616, RFC 7617).
#pragma once

#include <string>
#include <string_view>

namespace tomelet::http {

/// What the header says; a field that is missing, or stands without the quotes that it needs, is empty.
struct HTTPAuthenticationRequest
{
    bool isBasic = false;
    bool isDigest = false;
    std::string base64Credentials;
    std::string username;
    std::string realm;
    std::string nonce;
    std::string uri;
    std::string qop; ///< quoted or not
    std::string nc;  ///< never quoted
    std::string cnonce;
    std::string response;
};

/// Reads the header's value. The scheme is matched with its case; an unknown one leaves all empty.
[[nodiscard]] HTTPAuthenticationRequest parseAuthorization(std::string_view header);

/// What a client that knows the password answers: the digest with qop over the request's fields.
[[nodiscard]] std::string digestResponse(const HTTPAuthenticationRequest &auth, std::string_view realm,
                                         std::string_view password, std::string_view method);

} // namespace tomelet::http
