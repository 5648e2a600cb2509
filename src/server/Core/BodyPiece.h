// SPDX-License-Identifier: GPL-3.0-or-later
// A piece of what is sent: bytes, or a stretch of an open file that goes to the socket without passing
// through the program's memory.
#pragma once

#include "server/Core/FileHandle.h"

#include <cstdint>
#include <memory>
#include <string>

namespace tomelet::http {

struct BodyPiece
{
    std::string bytes;                ///< used when there is no file
    std::shared_ptr<FileHandle> file; ///< kept open until the piece is sent
    std::uint64_t fileOffset = 0;
    std::size_t fileLength = 0;

    BodyPiece() = default;
    BodyPiece(std::string text)
        : bytes(std::move(text))
    {}
    BodyPiece(std::shared_ptr<FileHandle> handle, std::uint64_t offset, std::size_t length)
        : file(std::move(handle))
        , fileOffset(offset)
        , fileLength(length)
    {}

    [[nodiscard]] std::size_t size() const { return file ? fileLength : bytes.size(); }
};

} // namespace tomelet::http
