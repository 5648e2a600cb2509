// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/WebDAV/DAVConnection.h"

#include "server/Core/Log.h"
#include "server/Core/RequestPath.h"
#include "server/Core/Responses/HTTPAsyncFileResponse.h"
#include "server/WebDAV/DAVResponse.h"
#include "server/WebDAV/DELETEResponse.h"
#include "server/WebDAV/PUTResponse.h"

#include <algorithm>
#include <array>
#include <fstream>

namespace tomelet::http {

namespace {

constexpr std::uint64_t maxSizeOfSmallFile = 16777216;
constexpr std::size_t maxDocumentSize = 4 * 1024 * 1024; ///< of an XML body; what is longer counts as unreadable

template <std::size_t N>
bool isOneOf(const std::string &method, const std::array<const char *, N> &methods)
{
    return std::find(methods.begin(), methods.end(), method) != methods.end();
}

constexpr std::array davMethods = {"OPTIONS", "PROPFIND", "MKCOL", "MOVE", "COPY", "LOCK", "UNLOCK"};

std::string documentInFile(const std::string &path)
{
    std::string bytes(maxDocumentSize + 1, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes.size() > maxDocumentSize ? std::string() : bytes;
}

} // namespace

bool DAVConnection::supportsMethod(const std::string &method, const std::string &)
{
    constexpr std::array fileMethods = {"GET", "HEAD", "PUT", "DELETE"};
    return isOneOf(method, fileMethods) || isOneOf(method, davMethods);
}

bool DAVConnection::expectsRequestBodyFromMethod(const std::string &method, const std::string &)
{
    constexpr std::array mayHaveBody = {"PROPFIND", "MKCOL", "LOCK"};
    if (method == "PUT") return true;
    return isOneOf(method, mayHaveBody) && request().allHeaderFields().contains("Content-Length");
}

// A client without the password gets nothing stored: its body is read and dropped before it is told so.
void DAVConnection::prepareForBodyWithSize(std::uint64_t size)
{
    m_requestContentBody = {};
    if (!isAuthorized() || !config().documentRoot.starts_with('/')) return;
    if (size <= maxBodyInMemory) m_requestContentBody = std::string();
    else m_requestContentBody = std::make_unique<TemporaryItem>(TemporaryItem::Kind::File, config().documentRoot);
}

void DAVConnection::processBodyData(std::string_view data)
{
    if (auto *const buffer = std::get_if<std::string>(&m_requestContentBody)) buffer->append(data);
    else if (auto *const file = std::get_if<BodyFile>(&m_requestContentBody)) (*file)->append(data);
}

void DAVConnection::finishResponse()
{
    m_requestContentBody = {};
    HTTPConnection::finishResponse();
}

std::string DAVConnection::filePathForURI(const std::string &uri, bool allowDirectory)
{
    std::string path = HTTPConnection::filePathForURI(uri, allowDirectory);
    const std::string relative = relativeToRoot(path, config().documentRoot);
    return isTemporaryName(relative.substr(0, relative.find('/'))) ? std::string() : path;
}

std::shared_ptr<HTTPResponse> DAVConnection::httpResponseForMethod(const std::string &method, const std::string &uri)
{
    if (method == "GET" || method == "HEAD") return responseToGET(uri);
    const std::string path = filePathForURI(uri, true);
    if (path.empty()) return nullptr;
    if (method == "PUT") return responseToPUT(path);
    if (method == "DELETE") return std::make_shared<DELETEResponse>(path, config().documentRoot);
    return isOneOf(method, davMethods) ? responseToDAVMethod(method, path) : nullptr;
}

// Whole trees are copied and deleted, and large bodies brought to the disk.
bool DAVConnection::mayTakeLong(const std::string &method)
{
    return method != "GET" && method != "HEAD" && method != "OPTIONS";
}

std::shared_ptr<HTTPResponse> DAVConnection::responseToGET(const std::string &uri)
{
    const std::string path = filePathForURI(uri);
    if (path.empty()) return nullptr;
    const auto small = HTTPFileResponse::withFilePath(path, weak_from_this());
    if (!small || small->contentLength() <= maxSizeOfSmallFile) return small;
    return HTTPAsyncFileResponse::withFilePath(path, weak_from_this(), config().fileQueue, connectionQueue());
}

std::shared_ptr<HTTPResponse> DAVConnection::responseToPUT(const std::string &path)
{
    const HTTPHeaders &headers = request().allHeaderFields();
    if (auto *const file = std::get_if<BodyFile>(&m_requestContentBody))
        return std::make_shared<PUTResponse>(path, headers, **file);
    if (auto *const buffer = std::get_if<std::string>(&m_requestContentBody))
        return std::make_shared<PUTResponse>(path, headers, *buffer, config().documentRoot);
    logLine("Internal error");
    return nullptr;
}

std::shared_ptr<HTTPResponse> DAVConnection::responseToDAVMethod(const std::string &method, const std::string &path)
{
    std::string body;
    if (auto *const file = std::get_if<BodyFile>(&m_requestContentBody)) body = documentInFile((*file)->path());
    else if (auto *const buffer = std::get_if<std::string>(&m_requestContentBody)) body = std::move(*buffer);
    return DAVResponse::withMethod(method, request().allHeaderFields(), body,
                                   relativeToRoot(path, config().documentRoot), config().documentRoot);
}

} // namespace tomelet::http
