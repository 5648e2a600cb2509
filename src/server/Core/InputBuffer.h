// SPDX-License-Identifier: GPL-3.0-or-later
// Bytes that have been received and not yet been asked for. Grows only as far as a line may be long.
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string_view>

namespace tomelet::http {

class InputBuffer
{
public:
    [[nodiscard]] std::string_view view() const { return {m_bytes.get() + m_begin, m_end - m_begin}; }
    [[nodiscard]] std::size_t size() const { return m_end - m_begin; }

    /// Room for at least one more byte; its size goes to `room`. Bytes that are written there count after
    /// added().
    [[nodiscard]] char *space(std::size_t &room)
    {
        if (m_begin > 0 && m_end == m_capacity) moveToFront();
        if (m_end == m_capacity) grow();
        room = m_capacity - m_end;
        return m_bytes.get() + m_end;
    }
    void added(std::size_t count) { m_end += count; }
    void consume(std::size_t count)
    {
        m_begin += count;
        if (m_begin == m_end) m_begin = m_end = 0;
    }

private:
    static constexpr std::size_t firstCapacity = 4096;

    void moveToFront()
    {
        std::memmove(m_bytes.get(), m_bytes.get() + m_begin, size());
        m_end -= m_begin;
        m_begin = 0;
    }

    void grow()
    {
        const std::size_t capacity = m_capacity == 0 ? firstCapacity : 2 * m_capacity;
        std::unique_ptr<char[]> bytes(new char[capacity]);
        if (m_end > 0) std::memcpy(bytes.get(), m_bytes.get(), m_end);
        m_bytes = std::move(bytes);
        m_capacity = capacity;
    }

    std::unique_ptr<char[]> m_bytes;
    std::size_t m_capacity = 0;
    std::size_t m_begin = 0;
    std::size_t m_end = 0;
};

} // namespace tomelet::http
