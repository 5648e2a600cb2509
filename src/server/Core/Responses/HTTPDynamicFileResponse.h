// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/Responses/HTTPFileResponse.h"

#include <map>

namespace tomelet::http {

/// Serves a text file as a chunked body in which each known key between two separators ("%%KEY%%") is
/// replaced while the file is read. What stands between separators and is no known key stays as it is.
class HTTPDynamicFileResponse : public HTTPFileResponse
{
public:
    using Replacements = std::map<std::string, std::string>;

    static std::shared_ptr<HTTPDynamicFileResponse> withFilePath(const std::string &path,
                                                                 std::weak_ptr<HTTPResponseOwner> owner,
                                                                 std::string separator, Replacements replacements);

    HTTPDynamicFileResponse(std::string path, std::uint64_t size, std::weak_ptr<HTTPResponseOwner> owner,
                            std::string separator, Replacements replacements);

    std::uint64_t contentLength() override { return 0; }
    bool isChunked() override { return true; }
    bool isDone() override { return m_atEnd && m_text.empty() && m_ready.empty(); }
    BodyPiece readDataOfLength(std::size_t length) override;

private:
    void readMore();
    void replaceKeys();
    void release(std::size_t count);

    const std::string m_separator;
    const Replacements m_replacements;
    std::size_t m_longestKey = 0;
    std::string m_text;  ///< read and not yet searched
    std::string m_ready; ///< searched and not yet handed out
    bool m_atEnd = false;
};

} // namespace tomelet::http
