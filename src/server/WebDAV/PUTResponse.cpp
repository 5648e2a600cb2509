// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/WebDAV/PUTResponse.h"

#include "server/Core/FileTransfer.h"
#include "server/Core/Log.h"
#include "server/Core/Text.h"

namespace tomelet::http {

namespace {

template <typename Store>
int statusOfStoring(const std::string &filePath, const HTTPHeaders &headers, Store store)
{
    if (headers.contains("Content-Range")) return 400;
    const bool replaces = itemExists(filePath);
    if (store()) return replaces ? 200 : 201;
    logLine("PUTResponse: failed writing " + printable(filePath));
    return 403;
}

} // namespace

PUTResponse::PUTResponse(const std::string &filePath, const HTTPHeaders &headers, const std::string &bodyData,
                         const std::string &scratchFolder)
    : HTTPErrorResponse(
          statusOfStoring(filePath, headers, [&] { return writeFileAtomically(scratchFolder, filePath, bodyData); }))
{}

PUTResponse::PUTResponse(const std::string &filePath, const HTTPHeaders &headers, TemporaryItem &bodyFile)
    : HTTPErrorResponse(statusOfStoring(filePath, headers, [&] { return bodyFile.moveIntoPlace(filePath); }))
{}

} // namespace tomelet::http
