// SPDX-License-Identifier: GPL-3.0-or-later
//
// The request, line by line and within limits that hold before anybody is asked for a password: header lines,
// then a body of a known length or in chunks, handed on as it arrives.
#include "server/Core/HTTPConnection.h"

#include "server/Core/Text.h"

#include <algorithm>

namespace tomelet::http {

namespace {

constexpr std::string_view lineEnd = AsyncSocket::CRLFData;

// RFC 9112, 7.1: hexadecimal digits; what an extension behind ";" says is nobody's business here.
std::optional<std::uint64_t> parseChunkSize(std::string_view line)
{
    line.remove_suffix(lineEnd.size());
    const auto size = line.substr(0, line.find(';'));
    const auto end = size.find_last_not_of(" \t");
    return parseHexadecimal(size.substr(0, end == size.npos ? 0 : end + 1));
}

} // namespace

void HTTPConnection::socketDidReadData(std::string_view data, int tag)
{
    switch (tag) {
    case tags::RequestHeader: return didReadHeaderLine(data);
    case tags::RequestBody: return didReadBody(data);
    case tags::RequestChunkSize: return didReadChunkSize(data);
    case tags::RequestChunkData: return didReadChunkData(data);
    case tags::RequestChunkTrailer: return didReadChunkTrailer(data);
    case tags::RequestChunkFooter: return didReadChunkFooter(data);
    default: return;
    }
}

// ---- The header

void HTTPConnection::startReadingRequest()
{
    m_request = HTTPMessage();
    m_numHeaderLines = 0;
    m_sentResponseHeaders = false;
    m_sendsBody = false;
    m_authorized.reset();
    readHeaderLine();
}

void HTTPConnection::readHeaderLine()
{
    m_asyncSocket->readDataToData(lineEnd, m_config->timeout, limits::headerLineLength, tags::RequestHeader);
}

// False when there were too many lines: then the connection is gone, without a reply.
bool HTTPConnection::countHeaderLine()
{
    if (++m_numHeaderLines <= limits::headerLines) return true;
    m_asyncSocket->disconnect();
    return false;
}

void HTTPConnection::didReadHeaderLine(std::string_view line)
{
    if (!m_request.appendData(line)) {
        log("Malformed request");
        handleInvalidRequest();
    } else if (m_request.isHeaderComplete()) {
        didReadHeader();
    } else if (countHeaderLine()) {
        readHeaderLine();
    }
}

void HTTPConnection::didReadHeader()
{
    const std::string uri = requestURI();
    m_requestContentLength = 0;
    m_requestContentLengthReceived = 0;
    if (expectsRequestBodyFromMethod(m_request.method(), uri)) return prepareToReadBody();

    const std::string *const length = m_request.allHeaderFields().find("Content-Length");
    if (length && parseDecimal(*length) != std::uint64_t{0}) {
        log("Method not expecting request body had non-zero Content-Length");
        handleInvalidRequest();
    } else if (supportsMethod(m_request.method(), uri)) {
        replyToHTTPRequest();
    } else {
        handleUnknownMethod(m_request.method());
    }
}

// ---- The body

void HTTPConnection::prepareToReadBody()
{
    const auto size = expectedBodySize();
    if (!size) return handleInvalidRequest();
    if (!supportsMethod(m_request.method(), requestURI())) return handleUnknownMethod(m_request.method());
    m_requestContentLength = *size;
    prepareForBodyWithSize(*size);
    if (*size == 0) return didReadWholeBody();
    sendContinueIfExpected();
    if (*size == limits::chunkedBody) readChunkSize();
    else readBody();
}

// Chunked wins over a length that stands beside it (RFC 9112, 6.3).
std::optional<std::uint64_t> HTTPConnection::expectedBodySize()
{
    if (equalsIgnoringCase(m_request.headerField("Transfer-Encoding"), "chunked")) return limits::chunkedBody;
    const std::string *const text = m_request.allHeaderFields().find("Content-Length");
    if (!text) {
        log("Method expects request body, but had no specified Content-Length");
        return std::nullopt;
    }
    const auto size = parseDecimal(*text);
    if (!size) log("Unable to parse Content-Length header into a valid number");
    return size;
}

// A client that waits for leave to send its body gets it at once (RFC 9110, 10.1.1).
void HTTPConnection::sendContinueIfExpected()
{
    if (m_request.version() != "HTTP/1.1") return;
    if (!equalsIgnoringCase(m_request.headerField("Expect"), "100-continue")) return;
    m_asyncSocket->writeData(std::string("HTTP/1.1 100 Continue\r\n\r\n"), m_config->timeout, tags::Continue);
}

void HTTPConnection::readBody()
{
    const std::uint64_t rest = m_requestContentLength - m_requestContentLengthReceived;
    m_asyncSocket->readDataUpToLength(static_cast<std::size_t>(std::min<std::uint64_t>(rest, limits::bodyPiece)),
                                      AsyncSocket::noTimeout, tags::RequestBody);
}

void HTTPConnection::didReadBody(std::string_view data)
{
    m_requestContentLengthReceived += data.size();
    processBodyData(data);
    if (m_requestContentLengthReceived < m_requestContentLength) readBody();
    else didReadWholeBody();
}

void HTTPConnection::didReadWholeBody()
{
    finishBody();
    replyToHTTPRequest();
}

// ---- The body in chunks

void HTTPConnection::readChunkSize()
{
    m_asyncSocket->readDataToData(lineEnd, AsyncSocket::noTimeout, limits::chunkLineLength, tags::RequestChunkSize);
}

void HTTPConnection::didReadChunkSize(std::string_view line)
{
    const auto size = parseChunkSize(line);
    if (!size) {
        log("Method expects chunk size, but received something else");
        return handleInvalidRequest();
    }
    m_requestChunkSize = *size;
    m_requestChunkSizeReceived = 0;
    if (*size > 0) readChunkData();
    else readChunkFooter();
}

void HTTPConnection::readChunkData()
{
    const std::uint64_t rest = m_requestChunkSize - m_requestChunkSizeReceived;
    m_asyncSocket->readDataUpToLength(static_cast<std::size_t>(std::min<std::uint64_t>(rest, limits::bodyPiece)),
                                      AsyncSocket::noTimeout, tags::RequestChunkData);
}

void HTTPConnection::didReadChunkData(std::string_view data)
{
    m_requestChunkSizeReceived += data.size();
    m_requestContentLengthReceived += data.size();
    processBodyData(data);
    if (m_requestChunkSizeReceived < m_requestChunkSize) return readChunkData();
    m_asyncSocket->readDataToLength(lineEnd.size(), AsyncSocket::noTimeout, tags::RequestChunkTrailer);
}

void HTTPConnection::didReadChunkTrailer(std::string_view data)
{
    if (data == lineEnd) return readChunkSize();
    log("Method expects chunk trailer, but is missing");
    handleInvalidRequest();
}

void HTTPConnection::readChunkFooter()
{
    m_asyncSocket->readDataToData(lineEnd, AsyncSocket::noTimeout, limits::headerLineLength, tags::RequestChunkFooter);
}

void HTTPConnection::didReadChunkFooter(std::string_view line)
{
    if (!countHeaderLine()) return;
    if (line.size() > lineEnd.size()) readChunkFooter();
    else didReadWholeBody();
}

} // namespace tomelet::http
