// SPDX-License-Identifier: GPL-3.0-or-later
// A file descriptor that closes itself.
#pragma once

#include <utility>

#include <unistd.h>

namespace tomelet::http {

/// Owns one descriptor; -1 stands for none.
class FileHandle
{
public:
    FileHandle() = default;
    explicit FileHandle(int descriptor)
        : m_descriptor(descriptor)
    {}
    FileHandle(FileHandle &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {}
    FileHandle &operator=(FileHandle &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileHandle() { close(); }

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int descriptor() const { return m_descriptor; }
    void close()
    {
        if (isOpen()) ::close(std::exchange(m_descriptor, -1));
    }

private:
    int m_descriptor = -1;
};

} // namespace tomelet::http
