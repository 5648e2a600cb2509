// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/HTTPResponse.h"

#include <optional>
#include <string>

namespace tomelet::http {

/// Serves a regular file, of the size that it had when the response was made. The file is opened at the first
/// read.
class HTTPFileResponse : public HTTPResponse, public std::enable_shared_from_this<HTTPFileResponse>
{
public:
    /// Null, with a log line, when the path names no readable regular file.
    static std::shared_ptr<HTTPFileResponse> withFilePath(const std::string &path,
                                                          std::weak_ptr<HTTPResponseOwner> owner);

    HTTPFileResponse(std::string path, std::uint64_t size, std::weak_ptr<HTTPResponseOwner> owner);

    std::uint64_t contentLength() override { return m_size; }
    std::uint64_t offset() override { return m_offset; }
    void setOffset(std::uint64_t offset) override;
    BodyPiece readDataOfLength(std::size_t length) override;
    bool isDone() override { return m_offset >= m_size; }
    HTTPHeaders httpHeaders() override;
    void connectionDidClose() override { m_file.reset(); }

protected:
    /// Opens the file if it is not open; false, after responseDidAbort, when that fails.
    bool openFileIfNeeded();
    void abort();

    const std::string m_path;
    const std::uint64_t m_size;
    const std::weak_ptr<HTTPResponseOwner> m_owner;
    std::shared_ptr<FileHandle> m_file;
    std::uint64_t m_offset = 0;

private:
    BodyPiece readIntoMemory(std::size_t length);

    bool m_aborted = false;
};

/// The size of a regular file; nothing, with a log line, for anything else.
[[nodiscard]] std::optional<std::uint64_t> sizeOfServedFile(const std::string &path);

} // namespace tomelet::http
