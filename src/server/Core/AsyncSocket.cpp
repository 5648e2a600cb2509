// SPDX-License-Identifier: GPL-3.0-or-later
//
// Everything runs through pump(): it answers the first read from what has arrived and sends what is queued,
// for as long as that gets anywhere, and then waits for the socket. A callback that queues the next operation
// only adds to the queues, so that nothing recurses, and small writes that were queued together leave
// together.
#include "server/Core/AsyncSocket.h"

#include <asio/post.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

namespace tomelet::http {

namespace {

// One read of a body or of a file, small enough for a processor's cache. To copy through it is faster than to have the
// system send a file's pages by themselves.
constexpr std::size_t stretchSize = 128 * 1024;
constexpr int stepsPerTurn = 64; ///< then the other connections of the thread have theirs
constexpr int maxGather = 16;
constexpr std::chrono::seconds lingerTime{2};

std::array<char, stretchSize> &stretch()
{
    static thread_local std::array<char, stretchSize> bytes;
    return bytes;
}

bool wouldBlock(int error)
{
    return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

std::string textOfError(int error)
{
    return std::generic_category().message(error);
}

} // namespace

AsyncSocket::AsyncSocket(asio::ip::tcp::socket socket)
    : m_socket(std::move(socket))
    , m_timer(m_socket.get_executor())
{
    std::error_code ignored;
    m_socket.non_blocking(true, ignored);
    m_socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    // Bodies have no time-out: only this finds a peer that vanished without a word.
    m_socket.set_option(asio::socket_base::keep_alive(true), ignored);
}

void AsyncSocket::readDataToData(std::string_view delimiter, Timeout timeout, std::size_t maxLength, int tag)
{
    queueRead(ReadKind::ToData, delimiter, maxLength, timeout, tag);
}

void AsyncSocket::readDataToLength(std::size_t length, Timeout timeout, int tag)
{
    queueRead(ReadKind::ToLength, {}, length, timeout, tag);
}

void AsyncSocket::readDataUpToLength(std::size_t length, Timeout timeout, int tag)
{
    queueRead(ReadKind::UpToLength, {}, length, timeout, tag);
}

void AsyncSocket::queueRead(ReadKind kind, std::string_view delimiter, std::size_t length, Timeout timeout, int tag)
{
    if (m_ended) return;
    m_reads.push_back({kind, delimiter, length, tag, timeout, Clock::now() + timeout});
    schedulePump();
}

void AsyncSocket::writeData(BodyPiece data, Timeout timeout, int tag)
{
    if (m_ended) return;
    m_writes.push_back({std::move(data), 0, tag, timeout, Clock::now() + timeout});
    schedulePump();
}

void AsyncSocket::schedulePump()
{
    if (m_pumping || m_pumpScheduled) return;
    m_pumpScheduled = true;
    asio::post(m_socket.get_executor(), [self = shared_from_this()] {
        self->m_pumpScheduled = false;
        self->pump();
    });
}

void AsyncSocket::pump()
{
    if (m_pumping || m_ended) return;
    m_pumping = true;
    int steps = stepsPerTurn;
    while (!m_ended && steps > 0 && (serveWrites() || serveRead())) --steps;
    m_pumping = false;
    if (m_ended) return;
    if (m_writes.empty()) cork(false);
    if (m_endAfterWriting && m_writes.empty()) end({});
    else if (steps == 0) schedulePump();
    else waitForSocket();
}

// ---- Reading

bool AsyncSocket::serveRead()
{
    if (m_reads.empty() || m_endAfterWriting) return false;
    const ReadOperation operation = m_reads.front();
    if (m_input.size() > 0 && serveFromBuffer(operation)) return true;
    if (!m_readable || m_ended) return false;
    return operation.kind == ReadKind::UpToLength ? receiveStraight(operation) : receive();
}

bool AsyncSocket::serveFromBuffer(const ReadOperation &operation)
{
    if (operation.kind == ReadKind::ToData) return serveToData(operation);
    if (operation.kind == ReadKind::ToLength && m_input.size() < operation.length) return false;
    deliver(std::min(operation.length, m_input.size()), operation.tag);
    return true;
}

bool AsyncSocket::serveToData(const ReadOperation &operation)
{
    const auto found = m_input.view().find(operation.delimiter, m_scanned);
    const std::size_t length = found == std::string_view::npos ? m_input.size() : found + operation.delimiter.size();
    if (length > operation.length) {
        end("the line is too long");
        return true;
    }
    if (found == std::string_view::npos) {
        // The delimiter's beginning may have arrived already.
        m_scanned = length - std::min(length, operation.delimiter.size() - 1);
        return false;
    }
    deliver(length, operation.tag);
    return true;
}

void AsyncSocket::deliver(std::size_t length, int tag)
{
    m_reads.pop_front();
    m_scanned = 0;
    if (const auto delegate = m_delegate.lock()) delegate->socketDidReadData(m_input.view().substr(0, length), tag);
    m_input.consume(length);
}

bool AsyncSocket::receive()
{
    std::size_t room = 0;
    char *const space = m_input.space(room);
    const ssize_t count = ::recv(m_socket.native_handle(), space, room, 0);
    if (count > 0) m_input.added(static_cast<std::size_t>(count));
    return didReceive(count, room);
}

bool AsyncSocket::receiveStraight(const ReadOperation &operation)
{
    char *const bytes = stretch().data();
    const std::size_t wanted = std::min(operation.length, stretchSize);
    const ssize_t count = ::recv(m_socket.native_handle(), bytes, wanted, 0);
    if (!didReceive(count, wanted)) return false;
    if (m_ended) return true;
    m_reads.pop_front();
    const std::string_view data(bytes, static_cast<std::size_t>(count));
    if (const auto delegate = m_delegate.lock()) delegate->socketDidReadData(data, operation.tag);
    return true;
}

// True when the state changed: data came, or the connection ended.
bool AsyncSocket::didReceive(ssize_t count, std::size_t asked)
{
    if (count < 0 && wouldBlock(errno)) {
        m_readable = false;
        return false;
    }
    if (count <= 0) {
        end(count == 0 ? "the peer closed the connection" : textOfError(errno));
        return true;
    }
    if (static_cast<std::size_t>(count) < asked) m_readable = false;
    return true;
}

// ---- Writing

bool AsyncSocket::serveWrites()
{
    if (m_writes.empty() || !m_writable) return false;
    const ssize_t count = m_writes.front().data.file ? sendFileStretch() : sendBytes();
    if (count < 0 && wouldBlock(errno)) {
        m_writable = false;
        return false;
    }
    if (count < 0) {
        end(textOfError(errno));
        return true;
    }
    return didSend(static_cast<std::size_t>(count));
}

ssize_t AsyncSocket::sendBytes()
{
    std::array<iovec, maxGather> parts{};
    std::size_t used = 0;
    bool more = false;
    for (WriteOperation &operation : m_writes) {
        more = operation.data.file || used == parts.size();
        if (more) break;
        parts[used++] = {operation.data.bytes.data() + operation.sent, operation.data.bytes.size() - operation.sent};
    }
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = used;
    return ::sendmsg(m_socket.native_handle(), &message, MSG_NOSIGNAL | (more ? MSG_MORE : 0));
}

// Stretches of one file then fill the packets across their borders, which makes a long one much faster.
void AsyncSocket::cork(bool on)
{
    if (on == m_corked) return;
    m_corked = on;
    const int value = on ? 1 : 0;
    (void)::setsockopt(m_socket.native_handle(), IPPROTO_TCP, TCP_CORK, &value, sizeof value);
}

ssize_t AsyncSocket::sendFileStretch()
{
    cork(true);
    const WriteOperation &operation = m_writes.front();
    const std::size_t wanted = std::min(operation.data.fileLength - operation.sent, stretchSize);
    const auto offset = static_cast<off_t>(operation.data.fileOffset + operation.sent);
    char *const bytes = stretch().data();
    const ssize_t count = ::pread(operation.data.file->descriptor(), bytes, wanted, offset);
    if (count > 0) return ::send(m_socket.native_handle(), bytes, static_cast<std::size_t>(count), MSG_NOSIGNAL);
    if (count == 0) errno = EIO; // the file became shorter: what was promised cannot be sent
    return -1;
}

// Takes sent bytes off the queue and tells of each piece that is through.
bool AsyncSocket::didSend(std::size_t count)
{
    while (!m_ended && !m_writes.empty()) {
        WriteOperation &operation = m_writes.front();
        const std::size_t part = std::min(count, operation.data.size() - operation.sent);
        operation.sent += part;
        count -= part;
        if (operation.sent < operation.data.size()) break;
        const int tag = operation.tag;
        m_writes.pop_front();
        if (const auto delegate = m_delegate.lock()) delegate->socketDidWriteData(tag);
        if (count == 0) break;
    }
    return true;
}

// ---- Waiting

void AsyncSocket::waitForSocket()
{
    if (!m_reads.empty() && !m_waitingToRead && !m_endAfterWriting) {
        m_waitingToRead = true;
        m_socket.async_wait(asio::socket_base::wait_read, [self = shared_from_this()](std::error_code) {
            self->m_waitingToRead = false;
            self->m_readable = true;
            self->pump();
        });
    }
    if (!m_writes.empty() && !m_waitingToWrite) {
        m_waitingToWrite = true;
        m_socket.async_wait(asio::socket_base::wait_write, [self = shared_from_this()](std::error_code) {
            self->m_waitingToWrite = false;
            self->m_writable = true;
            self->pump();
        });
    }
    armTimer();
}

// A timer that is set stays set as long as it fires early enough: a busy connection then sets one now and
// again and not for every line.
void AsyncSocket::armTimer()
{
    auto next = Clock::time_point::max();
    if (!m_reads.empty() && m_reads.front().timeout != noTimeout) next = m_reads.front().deadline;
    if (!m_writes.empty() && m_writes.front().timeout != noTimeout) next = std::min(next, m_writes.front().deadline);
    if (next >= m_timerExpiry) return;
    m_timerExpiry = next;
    m_timer.expires_at(next);
    m_timer.async_wait([self = shared_from_this()](std::error_code error) {
        if (!error) self->timerFired();
    });
}

void AsyncSocket::timerFired()
{
    if (m_ended) return;
    m_timerExpiry = Clock::time_point::max();
    // What came while this thread was busy elsewhere has come in time.
    m_readable = m_writable = true;
    pump();
    const auto passed = [now = Clock::now()](const auto &operations) {
        return !operations.empty() && operations.front().timeout != noTimeout && operations.front().deadline <= now;
    };
    if (!m_ended && (passed(m_reads) || passed(m_writes))) end("timed out");
}

// ---- Ending

void AsyncSocket::disconnect()
{
    if (!m_ended) end({});
}

void AsyncSocket::disconnectAfterWriting()
{
    m_endAfterWriting = true;
    schedulePump();
}

void AsyncSocket::disconnectNow()
{
    if (!m_ended) end("stopped");
    close();
}

void AsyncSocket::end(const std::string &reason)
{
    m_ended = true;
    m_timer.cancel();
    m_reads.clear();
    m_writes.clear();
    linger();
    if (const auto delegate = m_delegate.lock()) delegate->socketDidDisconnect(reason);
}

void AsyncSocket::linger()
{
    std::error_code error;
    m_socket.shutdown(asio::ip::tcp::socket::shutdown_send, error);
    if (error) return close();
    m_timer.expires_after(lingerTime);
    m_timer.async_wait([self = shared_from_this()](std::error_code cancelled) {
        if (!cancelled) self->close();
    });
    drain();
}

void AsyncSocket::drain()
{
    std::array<char, 16384> thrownAway;
    for (int i = 0; i < stepsPerTurn; ++i) {
        const ssize_t count = ::recv(m_socket.native_handle(), thrownAway.data(), thrownAway.size(), 0);
        if (count < 0 && wouldBlock(errno)) break;
        if (count <= 0) return close();
    }
    m_socket.async_wait(asio::socket_base::wait_read, [self = shared_from_this()](std::error_code error) {
        if (!error && self->m_socket.is_open()) self->drain();
    });
}

void AsyncSocket::close()
{
    std::error_code ignored;
    m_timer.cancel();
    m_socket.close(ignored);
}

} // namespace tomelet::http
