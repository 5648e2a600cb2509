// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/RequestPath.h"

#include "server/Core/Text.h"

#include <optional>
#include <vector>

namespace tomelet::http {

namespace {

// Cuts "scheme://authority" off a target in absolute form (RFC 9112, 3.2.2).
std::string_view withoutAuthority(std::string_view target)
{
    const auto mark = target.find("://");
    if (target.starts_with('/') || mark == target.npos || target.find_first_of("/?#") < mark) return target;
    const auto path = target.find_first_of("/?#", mark + 3);
    return path == target.npos ? std::string_view("/") : target.substr(path);
}

// The components that are left after "." and ".."; nothing when ".." climbs above the start.
std::optional<std::vector<std::string_view>> resolved(std::string_view path)
{
    std::vector<std::string_view> components;
    while (!path.empty()) {
        const auto slash = path.find('/');
        const auto component = path.substr(0, slash);
        path.remove_prefix(slash == path.npos ? path.size() : slash + 1);
        if (component.empty() || component == ".") continue;
        if (component != "..") components.push_back(component);
        else if (components.empty()) return std::nullopt;
        else components.pop_back();
    }
    return components;
}

} // namespace

RequestPath pathBelowRoot(std::string_view decoded, std::string_view root)
{
    if (decoded.find('\0') != decoded.npos || !isValidUTF8(decoded)) return {{}, PathFault::Malformed};
    const auto components = resolved(decoded);
    if (!components) return {{}, PathFault::OutsideRoot};
    std::string path(root == "/" ? std::string_view() : root);
    for (const std::string_view component : *components) path.append("/").append(component);
    if (path.empty()) path += '/';
    return {std::move(path), PathFault::None};
}

RequestPath pathForEscapedPath(std::string_view escaped, std::string_view root)
{
    const auto decoded = percentDecoded(escaped);
    return decoded ? pathBelowRoot(*decoded, root) : RequestPath{{}, PathFault::Malformed};
}

RequestPath pathForTarget(std::string_view target, std::string_view root)
{
    const auto path = withoutAuthority(target);
    return pathForEscapedPath(path.substr(0, path.find_first_of("?#")), root);
}

bool isInsideRoot(std::string_view path, std::string_view root)
{
    if (root == "/") return path.starts_with('/');
    return path.starts_with(root) && (path.size() == root.size() || path[root.size()] == '/');
}

std::string relativeToRoot(std::string_view path, std::string_view root)
{
    const std::size_t prefix = root == "/" ? 1 : root.size() + 1;
    return path.size() > prefix ? std::string(path.substr(prefix)) : std::string();
}

} // namespace tomelet::http
