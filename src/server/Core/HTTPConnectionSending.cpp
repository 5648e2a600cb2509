// SPDX-License-Identifier: GPL-3.0-or-later
//
// The response: headers, then the body whole, in chunks, as one range or as several. A piece is read when the
// one before it has been sent, and never more than half a megabyte is queued, so that a slow client costs no
// memory.
#include "server/Core/HTTPConnection.h"

#include "server/Core/Text.h"
#include "server/Core/UUID.h"

#include <asio/post.hpp>

#include <algorithm>
#include <cstdio>

namespace tomelet::http {

namespace {

std::string chunkSizeLine(std::size_t size)
{
    char line[24];
    std::snprintf(line, sizeof line, "%zx\r\n", size);
    return line;
}

std::string multiRangeEnd(const std::string &boundary)
{
    return "\r\n--" + boundary + "--\r\n";
}

} // namespace

void HTTPConnection::responseHasAvailableData(std::shared_ptr<HTTPResponse> response)
{
    asio::post(connectionQueue(), [self = shared_from_this(), response = std::move(response)] {
        if (self->m_httpResponse != response) return;
        if (!self->m_sentResponseHeaders) self->sendResponseHeadersAndBody();
        else if (self->m_sendsBody) self->continueSendingBody();
    });
}

void HTTPConnection::responseDidAbort(std::shared_ptr<HTTPResponse> response)
{
    asio::post(connectionQueue(), [self = shared_from_this(), response = std::move(response)] {
        if (self->m_httpResponse == response) self->m_asyncSocket->disconnectAfterWriting();
    });
}

// ---- Headers

void HTTPConnection::sendResponseHeadersAndBody()
{
    if (m_httpResponse->delayResponseHeaders()) return;
    m_chunked = m_httpResponse->isChunked();
    const std::uint64_t contentLength = m_chunked ? 0 : m_httpResponse->contentLength();
    m_ranges.clear();
    if (const auto *range = m_request.allHeaderFields().find("Range"); range && !m_chunked)
        m_ranges = parseRangeRequest(*range, contentLength);

    HTTPMessage header = responseHeader(m_chunked, contentLength);
    const bool empty = !m_chunked && header.headerField("Content-Length") == "0";
    m_sentResponseHeaders = true;
    m_sendsBody = m_request.method() != "HEAD" && !empty;
    m_asyncSocket->writeData(preprocessResponse(std::move(header)), m_config->timeout,
                             m_sendsBody ? tags::PartialResponseHeader : tags::Response);
    if (m_sendsBody) startSendingBody();
}

HTTPMessage HTTPConnection::responseHeader(bool chunked, std::uint64_t contentLength)
{
    if (m_ranges.size() == 1) return uniRangeHeader(contentLength);
    if (m_ranges.size() > 1) return multiRangeHeader(contentLength);
    HTTPMessage header = HTTPMessage::responseWithStatusCode(m_httpResponse->status(), {}, "HTTP/1.1");
    if (chunked) header.setHeaderField("Transfer-Encoding", "chunked");
    else header.setHeaderField("Content-Length", std::to_string(contentLength));
    return header;
}

HTTPMessage HTTPConnection::uniRangeHeader(std::uint64_t contentLength)
{
    HTTPMessage header = HTTPMessage::responseWithStatusCode(206, {}, "HTTP/1.1");
    header.setHeaderField("Content-Length", std::to_string(m_ranges.front().length));
    header.setHeaderField("Content-Range", contentRange(m_ranges.front(), contentLength));
    return header;
}

HTTPMessage HTTPConnection::multiRangeHeader(std::uint64_t contentLength)
{
    m_rangeBoundary = makeUUID();
    m_rangeHeaders.clear();
    std::uint64_t total = multiRangeEnd(m_rangeBoundary).size();
    for (const ByteRange &range : m_ranges) {
        m_rangeHeaders.push_back("\r\n--" + m_rangeBoundary +
                                 "\r\nContent-Range: " + contentRange(range, contentLength) + "\r\n\r\n");
        total += m_rangeHeaders.back().size() + range.length;
    }
    HTTPMessage header = HTTPMessage::responseWithStatusCode(206, {}, "HTTP/1.1");
    header.setHeaderField("Content-Length", std::to_string(total));
    header.setHeaderField("Content-Type", "multipart/byteranges; boundary=" + m_rangeBoundary);
    return header;
}

// ---- Body

void HTTPConnection::startSendingBody()
{
    m_rangeIndex = 0;
    if (m_ranges.size() == 1) m_httpResponse->setOffset(m_ranges.front().location);
    else if (m_ranges.size() > 1) startRangePart();
    continueSendingBody();
}

void HTTPConnection::continueSendingBody()
{
    if (m_ranges.empty()) continueSendingStandardResponseBody();
    else if (m_ranges.size() == 1) continueSendingSingleRangeResponseBody();
    else continueSendingMultiRangeResponseBody();
}

std::size_t HTTPConnection::roomInWriteQueue() const
{
    return limits::bodyPiece - std::min(m_writeQueueSize, limits::bodyPiece);
}

void HTTPConnection::writePiece(BodyPiece data, int tag)
{
    m_responseDataSizes.push_back(data.size());
    m_writeQueueSize += data.size();
    m_asyncSocket->writeData(std::move(data), AsyncSocket::noTimeout, tag);
}

void HTTPConnection::continueSendingStandardResponseBody()
{
    const std::size_t room = roomInWriteQueue();
    if (room == 0) return;
    BodyPiece data = m_httpResponse->readDataOfLength(room);
    if (m_chunked) return sendChunk(std::move(data));
    if (data.size() == 0) return;
    const bool done = m_httpResponse->isDone();
    writePiece(std::move(data), done ? tags::Response : tags::PartialResponseBody);
}

// A chunk's closing CRLF leaves by itself or, behind the last chunk, with the terminator.
void HTTPConnection::sendChunk(BodyPiece data)
{
    const bool done = m_httpResponse->isDone();
    const bool empty = data.size() == 0;
    if (empty && !done) return;
    if (!empty) {
        m_asyncSocket->writeData(chunkSizeLine(data.size()), m_config->timeout, tags::ChunkedResponseHeader);
        writePiece(std::move(data), tags::ChunkedResponseBody);
    }
    if (done)
        m_asyncSocket->writeData(std::string(empty ? "0\r\n\r\n" : "\r\n0\r\n\r\n"), m_config->timeout, tags::Response);
    else m_asyncSocket->writeData(std::string("\r\n"), m_config->timeout, tags::ChunkedResponseFooter);
}

std::uint64_t HTTPConnection::restOfRange(const ByteRange &range)
{
    const std::uint64_t end = range.location + range.length;
    return end - std::min(m_httpResponse->offset(), end);
}

void HTTPConnection::continueSendingSingleRangeResponseBody()
{
    const ByteRange &range = m_ranges.front();
    const std::uint64_t length = std::min<std::uint64_t>(restOfRange(range), roomInWriteQueue());
    if (length == 0) return;
    BodyPiece data = m_httpResponse->readDataOfLength(static_cast<std::size_t>(length));
    if (data.size() == 0) return;
    const bool done = restOfRange(range) == 0;
    writePiece(std::move(data), done ? tags::Response : tags::PartialRangeResponseBody);
}

void HTTPConnection::startRangePart()
{
    m_asyncSocket->writeData(m_rangeHeaders[m_rangeIndex], m_config->timeout, tags::PartialResponseHeader);
    m_httpResponse->setOffset(m_ranges[m_rangeIndex].location);
}

void HTTPConnection::continueSendingMultiRangeResponseBody()
{
    while (m_rangeIndex < m_ranges.size()) {
        const ByteRange &range = m_ranges[m_rangeIndex];
        if (const std::uint64_t rest = restOfRange(range); rest > 0) {
            const std::uint64_t length = std::min<std::uint64_t>(rest, roomInWriteQueue());
            if (length == 0) return;
            BodyPiece data = m_httpResponse->readDataOfLength(static_cast<std::size_t>(length));
            if (data.size() == 0) return;
            writePiece(std::move(data), tags::PartialRangesResponseBody);
        }
        if (restOfRange(range) > 0) continue;
        if (++m_rangeIndex < m_ranges.size()) startRangePart();
        else m_asyncSocket->writeData(multiRangeEnd(m_rangeBoundary), m_config->timeout, tags::Response);
    }
}

// ---- Finished writes

void HTTPConnection::socketDidWriteData(int tag)
{
    const bool isHeader = tag == tags::PartialResponseHeader || tag == tags::ChunkedResponseHeader ||
                          tag == tags::ChunkedResponseFooter || tag == tags::Continue;
    if (!isHeader && !m_responseDataSizes.empty()) {
        m_writeQueueSize -= m_responseDataSizes.front();
        m_responseDataSizes.pop_front();
    }
    switch (tag) {
    case tags::PartialResponseBody:
    case tags::ChunkedResponseFooter: return continueSendingStandardResponseBody();
    case tags::PartialRangeResponseBody: return continueSendingSingleRangeResponseBody();
    case tags::PartialRangesResponseBody: return continueSendingMultiRangeResponseBody();
    case tags::Response: return didFinishReply();
    case tags::FinalResponse: return m_asyncSocket->disconnect();
    default: return;
    }
}

void HTTPConnection::didFinishReply()
{
    if (shouldDie()) return m_asyncSocket->disconnect();
    if (m_httpResponse) m_httpResponse->connectionDidClose();
    finishResponse();
    startReadingRequest();
}

} // namespace tomelet::http
