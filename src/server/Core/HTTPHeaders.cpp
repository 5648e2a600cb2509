// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/HTTPHeaders.h"

#include "server/Core/Text.h"

namespace tomelet::http {

const std::string *HTTPHeaders::find(std::string_view name) const
{
    for (const Field &field : m_fields)
        if (equalsIgnoringCase(field.first, name)) return &field.second;
    return nullptr;
}

std::string HTTPHeaders::value(std::string_view name) const
{
    const std::string *const found = find(name);
    return found ? *found : std::string();
}

void HTTPHeaders::set(std::string_view name, std::string value)
{
    for (Field &field : m_fields)
        if (equalsIgnoringCase(field.first, name)) {
            field.second = std::move(value);
            return;
        }
    m_fields.emplace_back(std::string(name), std::move(value));
}

} // namespace tomelet::http
