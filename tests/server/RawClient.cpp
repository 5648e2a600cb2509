// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/server/RawClient.h"

#include "server/Core/HTTPAuthenticationRequest.h"
#include "server/Core/Text.h"

#include <cstdio>
#include <cstdlib>

#include <arpa/inet.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace tomelet::test {

namespace {

constexpr const char *testRealm = "Tomelet@tomelet.local";
constexpr int patience = 10000;

} // namespace

RawClient::RawClient(std::uint16_t port)
    : m_socket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int on = 1;
    setsockopt(m_socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    if (connect(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) std::perror("connect");
}

RawClient::~RawClient()
{
    close(m_socket);
}

void RawClient::send(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t count = ::send(m_socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) return;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void RawClient::sendByByte(std::string_view bytes)
{
    for (const char byte : bytes) send({&byte, 1});
}

bool RawClient::fill()
{
    pollfd ready{m_socket, POLLIN, 0};
    if (poll(&ready, 1, patience) <= 0) return false;
    char buffer[65536];
    const ssize_t count = recv(m_socket, buffer, sizeof buffer, 0);
    if (count > 0) m_input.append(buffer, static_cast<std::size_t>(count));
    return count > 0;
}

std::string RawClient::takeLine()
{
    std::size_t end = 0;
    while ((end = m_input.find("\r\n")) == m_input.npos)
        if (!fill()) return {};
    const std::string line = m_input.substr(0, end);
    m_input.erase(0, end + 2);
    return line;
}

std::string RawClient::take(std::size_t count)
{
    while (m_input.size() < count)
        if (!fill()) break;
    std::string bytes = m_input.substr(0, count);
    m_input.erase(0, bytes.size());
    return bytes;
}

std::string RawClient::takeChunks()
{
    std::string body;
    while (const std::size_t size = std::strtoul(takeLine().c_str(), nullptr, 16)) {
        body += take(size);
        takeLine();
    }
    takeLine();
    return body;
}

Reply RawClient::receive(bool withoutBody)
{
    Reply reply;
    const std::string start = takeLine();
    if (!start.starts_with("HTTP/1.1 ")) return reply;
    reply.status = std::atoi(start.c_str() + 9);
    for (std::string line = takeLine(); !line.empty(); line = takeLine()) {
        const auto colon = line.find(": ");
        reply.headers.set(line.substr(0, colon), line.substr(colon + 2));
    }
    if (reply.status == 100) return receive(withoutBody);
    if (withoutBody) return reply;
    if (reply.header("Transfer-Encoding") == "chunked") reply.body = takeChunks();
    else reply.body = take(std::strtoul(reply.header("Content-Length").c_str(), nullptr, 10));
    return reply;
}

bool RawClient::receiveEnd(std::string &bytes)
{
    while (fill()) {
    }
    bytes = std::move(m_input);
    char byte = 0;
    return recv(m_socket, &byte, 1, MSG_DONTWAIT) == 0;
}

bool RawClient::isDropped()
{
    std::string bytes;
    return receiveEnd(bytes) && bytes.empty();
}

void RawClient::abort()
{
    const linger reset{1, 0};
    setsockopt(m_socket, SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    close(m_socket);
    m_socket = -1;
}

std::string RawClient::authorized(const std::string &method, const std::string &uri, const std::string &fields,
                                  const std::string &body)
{
    if (nonce.empty()) {
        send("GET / HTTP/1.1\r\nHost: test\r\n\r\n");
        nonce = nonceOf(receive());
    }
    char count[9];
    std::snprintf(count, sizeof count, "%08x", ++nc);
    std::string text = method + " " + uri +
                       " HTTP/1.1\r\nHost: test\r\nAuthorization: " + digestHeader(method, uri, nonce, count) + "\r\n" +
                       fields;
    if (!body.empty() || method == "PUT") text += "Content-Length: " + std::to_string(body.size()) + "\r\n";
    return text + "\r\n" + body;
}

Reply RawClient::request(const std::string &method, const std::string &uri, const std::string &fields,
                         const std::string &body)
{
    send(authorized(method, uri, fields, body));
    return receive(method == "HEAD");
}

std::string digestHeader(const std::string &method, const std::string &uri, const std::string &nonce,
                         const std::string &nc, const std::string &password)
{
    http::HTTPAuthenticationRequest auth;
    auth.username = "Tomelet";
    auth.nonce = nonce;
    auth.uri = uri;
    auth.qop = "auth";
    auth.nc = nc;
    auth.cnonce = "0a4f113b";
    // cnonce stands first: a reader that looks for "nonce=" anywhere takes the wrong one.
    return "Digest username=\"Tomelet\", cnonce=\"" + auth.cnonce + "\", realm=\"" + testRealm + "\", nonce=\"" +
           nonce + "\", uri=\"" + uri + "\", qop=auth, nc=" + nc + ", response=\"" +
           http::digestResponse(auth, testRealm, password, method) + "\"";
}

std::string nonceOf(const Reply &reply)
{
    const std::string challenge = reply.header("WWW-Authenticate");
    const auto start = challenge.find("nonce=\"");
    return start == challenge.npos ? std::string() : challenge.substr(start + 7, challenge.size() - start - 8);
}

} // namespace tomelet::test
