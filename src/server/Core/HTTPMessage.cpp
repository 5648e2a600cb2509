// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/HTTPMessage.h"

#include "server/Core/Text.h"

#include <algorithm>

namespace tomelet::http {

namespace {

constexpr std::string_view lineEnd = "\r\n";

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// RFC 9110, 5.6.2.
bool isTokenCharacter(char c)
{
    constexpr std::string_view marks = "!#$%&'*+-.^_`|~";
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || marks.find(c) != marks.npos;
}

bool isToken(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), isTokenCharacter);
}

bool isControl(char c)
{
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F;
}

bool isTarget(std::string_view text)
{
    return !text.empty() && std::none_of(text.begin(), text.end(), isControl);
}

bool isVersion(std::string_view text)
{
    if (!text.starts_with("HTTP/")) return false;
    const auto number = text.substr(5);
    const auto dot = number.find('.');
    const auto digits = [](std::string_view part) {
        return !part.empty() && std::all_of(part.begin(), part.end(), isDigit);
    };
    return dot != number.npos && digits(number.substr(0, dot)) && digits(number.substr(dot + 1));
}

bool isFieldValue(std::string_view text)
{
    return std::none_of(text.begin(), text.end(), [](char c) { return isControl(c) && c != '\t'; });
}

} // namespace

HTTPMessage HTTPMessage::requestWithMethod(std::string method, std::string url, std::string version)
{
    HTTPMessage message;
    message.m_state = State::Complete;
    message.m_method = std::move(method);
    message.m_url = std::move(url);
    message.m_version = std::move(version);
    return message;
}

HTTPMessage HTTPMessage::responseWithStatusCode(int status, std::string description, std::string version)
{
    HTTPMessage message;
    message.m_state = State::Complete;
    message.m_status = status;
    message.m_description = description.empty() ? std::string(statusDescription(status)) : std::move(description);
    message.m_version = std::move(version);
    return message;
}

bool HTTPMessage::appendData(std::string_view data)
{
    m_pending.append(data);
    std::string_view rest = m_pending;
    while (m_state != State::Complete) {
        const auto end = rest.find(lineEnd);
        if (end == rest.npos) break;
        if (!appendLine(rest.substr(0, end))) return false;
        rest.remove_prefix(end + lineEnd.size());
    }
    if (m_state == State::Complete) {
        m_body.append(rest);
        rest = {};
    }
    m_pending.erase(0, m_pending.size() - rest.size());
    return true;
}

bool HTTPMessage::appendLine(std::string_view line)
{
    if (m_state == State::StartLine) return line.empty() || parseRequestLine(line);
    if (!line.empty()) return parseField(line);
    m_state = State::Complete;
    return true;
}

bool HTTPMessage::parseRequestLine(std::string_view line)
{
    const auto first = line.find(' ');
    const auto second = first == line.npos ? line.npos : line.find(' ', first + 1);
    if (second == line.npos) return false;
    const auto method = line.substr(0, first);
    const auto url = line.substr(first + 1, second - first - 1);
    const auto version = line.substr(second + 1);
    if (!isToken(method) || !isTarget(url) || !isVersion(version)) return false;
    m_method = method;
    m_url = url;
    m_version = version;
    m_state = State::Fields;
    return true;
}

bool HTTPMessage::parseField(std::string_view line)
{
    const auto colon = line.find(':');
    if (colon == line.npos) return false;
    const auto name = line.substr(0, colon);
    const auto value = trimmed(line.substr(colon + 1));
    if (!isToken(name) || !isFieldValue(value)) return false;
    const std::string *const earlier = m_headers.find(name);
    if (!earlier) m_headers.set(name, std::string(value));
    else if (equalsIgnoringCase(name, "Content-Length")) return *earlier == value;
    else m_headers.set(name, *earlier + ", " + std::string(value));
    return true;
}

std::string HTTPMessage::messageData() const
{
    std::string data;
    data.reserve(512 + m_body.size());
    if (m_status > 0)
        data.append(m_version).append(" ").append(std::to_string(m_status)).append(" ").append(m_description);
    else data.append(m_method).append(" ").append(m_url).append(" ").append(m_version);
    data.append(lineEnd);
    for (const auto &[name, value] : m_headers) data.append(name).append(": ").append(value).append(lineEnd);
    data.append(lineEnd).append(m_body);
    return data;
}

std::string_view statusDescription(int status)
{
    static constexpr struct
    {
        int status;
        std::string_view text;
    } table[] = {
        {200, "OK"},
        {201, "Created"},
        {204, "No Content"},
        {206, "Partial Content"},
        {207, "Multi-Status"},
        {302, "Found"},
        {400, "Bad Request"},
        {401, "Unauthorized"},
        {403, "Forbidden"},
        {404, "Not Found"},
        {405, "Method Not Allowed"},
        {409, "Conflict"},
        {412, "Precondition Failed"},
        {500, "Internal Server Error"},
        {505, "HTTP Version Not Supported"},
    };
    for (const auto &row : table)
        if (row.status == status) return row.text;
    return "Unknown";
}

} // namespace tomelet::http
