// SPDX-License-Identifier: GPL-3.0-or-later
// Drives one client from request to response, over and over, for as long as the connection stays open.
// Subclasses answer differently by overriding the operations below; the base class serves files read-only.
//
// The source is in four files: HTTPConnection.cpp (life, overridable operations), HTTPConnectionReading.cpp
// (request and body), HTTPConnectionReplying.cpp (authentication and the choice of the reply),
// HTTPConnectionSending.cpp (response headers and bodies).
#pragma once

#include "server/Core/AsyncSocket.h"
#include "server/Core/ByteRange.h"
#include "server/Core/HTTPConfig.h"
#include "server/Core/HTTPMessage.h"
#include "server/Core/HTTPResponse.h"
#include "server/Core/WebSocket.h"

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tomelet::http {

/// The limits of what a client may send before it is asked for a password, and of what is kept for it.
namespace limits {
constexpr std::size_t headerLineLength = 8190; ///< with its CRLF; longer lines end the connection
constexpr unsigned headerLines = 100;          ///< request line included
constexpr std::size_t chunkLineLength = 200;
constexpr std::size_t bodyPiece = 524288; ///< one read of a body; also the most that is queued for sending
constexpr std::uint64_t chunkedBody = ~std::uint64_t{0}; ///< the body's size while it is not known
} // namespace limits

class HTTPConnection : public AsyncSocketDelegate,
                       public HTTPResponseOwner,
                       public std::enable_shared_from_this<HTTPConnection>
{
public:
    /// The configuration outlives the connection.
    HTTPConnection(std::shared_ptr<AsyncSocket> socket, std::shared_ptr<const HTTPConfig> config);
    ~HTTPConnection() override;

    /// The account; without one nobody gets in. Before start().
    void setAccount(std::string user, std::string password);
    /// Begins to read, once; later calls do nothing. From any thread.
    void start();
    /// Closes the connection. From any thread.
    void stop();

    void responseHasAvailableData(std::shared_ptr<HTTPResponse> response) override;
    void responseDidAbort(std::shared_ptr<HTTPResponse> response) override;

    /// "a=b&c" as a dictionary; a value that cannot be decoded is nothing, an empty key is dropped.
    using Params = std::map<std::string, std::optional<std::string>>;
    [[nodiscard]] static Params parseParams(std::string_view query);

protected:
    // ---- Operations that a subclass may override. All run on the connection's queue, but httpResponseForMethod and
    // what it calls may run on the work queue instead; nothing else runs for the connection then.

    [[nodiscard]] virtual bool supportsMethod(const std::string &method, const std::string &path);
    [[nodiscard]] virtual bool expectsRequestBodyFromMethod(const std::string &method, const std::string &path);
    [[nodiscard]] virtual bool isPasswordProtected(const std::string &path);
    [[nodiscard]] virtual bool useDigestAccessAuthentication();
    [[nodiscard]] virtual std::string realm();
    /// Nothing for an unknown user.
    [[nodiscard]] virtual std::optional<std::string> passwordForUser(const std::string &user);
    [[nodiscard]] virtual Params parseGetParams();
    /// The request's target just as it came.
    [[nodiscard]] virtual std::string requestURI();
    [[nodiscard]] virtual std::vector<std::string> directoryIndexFileNames();
    /// The path that a URI names below the root, or "" where it names none. A folder is replaced by its index
    /// file unless folders are allowed.
    [[nodiscard]] virtual std::string filePathForURI(const std::string &uri, bool allowDirectory = false);
    /// Null is answered with 404.
    [[nodiscard]] virtual std::shared_ptr<HTTPResponse> httpResponseForMethod(const std::string &method,
                                                                              const std::string &uri);
    /// True for requests that are answered on the work queue: the connection waits for that, and no other one does.
    [[nodiscard]] virtual bool mayTakeLong(const std::string &method);
    [[nodiscard]] virtual std::shared_ptr<WebSocket> webSocketForURI(const std::string &uri);
    /// A body of that many bytes follows, limits::chunkedBody of them when nobody knows; only processBodyData
    /// tells how many really come.
    virtual void prepareForBodyWithSize(std::uint64_t size);
    virtual void processBodyData(std::string_view data);
    virtual void finishBody();
    virtual void handleVersionNotSupported(const std::string &version);
    virtual void handleAuthenticationFailed();
    virtual void handleInvalidRequest();
    virtual void handleUnknownMethod(const std::string &method);
    virtual void handleResourceNotFound();
    /// Add the headers of every response, or every error reply, and give the bytes to send.
    [[nodiscard]] virtual std::string preprocessResponse(HTTPMessage message);
    [[nodiscard]] virtual std::string preprocessErrorResponse(HTTPMessage message);
    /// The reply is sent, or the connection ended: let go of what belongs to the request.
    virtual void finishResponse();
    /// True when the connection closes behind this reply.
    [[nodiscard]] virtual bool shouldDie();
    virtual void die();

    // ---- For subclasses

    /// True when the request needs no password or has brought the right one. Judged once a request, so that
    /// it can be asked before the body comes as well as behind it.
    [[nodiscard]] bool isAuthorized();
    [[nodiscard]] const HTTPMessage &request() const { return m_request; }
    [[nodiscard]] const HTTPConfig &config() const { return *m_config; }
    [[nodiscard]] asio::any_io_executor connectionQueue() const { return m_asyncSocket->queue(); }

private:
    void socketDidReadData(std::string_view data, int tag) override;
    void socketDidWriteData(int tag) override;
    void socketDidDisconnect(const std::string &reason) override;

    void log(const std::string &line) const;

    void startReadingRequest();
    void readHeaderLine();
    bool countHeaderLine();
    void didReadHeaderLine(std::string_view line);
    void didReadHeader();
    void prepareToReadBody();
    std::optional<std::uint64_t> expectedBodySize();
    void readBody();
    void didReadBody(std::string_view data);
    void readChunkSize();
    void didReadChunkSize(std::string_view line);
    void readChunkData();
    void didReadChunkData(std::string_view data);
    void didReadChunkTrailer(std::string_view data);
    void readChunkFooter();
    void didReadChunkFooter(std::string_view line);
    void didReadWholeBody();
    void sendContinueIfExpected();

    void replyToHTTPRequest();
    void replyWith(std::shared_ptr<HTTPResponse> response);
    void replyOnWorkQueue(const std::string &uri);
    void didFinishWork(std::shared_ptr<HTTPResponse> response);
    bool isAuthenticated();
    bool isDigestAuthenticated();
    bool isBasicAuthenticated();
    bool acceptNonce(const std::string &nonce, const std::string &count);
    bool isWebSocketRequest() const;
    void replyToWebSocketRequest(const std::string &uri);
    void sendError(HTTPMessage message, int tag);

    void sendResponseHeadersAndBody();
    HTTPMessage responseHeader(bool chunked, std::uint64_t contentLength);
    HTTPMessage uniRangeHeader(std::uint64_t contentLength);
    HTTPMessage multiRangeHeader(std::uint64_t contentLength);
    void startSendingBody();
    void continueSendingBody();
    void continueSendingStandardResponseBody();
    void sendChunk(BodyPiece data);
    void continueSendingSingleRangeResponseBody();
    void continueSendingMultiRangeResponseBody();
    void startRangePart();
    std::uint64_t restOfRange(const ByteRange &range);
    void writePiece(BodyPiece data, int tag);
    std::size_t roomInWriteQueue() const;
    void didFinishReply();

    const std::shared_ptr<AsyncSocket> m_asyncSocket;
    const std::shared_ptr<const HTTPConfig> m_config;
    std::string m_user;
    std::string m_password;
    bool m_started = false;

    HTTPMessage m_request;
    unsigned m_numHeaderLines = 0;
    std::uint64_t m_requestContentLength = 0;
    std::uint64_t m_requestContentLengthReceived = 0;
    std::uint64_t m_requestChunkSize = 0;
    std::uint64_t m_requestChunkSizeReceived = 0;

    std::string m_nonce;       ///< the nonce that this client uses
    std::int64_t m_lastNC = 0; ///< the last count seen with it
    std::optional<bool> m_authorized;

    std::shared_ptr<HTTPResponse> m_httpResponse;
    bool m_working = false;     ///< the request is on the work queue
    bool m_endedAtWork = false; ///< and meanwhile the connection has ended
    bool m_sentResponseHeaders = false;
    bool m_sendsBody = false;
    bool m_chunked = false;
    std::vector<ByteRange> m_ranges;
    std::vector<std::string> m_rangeHeaders;
    std::string m_rangeBoundary;
    std::size_t m_rangeIndex = 0;
    std::deque<std::size_t> m_responseDataSizes; ///< sizes of the body writes in flight
    std::size_t m_writeQueueSize = 0;            ///< their sum
};

/// Tags of reads and writes: what a finished one leads to.
namespace tags {
enum Read {
    RequestHeader = 10,
    RequestBody,
    RequestChunkSize,
    RequestChunkData,
    RequestChunkTrailer,
    RequestChunkFooter
};
enum Write {
    Continue = 20, ///< the interim status 100
    PartialResponseHeader = 21,
    PartialResponseBody = 22,
    ChunkedResponseHeader = 30,
    ChunkedResponseBody = 31,
    ChunkedResponseFooter = 32,
    PartialRangeResponseBody = 40,
    PartialRangesResponseBody = 50,
    Response = 90,     ///< final: keep the connection if allowed
    FinalResponse = 91 ///< final: close it
};
} // namespace tags

} // namespace tomelet::http
