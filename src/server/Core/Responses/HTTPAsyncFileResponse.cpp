// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/Responses/HTTPAsyncFileResponse.h"

#include <asio/post.hpp>

#include <algorithm>

#include <fcntl.h>

namespace tomelet::http {

namespace {

constexpr std::uint64_t largestWindow = 64 * 1024 * 1024;

} // namespace

std::shared_ptr<HTTPAsyncFileResponse> HTTPAsyncFileResponse::withFilePath(const std::string &path,
                                                                           std::weak_ptr<HTTPResponseOwner> owner,
                                                                           asio::any_io_executor fileQueue,
                                                                           asio::any_io_executor ownQueue)
{
    const auto size = sizeOfServedFile(path);
    if (!size) return nullptr;
    return std::make_shared<HTTPAsyncFileResponse>(path, *size, std::move(owner), std::move(fileQueue),
                                                   std::move(ownQueue));
}

HTTPAsyncFileResponse::HTTPAsyncFileResponse(std::string path, std::uint64_t size,
                                             std::weak_ptr<HTTPResponseOwner> owner, asio::any_io_executor fileQueue,
                                             asio::any_io_executor ownQueue)
    : HTTPFileResponse(std::move(path), size, std::move(owner))
    , m_fileQueue(std::move(fileQueue))
    , m_ownQueue(std::move(ownQueue))
{}

void HTTPAsyncFileResponse::setOffset(std::uint64_t offset)
{
    HTTPFileResponse::setOffset(offset);
    if (offset <= m_fetchedTo && m_fetchedTo - offset <= m_window) return;
    m_fetchedTo = offset;
    m_window = firstWindow;
}

BodyPiece HTTPAsyncFileResponse::readDataOfLength(std::size_t length)
{
    const std::uint64_t atHand = m_fetchedTo - std::min(m_offset, m_fetchedTo);
    if (atHand < m_window / 2) fetchAhead();
    if (atHand == 0) {
        m_starved = !isDone();
        return {};
    }
    return HTTPFileResponse::readDataOfLength(static_cast<std::size_t>(std::min<std::uint64_t>(length, atHand)));
}

bool HTTPAsyncFileResponse::delayResponseHeaders()
{
    if (m_hasData || isDone()) return false;
    m_starved = true;
    fetchAhead();
    return true;
}

void HTTPAsyncFileResponse::fetchAhead()
{
    if (m_fetching || m_fetchedTo >= m_size || !openFileIfNeeded()) return;
    m_fetching = true;
    const std::uint64_t from = m_fetchedTo;
    const std::uint64_t to = std::min(from + m_window, m_size);
    m_window = std::min(2 * m_window, largestWindow);
    const auto self = std::static_pointer_cast<HTTPAsyncFileResponse>(shared_from_this());
    asio::post(m_fileQueue, [self, file = m_file, from, to] {
        // A file system without read-ahead costs waiting later and nothing else.
        (void)::readahead(file->descriptor(), static_cast<off64_t>(from), to - from);
        asio::post(self->m_ownQueue, [self, from, to] { self->didFetch(from, to); });
    });
}

void HTTPAsyncFileResponse::didFetch(std::uint64_t from, std::uint64_t to)
{
    m_fetching = false;
    m_hasData = true;
    if (m_fetchedTo == from) m_fetchedTo = to; // else the offset was moved meanwhile, and what is needed with it
    if (!m_starved) return;
    m_starved = false;
    if (const auto owner = m_owner.lock()) owner->responseHasAvailableData(shared_from_this());
}

} // namespace tomelet::http
