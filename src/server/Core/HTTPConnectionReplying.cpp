// SPDX-License-Identifier: GPL-3.0-or-later
//
// Who may ask, and which reply it is: authentication (RFC 7616 with MD5 and qop, RFC 7617) and the error
// replies.
#include "server/Core/HTTPConnection.h"

#include "server/Core/HTTPAuthenticationRequest.h"
#include "server/Core/Log.h"
#include "server/Core/Text.h"

#include <asio/post.hpp>

namespace tomelet::http {

namespace {

// A header that is a list of words parted by commas.
bool listContains(std::string_view list, std::string_view word)
{
    while (!list.empty()) {
        const auto comma = list.find(',');
        if (equalsIgnoringCase(trimmed(list.substr(0, comma)), word)) return true;
        list.remove_prefix(comma == list.npos ? list.size() : comma + 1);
    }
    return false;
}

HTTPMessage errorMessage(int status)
{
    HTTPMessage message = HTTPMessage::responseWithStatusCode(status, {}, "HTTP/1.1");
    message.setHeaderField("Content-Length", "0");
    return message;
}

HTTPMessage closingErrorMessage(int status)
{
    HTTPMessage message = errorMessage(status);
    message.setHeaderField("Connection", "close");
    return message;
}

} // namespace

void HTTPConnection::replyToHTTPRequest()
{
    const std::string &version = m_request.version();
    const std::string uri = requestURI();
    if (version != "HTTP/1.1" && version != "HTTP/1.0") return handleVersionNotSupported(version);
    if (isWebSocketRequest()) return replyToWebSocketRequest(uri);
    if (!isAuthorized()) return handleAuthenticationFailed();
    if (m_config->workQueue && mayTakeLong(m_request.method())) return replyOnWorkQueue(uri);
    replyWith(httpResponseForMethod(m_request.method(), uri));
}

void HTTPConnection::replyWith(std::shared_ptr<HTTPResponse> response)
{
    m_httpResponse = std::move(response);
    if (m_httpResponse) sendResponseHeadersAndBody();
    else handleResourceNotFound();
}

// No read and no write is queued meanwhile, so that of all events only the connection's end can come.
void HTTPConnection::replyOnWorkQueue(const std::string &uri)
{
    m_working = true;
    asio::post(m_config->workQueue, [self = shared_from_this(), uri] {
        auto response = self->httpResponseForMethod(self->m_request.method(), uri);
        asio::post(self->connectionQueue(),
                   [self, response = std::move(response)]() mutable { self->didFinishWork(std::move(response)); });
    });
}

void HTTPConnection::didFinishWork(std::shared_ptr<HTTPResponse> response)
{
    m_working = false;
    if (!m_endedAtWork) return replyWith(std::move(response));
    m_httpResponse = std::move(response);
    socketDidDisconnect({});
}

bool HTTPConnection::isWebSocketRequest() const
{
    return equalsIgnoringCase(m_request.headerField("Upgrade"), "websocket") &&
           listContains(m_request.headerField("Connection"), "Upgrade");
}

void HTTPConnection::replyToWebSocketRequest(const std::string &uri)
{
    const auto webSocket = webSocketForURI(uri);
    if (!webSocket) return handleResourceNotFound();
    webSocket->start(m_asyncSocket);
    if (m_config->webSocketDidStart) m_config->webSocketDidStart(webSocket);
    die();
}

// ---- Authentication

bool HTTPConnection::isAuthorized()
{
    if (!m_authorized) m_authorized = !isPasswordProtected(requestURI()) || isAuthenticated();
    return *m_authorized;
}

bool HTTPConnection::isAuthenticated()
{
    return useDigestAccessAuthentication() ? isDigestAuthenticated() : isBasicAuthenticated();
}

bool HTTPConnection::isDigestAuthenticated()
{
    const auto auth = parseAuthorization(m_request.headerField("Authorization"));
    if (!auth.isDigest || auth.username.empty()) return false;
    const auto password = passwordForUser(auth.username);
    if (!password || auth.uri != m_request.url() || !acceptNonce(auth.nonce, auth.nc)) return false;
    return equalsInConstantTime(digestResponse(auth, realm(), *password, m_request.method()), auth.response);
}

// The count must rise with every request under one nonce, or somebody repeats what was overheard.
bool HTTPConnection::acceptNonce(const std::string &nonce, const std::string &count)
{
    if (nonce.empty()) return false;
    if (nonce != m_nonce) {
        if (!recentNonces().hasRecentNonce(nonce, m_config->now())) return false;
        m_nonce = nonce;
        m_lastNC = 0;
    }
    const auto nc = static_cast<std::int64_t>(parseHexadecimal(count).value_or(0));
    if (nc <= m_lastNC) return false;
    m_lastNC = nc;
    return true;
}

bool HTTPConnection::isBasicAuthenticated()
{
    const auto auth = parseAuthorization(m_request.headerField("Authorization"));
    const auto credentials = auth.isBasic ? base64Decoded(auth.base64Credentials) : std::nullopt;
    const auto colon = credentials ? credentials->find(':') : std::string::npos;
    if (colon == std::string::npos) return false;
    const auto password = passwordForUser(credentials->substr(0, colon));
    return password && equalsInConstantTime(*password, std::string_view(*credentials).substr(colon + 1));
}

// ---- Error replies

void HTTPConnection::sendError(HTTPMessage message, int tag)
{
    m_asyncSocket->writeData(preprocessErrorResponse(std::move(message)), m_config->timeout, tag);
}

void HTTPConnection::handleVersionNotSupported(const std::string &version)
{
    logLine("HTTP Server: Error 505 - Version Not Supported: " + printable(version) + " (" + printable(requestURI()) +
            ")");
    sendError(errorMessage(505), tags::Response);
}

void HTTPConnection::handleAuthenticationFailed()
{
    HTTPMessage message = errorMessage(401);
    if (useDigestAccessAuthentication())
        message.setHeaderField("WWW-Authenticate", "Digest realm=\"" + realm() + "\", qop=\"auth\", nonce=\"" +
                                                       recentNonces().generateNonce(m_config->now()) + "\"");
    else message.setHeaderField("WWW-Authenticate", "Basic realm=\"" + realm() + "\"");
    sendError(std::move(message), tags::Response);
}

void HTTPConnection::handleInvalidRequest()
{
    logLine("HTTP Server: Error 400 - Bad Request (" + printable(requestURI()) + ")");
    sendError(closingErrorMessage(400), tags::FinalResponse);
}

void HTTPConnection::handleUnknownMethod(const std::string &method)
{
    logLine("HTTP Server: Error 405 - Method Not Allowed: " + printable(method) + " (" + printable(requestURI()) + ")");
    sendError(closingErrorMessage(405), tags::FinalResponse);
}

void HTTPConnection::handleResourceNotFound()
{
    sendError(errorMessage(404), tags::Response);
}

} // namespace tomelet::http
