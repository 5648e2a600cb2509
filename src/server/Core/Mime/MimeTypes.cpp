// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/Mime/MimeTypes.h"

#include "server/Core/Text.h"

namespace tomelet::http {

std::string_view mimeTypeForPath(std::string_view path)
{
    static constexpr struct
    {
        std::string_view extension;
        std::string_view type;
    } table[] = {
        {"html", "text/html"},         {"htm", "text/html"},       {"md", "text/markdown"},
        {"markdown", "text/markdown"}, {"txt", "text/plain"},      {"css", "text/css"},
        {"csv", "text/csv"},           {"js", "text/javascript"},  {"xml", "application/xml"},
        {"json", "application/json"},  {"pdf", "application/pdf"}, {"epub", "application/epub+zip"},
        {"zip", "application/zip"},    {"png", "image/png"},       {"jpg", "image/jpeg"},
        {"jpeg", "image/jpeg"},        {"gif", "image/gif"},       {"svg", "image/svg+xml"},
        {"webp", "image/webp"},        {"tif", "image/tiff"},      {"tiff", "image/tiff"},
        {"mp3", "audio/mpeg"},         {"m4a", "audio/mp4"},       {"ogg", "audio/ogg"},
        {"mp4", "video/mp4"},          {"webm", "video/webm"},     {"eml", "message/rfc822"},
    };
    const auto dot = path.find_last_of("./");
    if (dot == path.npos || path[dot] == '/') return {};
    const auto extension = path.substr(dot + 1);
    for (const auto &row : table)
        if (equalsIgnoringCase(row.extension, extension)) return row.type;
    return {};
}

} // namespace tomelet::http
