// SPDX-License-Identifier: GPL-3.0-or-later
// One connected socket with queued, asynchronous reads and writes. Each carries a tag that comes back with
// its result and a time-out. All work and all callbacks happen on the socket's queue, which runs one thing at a time.
#pragma once

#include "server/Core/BodyPiece.h"
#include "server/Core/InputBuffer.h"

#include <asio/any_io_executor.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/steady_timer.hpp>

#include <chrono>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

namespace tomelet::http {

class AsyncSocketDelegate
{
public:
    virtual ~AsyncSocketDelegate() = default;
    /// The data are valid during the call.
    virtual void socketDidReadData(std::string_view data, int tag) = 0;
    virtual void socketDidWriteData(int tag) = 0;
    /// Called once; reads and writes that were queued are dropped without a callback of their own. The reason
    /// is empty when this side ended the connection.
    virtual void socketDidDisconnect(const std::string &reason) = 0;
};

class AsyncSocket : public std::enable_shared_from_this<AsyncSocket>
{
public:
    using Timeout = std::chrono::milliseconds;
    static constexpr Timeout noTimeout{-1};
    static constexpr std::string_view CRLFData = "\r\n";

    explicit AsyncSocket(asio::ip::tcp::socket socket);

    void setDelegate(std::weak_ptr<AsyncSocketDelegate> delegate) { m_delegate = std::move(delegate); }
    /// The serial queue; everything below is called on it.
    [[nodiscard]] asio::any_io_executor queue() { return m_socket.get_executor(); }

    /// Reads up to and with the delimiter. More than maxLength bytes, the delimiter included, end the
    /// connection.
    void readDataToData(std::string_view delimiter, Timeout timeout, std::size_t maxLength, int tag);
    /// Reads exactly that many bytes; meant for a few.
    void readDataToLength(std::size_t length, Timeout timeout, int tag);
    /// Reads what arrives, one byte at least and `length` at most, so that a long body needs no buffer of its
    /// own.
    void readDataUpToLength(std::size_t length, Timeout timeout, int tag);
    void writeData(BodyPiece data, Timeout timeout, int tag);

    /// Ends the connection. The peer sees a regular end: what it still sends is read and thrown away for a
    /// moment, because closing over unread bytes would take the last reply from it.
    void disconnect();
    /// Sends what is queued first.
    void disconnectAfterWriting();
    /// Closes at once, a connection in its last moment included.
    void disconnectNow();

private:
    using Clock = std::chrono::steady_clock;
    enum class ReadKind { ToData, ToLength, UpToLength };

    struct ReadOperation
    {
        ReadKind kind;
        std::string_view delimiter;
        std::size_t length;
        int tag;
        Timeout timeout;
        Clock::time_point deadline;
    };

    struct WriteOperation
    {
        BodyPiece data;
        std::size_t sent;
        int tag;
        Timeout timeout;
        Clock::time_point deadline;
    };

    void queueRead(ReadKind kind, std::string_view delimiter, std::size_t length, Timeout timeout, int tag);
    void schedulePump();
    void pump();
    bool serveRead();
    bool serveFromBuffer(const ReadOperation &operation);
    bool serveToData(const ReadOperation &operation);
    void deliver(std::size_t length, int tag);
    bool receive();
    bool receiveStraight(const ReadOperation &operation);
    bool didReceive(ssize_t count, std::size_t asked);
    bool serveWrites();
    ssize_t sendBytes();
    void cork(bool on);
    ssize_t sendFileStretch();
    bool didSend(std::size_t count);
    void waitForSocket();
    void armTimer();
    void timerFired();
    void end(const std::string &reason);
    void linger();
    void drain();
    void close();

    asio::ip::tcp::socket m_socket;
    asio::steady_timer m_timer;
    std::weak_ptr<AsyncSocketDelegate> m_delegate;
    std::deque<ReadOperation> m_reads;
    std::deque<WriteOperation> m_writes;
    InputBuffer m_input;
    std::size_t m_scanned = 0; ///< how far the input is known to hold no delimiter
    Clock::time_point m_timerExpiry = Clock::time_point::max();
    bool m_readable = true;
    bool m_writable = true;
    bool m_corked = false; ///< the system holds back packets that are not full
    bool m_waitingToRead = false;
    bool m_waitingToWrite = false;
    bool m_pumping = false;
    bool m_pumpScheduled = false;
    bool m_endAfterWriting = false;
    bool m_ended = false;
};

} // namespace tomelet::http
