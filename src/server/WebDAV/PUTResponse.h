// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/Responses/HTTPErrorResponse.h"
#include "server/Core/TemporaryItem.h"

#include <string>

namespace tomelet::http {

/// Stores the body of a PUT and answers without one of its own: 201 for a new file, 200 for a replaced one,
/// 403 when that failed, 400 for a part of a file (Content-Range). The folder above is never made.
class PUTResponse : public HTTPErrorResponse
{
public:
    /// A body in memory; it passes through a temporary file in scratchFolder.
    PUTResponse(const std::string &filePath, const HTTPHeaders &headers, const std::string &bodyData,
                const std::string &scratchFolder);
    /// A body that came into a temporary file, which is moved into place.
    PUTResponse(const std::string &filePath, const HTTPHeaders &headers, TemporaryItem &bodyFile);
};

} // namespace tomelet::http
