// SPDX-License-Identifier: GPL-3.0-or-later
// From the target of a request to a path below the root folder: the one place that limits what can be
// reached.
#pragma once

#include <string>
#include <string_view>

namespace tomelet::http {

/// What was wrong with a target.
enum class PathFault { None, Malformed, OutsideRoot };

struct RequestPath
{
    std::string path; ///< absolute, without "." and "..", without a "/" at the end; empty with a fault
    PathFault fault = PathFault::None;
};

/// Maps a request target ("/a%20b?x", "http://host/a", "*") to a path below the root, an absolute path
/// without a "/" at its end ("/" itself excepted). Query and fragment are cut off, escapes decoded once, "."
/// and ".." resolved afterwards and by the text alone, doubled slashes joined. A path that leaves the root at
/// any point, even to come back, is outside. Malformed: bad escapes, a NUL byte, bytes that are no UTF-8.
/// Symbolic links are not looked at.
[[nodiscard]] RequestPath pathForTarget(std::string_view target, std::string_view root);

/// As pathForTarget, of a path that is still escaped but has neither host nor query.
[[nodiscard]] RequestPath pathForEscapedPath(std::string_view escaped, std::string_view root);

/// The last step of both: a decoded path, relative or with a "/" in front, on to the root.
[[nodiscard]] RequestPath pathBelowRoot(std::string_view decoded, std::string_view root);

/// True when the path is the root or lies below it, compared component by component.
[[nodiscard]] bool isInsideRoot(std::string_view path, std::string_view root);

/// The path relative to the root: "" for the root itself. The path must lie inside.
[[nodiscard]] std::string relativeToRoot(std::string_view path, std::string_view root);

} // namespace tomelet::http
