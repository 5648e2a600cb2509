// SPDX-License-Identifier: GPL-3.0-or-later
// The XML that clients send (RFC 4918, 14). Names are matched without their namespace, broken documents are
// read as far as they go, nothing is fetched and no entity is expanded.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tomelet::http {

/// Properties of a PROPFIND, as bits of one number.
enum DAVProperty : unsigned {
    ResourceType = 1,
    CreationDate = 2,
    LastModified = 4,
    ContentLength = 8,
    AllProperties = 15
};

/// The properties that a body selects by a `prop` in its `propfind`; all of them when it selects none that is
/// known.
[[nodiscard]] unsigned selectedProperties(std::string_view body);

struct LockInfo
{
    std::string scope; ///< "exclusive" or whatever else stands first in `lockscope`
    std::string type;
    std::string owner; ///< the text of the owner's `href`
};

/// What a `lockinfo` asks for; nothing for a body that is none.
[[nodiscard]] std::optional<LockInfo> parseLockInfo(std::string_view body);

} // namespace tomelet::http
