// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/Responses/HTTPFileResponse.h"

#include <asio/any_io_executor.hpp>

namespace tomelet::http {

/// Serves a large file without ever waiting for the disk on the connection's queue: stretches of the file are
/// brought into the system's file cache on another thread, and only what is there is handed out.
class HTTPAsyncFileResponse : public HTTPFileResponse
{
public:
    /// As HTTPFileResponse::withFilePath. Reading ahead happens on fileQueue, results arrive on ownQueue.
    static std::shared_ptr<HTTPAsyncFileResponse> withFilePath(const std::string &path,
                                                               std::weak_ptr<HTTPResponseOwner> owner,
                                                               asio::any_io_executor fileQueue,
                                                               asio::any_io_executor ownQueue);

    HTTPAsyncFileResponse(std::string path, std::uint64_t size, std::weak_ptr<HTTPResponseOwner> owner,
                          asio::any_io_executor fileQueue, asio::any_io_executor ownQueue);

    void setOffset(std::uint64_t offset) override;
    BodyPiece readDataOfLength(std::size_t length) override;
    /// True until the first stretch is there; asking begins to fetch it.
    bool delayResponseHeaders() override;

private:
    static constexpr std::uint64_t firstWindow = 2 * 1024 * 1024;

    void fetchAhead();
    void didFetch(std::uint64_t from, std::uint64_t to);

    asio::any_io_executor m_fileQueue;
    asio::any_io_executor m_ownQueue;
    std::uint64_t m_window = firstWindow; ///< how much is asked for at once; it grows, so that it is rarely waited for
    std::uint64_t m_fetchedTo = 0;        ///< from the offset up to here the file is at hand
    bool m_fetching = false;
    bool m_hasData = false; ///< a first stretch has come
    bool m_starved = false; ///< a read found nothing and waits for a call back
};

} // namespace tomelet::http
