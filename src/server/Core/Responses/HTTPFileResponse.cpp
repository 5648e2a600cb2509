// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/Responses/HTTPFileResponse.h"

#include "server/Core/Log.h"
#include "server/Core/Mime/MimeTypes.h"
#include "server/Core/Text.h"

#include <algorithm>

#include <fcntl.h>
#include <sys/stat.h>

namespace tomelet::http {

namespace {

// A small piece leaves together with its header in one packet; a larger one goes from the file to the socket.
constexpr std::size_t memoryPiece = 32 * 1024;

// Not blocking: the open of a pipe that took the file's place in the meantime must not wait for a writer.
FileHandle openRegularFile(const std::string &path)
{
    FileHandle file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status
    {};
    if (file.isOpen() && (fstat(file.descriptor(), &status) != 0 || !S_ISREG(status.st_mode))) file.close();
    return file;
}

} // namespace

std::optional<std::uint64_t> sizeOfServedFile(const std::string &path)
{
    struct stat status
    {};
    if (stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode)) return static_cast<std::uint64_t>(status.st_size);
    logLine("HTTPFileResponse: no attributes of a file at " + printable(path));
    return std::nullopt;
}

std::shared_ptr<HTTPFileResponse> HTTPFileResponse::withFilePath(const std::string &path,
                                                                 std::weak_ptr<HTTPResponseOwner> owner)
{
    const auto size = sizeOfServedFile(path);
    return size ? std::make_shared<HTTPFileResponse>(path, *size, std::move(owner)) : nullptr;
}

HTTPFileResponse::HTTPFileResponse(std::string path, std::uint64_t size, std::weak_ptr<HTTPResponseOwner> owner)
    : m_path(std::move(path))
    , m_size(size)
    , m_owner(std::move(owner))
{}

void HTTPFileResponse::setOffset(std::uint64_t offset)
{
    if (openFileIfNeeded()) m_offset = offset;
}

BodyPiece HTTPFileResponse::readDataOfLength(std::size_t length)
{
    if (isDone() || !openFileIfNeeded()) return {};
    length = static_cast<std::size_t>(std::min<std::uint64_t>(length, m_size - m_offset));
    if (length <= memoryPiece) return readIntoMemory(length);
    BodyPiece piece(m_file, m_offset, length);
    m_offset += length;
    return piece;
}

BodyPiece HTTPFileResponse::readIntoMemory(std::size_t length)
{
    std::string bytes(length, '\0');
    const ssize_t count = pread(m_file->descriptor(), bytes.data(), length, static_cast<off_t>(m_offset));
    if (count != static_cast<ssize_t>(length)) {
        abort();
        return {};
    }
    m_offset += length;
    return BodyPiece(std::move(bytes));
}

HTTPHeaders HTTPFileResponse::httpHeaders()
{
    HTTPHeaders headers;
    const auto type = mimeTypeForPath(m_path);
    if (!type.empty()) headers.set("Content-Type", std::string(type));
    return headers;
}

bool HTTPFileResponse::openFileIfNeeded()
{
    if (m_file) return true;
    if (m_aborted) return false;
    FileHandle file = openRegularFile(m_path);
    if (!file.isOpen()) {
        abort();
        return false;
    }
    m_file = std::make_shared<FileHandle>(std::move(file));
    return true;
}

void HTTPFileResponse::abort()
{
    if (m_aborted) return;
    m_aborted = true;
    logLine("HTTPFileResponse: cannot read " + printable(m_path));
    if (const auto owner = m_owner.lock()) owner->responseDidAbort(shared_from_this());
}

} // namespace tomelet::http
