// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/Core/Responses/HTTPErrorResponse.h"

#include <string>

namespace tomelet::http {

/// Removes a file, or a folder with all that is in it; a symbolic link goes without what it names. 200 when
/// that worked, 404 when it failed: a missing item cannot be removed, and the root never is.
class DELETEResponse : public HTTPErrorResponse
{
public:
    DELETEResponse(const std::string &filePath, const std::string &rootPath);
};

} // namespace tomelet::http
