// SPDX-License-Identifier: GPL-3.0-or-later
// What a connection sends as the answer to a request: one interface over bytes, files and made-up bodies.
#pragma once

#include "server/Core/BodyPiece.h"
#include "server/Core/HTTPHeaders.h"

#include <cstdint>
#include <memory>

namespace tomelet::http {

/// Used on the connection's queue. A response that works elsewhere reports back through its
/// HTTPResponseOwner.
class HTTPResponse
{
public:
    virtual ~HTTPResponse() = default;

    /// Bytes of the whole body; of no meaning when isChunked.
    virtual std::uint64_t contentLength() = 0;
    virtual std::uint64_t offset() = 0;
    virtual void setOffset(std::uint64_t offset) = 0;
    /// The next bytes, `length` at most; none when they are not there yet (then the response calls back) or
    /// when reading failed (then it has called responseDidAbort).
    virtual BodyPiece readDataOfLength(std::size_t length) = 0;
    /// True when everything up to the end has been read.
    virtual bool isDone() = 0;

    /// True for as long as status and headers are not known; the response calls back when they are.
    virtual bool delayResponseHeaders() { return false; }
    virtual int status() { return 200; }
    virtual HTTPHeaders httpHeaders() { return {}; }
    virtual bool isChunked() { return false; }
    /// The last byte is sent, or the connection is gone: let go of what is held.
    virtual void connectionDidClose() {}
};

/// The connection, as its response sees it. Both may be called from any thread.
class HTTPResponseOwner
{
public:
    virtual ~HTTPResponseOwner() = default;
    virtual void responseHasAvailableData(std::shared_ptr<HTTPResponse> response) = 0;
    virtual void responseDidAbort(std::shared_ptr<HTTPResponse> response) = 0;
};

} // namespace tomelet::http
