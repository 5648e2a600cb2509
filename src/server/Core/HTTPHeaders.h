// SPDX-License-Identifier: GPL-3.0-or-later
// The header fields of a message, in their order, found without regard to case.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tomelet::http {

class HTTPHeaders
{
public:
    using Field = std::pair<std::string, std::string>;

    /// The value, or null when there is no such field; valid until the headers change.
    [[nodiscard]] const std::string *find(std::string_view name) const;
    /// The value, or "" when there is no such field.
    [[nodiscard]] std::string value(std::string_view name) const;
    [[nodiscard]] bool contains(std::string_view name) const { return find(name) != nullptr; }
    /// Replaces the value of a field, or adds the field at the end.
    void set(std::string_view name, std::string value);

    [[nodiscard]] auto begin() const { return m_fields.begin(); }
    [[nodiscard]] auto end() const { return m_fields.end(); }

private:
    std::vector<Field> m_fields;
};

} // namespace tomelet::http
