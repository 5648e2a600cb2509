// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/Responses/HTTPDynamicFileResponse.h"

#include <algorithm>

namespace tomelet::http {

namespace {

constexpr std::size_t readSize = 32 * 1024; ///< within what the file response hands out as bytes

} // namespace

std::shared_ptr<HTTPDynamicFileResponse> HTTPDynamicFileResponse::withFilePath(const std::string &path,
                                                                               std::weak_ptr<HTTPResponseOwner> owner,
                                                                               std::string separator,
                                                                               Replacements replacements)
{
    const auto size = sizeOfServedFile(path);
    if (!size) return nullptr;
    return std::make_shared<HTTPDynamicFileResponse>(path, *size, std::move(owner), std::move(separator),
                                                     std::move(replacements));
}

HTTPDynamicFileResponse::HTTPDynamicFileResponse(std::string path, std::uint64_t size,
                                                 std::weak_ptr<HTTPResponseOwner> owner, std::string separator,
                                                 Replacements replacements)
    : HTTPFileResponse(std::move(path), size, std::move(owner))
    , m_separator(std::move(separator))
    , m_replacements(std::move(replacements))
    , m_atEnd(size == 0)
{
    for (const auto &[key, value] : m_replacements) m_longestKey = std::max(m_longestKey, key.size());
}

BodyPiece HTTPDynamicFileResponse::readDataOfLength(std::size_t length)
{
    while (m_ready.size() < length && !m_atEnd) {
        const std::size_t before = m_text.size();
        readMore();
        if (!m_atEnd && m_text.size() == before) return {}; // reading failed, and the connection knows
        replaceKeys();
    }
    std::string piece = m_ready.substr(0, length);
    m_ready.erase(0, piece.size());
    return BodyPiece(std::move(piece));
}

void HTTPDynamicFileResponse::readMore()
{
    m_text += HTTPFileResponse::readDataOfLength(readSize).bytes;
    m_atEnd = HTTPFileResponse::isDone();
}

// Moves from m_text to m_ready all that later bytes cannot change: a separator may still be cut in two, and
// an opening one may still find its closing one for as long as the longest key allows.
void HTTPDynamicFileResponse::replaceKeys()
{
    while (true) {
        const auto open = m_text.find(m_separator);
        if (open == m_text.npos) {
            const std::size_t held = m_atEnd ? 0 : std::min(m_text.size(), m_separator.size() - 1);
            return release(m_text.size() - held);
        }
        release(open);
        const auto close = m_text.find(m_separator, m_separator.size());
        const std::size_t needed = 2 * m_separator.size() + m_longestKey;
        if (close == m_text.npos && !m_atEnd && m_text.size() < needed) return;
        const auto key = close == m_text.npos
                             ? m_replacements.end()
                             : m_replacements.find(m_text.substr(m_separator.size(), close - m_separator.size()));
        if (key == m_replacements.end()) {
            release(m_separator.size());
            continue;
        }
        m_ready += key->second;
        m_text.erase(0, close + m_separator.size());
    }
}

void HTTPDynamicFileResponse::release(std::size_t count)
{
    m_ready.append(m_text, 0, count);
    m_text.erase(0, count);
}

} // namespace tomelet::http
