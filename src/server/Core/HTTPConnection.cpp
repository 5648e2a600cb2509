// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/HTTPConnection.h"

#include "server/Core/HTTPDate.h"
#include "server/Core/Log.h"
#include "server/Core/RequestPath.h"
#include "server/Core/Responses/HTTPFileResponse.h"
#include "server/Core/Text.h"

#include <asio/dispatch.hpp>

#include <ctime>

#include <sys/stat.h>

namespace tomelet::http {

namespace {

bool isDirectory(const std::string &path)
{
    struct stat status
    {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool exists(const std::string &path)
{
    struct stat status
    {};
    return stat(path.c_str(), &status) == 0;
}

void addCommonHeaders(HTTPMessage &message)
{
    message.setHeaderField("Date", headerDate(std::time(nullptr)));
    message.setHeaderField("Accept-Ranges", "bytes");
}

} // namespace

HTTPConnection::HTTPConnection(std::shared_ptr<AsyncSocket> socket, std::shared_ptr<const HTTPConfig> config)
    : m_asyncSocket(std::move(socket))
    , m_config(std::move(config))
{}

HTTPConnection::~HTTPConnection() = default;

void HTTPConnection::setAccount(std::string user, std::string password)
{
    m_user = std::move(user);
    m_password = std::move(password);
}

void HTTPConnection::start()
{
    asio::dispatch(connectionQueue(), [self = shared_from_this()] {
        if (self->m_started) return;
        self->m_started = true;
        self->m_asyncSocket->setDelegate(self);
        self->startReadingRequest();
    });
}

void HTTPConnection::stop()
{
    asio::dispatch(connectionQueue(), [self = shared_from_this()] { self->m_asyncSocket->disconnectNow(); });
}

void HTTPConnection::socketDidDisconnect(const std::string &)
{
    m_endedAtWork = m_working;
    if (m_working) return; // the request's parts are in use
    if (m_httpResponse) m_httpResponse->connectionDidClose();
    finishResponse();
    die();
}

void HTTPConnection::die()
{
    if (m_config->connectionDidDie) m_config->connectionDidDie(this);
}

void HTTPConnection::log(const std::string &line) const
{
    logLine(logPrefix("HTTPConnection", this) + line);
}

// ---- Overridable operations

bool HTTPConnection::supportsMethod(const std::string &method, const std::string &)
{
    return method == "GET" || method == "HEAD";
}

bool HTTPConnection::expectsRequestBodyFromMethod(const std::string &method, const std::string &)
{
    return method == "POST" || method == "PUT";
}

bool HTTPConnection::isPasswordProtected(const std::string &)
{
    return true;
}

bool HTTPConnection::useDigestAccessAuthentication()
{
    return true;
}

std::string HTTPConnection::realm()
{
    return "Tomelet@tomelet.local";
}

std::optional<std::string> HTTPConnection::passwordForUser(const std::string &user)
{
    if (m_user.empty() || m_password.empty() || user != m_user) return std::nullopt;
    return m_password;
}

HTTPConnection::Params HTTPConnection::parseParams(std::string_view query)
{
    Params params;
    while (!query.empty()) {
        const auto end = query.find('&');
        const auto part = query.substr(0, end);
        query.remove_prefix(end == query.npos ? query.size() : end + 1);
        const auto equals = part.find('=');
        const auto key = percentDecoded(part.substr(0, equals));
        if (!key || key->empty()) continue;
        params[*key] = percentDecoded(equals == part.npos ? std::string_view() : part.substr(equals + 1));
    }
    return params;
}

HTTPConnection::Params HTTPConnection::parseGetParams()
{
    const std::string uri = requestURI();
    const auto mark = uri.find('?');
    if (mark == uri.npos) return {};
    const std::string_view query = std::string_view(uri).substr(mark + 1);
    return parseParams(query.substr(0, query.find('#')));
}

std::string HTTPConnection::requestURI()
{
    return m_request.url();
}

std::vector<std::string> HTTPConnection::directoryIndexFileNames()
{
    return {"index.html", "index.htm"};
}

std::string HTTPConnection::filePathForURI(const std::string &uri, bool allowDirectory)
{
    const std::string &root = m_config->documentRoot;
    if (root.empty()) log("No configured document root");
    else if (!root.starts_with('/')) log("Document root is invalid file path");
    if (!root.starts_with('/')) return {};

    const RequestPath target = pathForTarget(uri, root);
    if (target.fault == PathFault::OutsideRoot) log("Request for file outside document root");
    if (target.fault != PathFault::None) return {};
    if (allowDirectory || !isDirectory(target.path)) return target.path;
    for (const std::string &name : directoryIndexFileNames())
        if (const std::string index = target.path + "/" + name; exists(index) && !isDirectory(index)) return index;
    return {};
}

std::shared_ptr<HTTPResponse> HTTPConnection::httpResponseForMethod(const std::string &, const std::string &uri)
{
    const std::string path = filePathForURI(uri);
    if (path.empty() || !exists(path)) return nullptr;
    return HTTPFileResponse::withFilePath(path, weak_from_this());
}

bool HTTPConnection::mayTakeLong(const std::string &)
{
    return false;
}

std::shared_ptr<WebSocket> HTTPConnection::webSocketForURI(const std::string &)
{
    return nullptr;
}

// A body is read and thrown away unless a subclass wants it.
void HTTPConnection::prepareForBodyWithSize(std::uint64_t) {}
void HTTPConnection::processBodyData(std::string_view) {}
void HTTPConnection::finishBody() {}

std::string HTTPConnection::preprocessResponse(HTTPMessage message)
{
    addCommonHeaders(message);
    if (m_httpResponse)
        for (const auto &[name, value] : m_httpResponse->httpHeaders()) {
            // The type of one part must not take the place of the multipart framing's.
            if (m_ranges.size() > 1 && equalsIgnoringCase(name, "Content-Type")) continue;
            message.setHeaderField(name, value);
        }
    return message.messageData();
}

std::string HTTPConnection::preprocessErrorResponse(HTTPMessage message)
{
    addCommonHeaders(message);
    return message.messageData();
}

void HTTPConnection::finishResponse()
{
    m_httpResponse.reset();
}

bool HTTPConnection::shouldDie()
{
    const std::string connection = m_request.headerField("Connection");
    if (m_request.version() == "HTTP/1.1") return equalsIgnoringCase(connection, "close");
    if (m_request.version() == "HTTP/1.0") return !equalsIgnoringCase(connection, "Keep-Alive");
    return false;
}

} // namespace tomelet::http
