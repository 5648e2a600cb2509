// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/HTTPAuthenticationRequest.h"

#include "server/Core/MD5.h"
#include "server/Core/Text.h"

namespace tomelet::http {

namespace {

struct Parameter
{
    std::string_view name;
    std::string_view value;
    bool quoted = false;
};

// Takes one `name=value` or `name="value"` and its comma off the front; the name is empty when none is left.
Parameter consumeParameter(std::string_view &rest)
{
    const auto start = rest.find_first_not_of(" \t,");
    const auto equals = rest.find('=');
    if (start == rest.npos || equals == rest.npos || equals < start) return {};
    Parameter parameter{trimmed(rest.substr(start, equals - start)), {}, false};
    rest.remove_prefix(equals + 1);
    if (rest.starts_with('"')) {
        const auto end = rest.find('"', 1);
        parameter.quoted = end != rest.npos;
        parameter.value = rest.substr(1, parameter.quoted ? end - 1 : 0);
        rest.remove_prefix(parameter.quoted ? end + 1 : rest.size());
    } else {
        const auto end = rest.find(',');
        parameter.value = trimmed(rest.substr(0, end));
        rest.remove_prefix(end == rest.npos ? rest.size() : end);
    }
    return parameter;
}

void take(HTTPAuthenticationRequest &auth, const Parameter &parameter)
{
    const struct
    {
        const char *name;
        std::string &field;
    } quotedFields[] = {
        {"username", auth.username}, {"realm", auth.realm},   {"nonce", auth.nonce},
        {"uri", auth.uri},           {"cnonce", auth.cnonce}, {"response", auth.response},
    };
    if (parameter.name == "qop") auth.qop = parameter.value;
    else if (parameter.name == "nc" && !parameter.quoted) auth.nc = parameter.value;
    else if (parameter.quoted)
        for (const auto &[name, field] : quotedFields)
            if (parameter.name == name) field = parameter.value;
}

} // namespace

HTTPAuthenticationRequest parseAuthorization(std::string_view header)
{
    HTTPAuthenticationRequest auth;
    if (header.starts_with("Basic ")) {
        auth.isBasic = true;
        auth.base64Credentials = trimmed(header.substr(6));
    } else if (header.starts_with("Digest ")) {
        auth.isDigest = true;
        std::string_view rest = header.substr(7);
        for (auto parameter = consumeParameter(rest); !parameter.name.empty(); parameter = consumeParameter(rest))
            take(auth, parameter);
    }
    return auth;
}

std::string digestResponse(const HTTPAuthenticationRequest &auth, std::string_view realm, std::string_view password,
                           std::string_view method)
{
    const auto joined = [](auto... parts) {
        std::string text;
        ((text.append(text.empty() ? "" : ":").append(parts)), ...);
        return text;
    };
    const std::string ha1 = md5Hex(auth.username + ":" + std::string(realm) + ":" + std::string(password));
    const std::string ha2 = md5Hex(std::string(method) + ":" + auth.uri);
    return md5Hex(joined(ha1, auth.nonce, auth.nc, auth.cnonce, auth.qop, ha2));
}

} // namespace tomelet::http
