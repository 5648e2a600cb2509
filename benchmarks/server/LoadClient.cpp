// SPDX-License-Identifier: GPL-3.0-or-later
//
// The one client that all servers are measured with: keep-alive requests on many connections from one thread,
// with or without digest authentication.
//
//   server_load_client requests HOST:PORT METHOD PATH CONNECTIONS SECONDS [USER:PASSWORD] [FIELD: VALUE]...
//       prints requests per second, errors, connections that the server closed, and the median and 99th
//       percentile of the answer times in microseconds
//   server_load_client put HOST:PORT PATH MEGABYTES REPEAT [USER:PASSWORD]
//   server_load_client get HOST:PORT PATH REPEAT [USER:PASSWORD]
//       print megabytes per second, the best of the repetitions
#include "server/Core/HTTPAuthenticationRequest.h"
#include "server/Core/HTTPHeaders.h"
#include "server/Core/Text.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace tomelet::http;
using Clock = std::chrono::steady_clock;

namespace {

struct Target
{
    std::string host; ///< "127.0.0.1:8080"
    std::string user;
    std::string password;
    std::string fields; ///< further header lines
};

[[noreturn]] void give_up(const char *what)
{
    std::perror(what);
    std::exit(1);
}

int connectTo(const std::string &host)
{
    const auto colon = host.find(':');
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::atoi(host.c_str() + colon + 1)));
    inet_pton(AF_INET, host.substr(0, colon).c_str(), &address.sin_addr);
    const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connect(connection, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0) give_up("connect");
    const int on = 1;
    setsockopt(connection, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    return connection;
}

std::string quotedField(const std::string &challenge, const std::string &name)
{
    const auto start = challenge.find(name + "=\"");
    if (start == challenge.npos) return {};
    const auto value = start + name.size() + 2;
    return challenge.substr(value, challenge.find('"', value) - value);
}

// One connection and the digest state that belongs to it.
struct Session
{
    explicit Session(const Target &to)
        : target(to)
        , socket(connectTo(to.host))
    {}
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;
    ~Session() { close(socket); }

    void reconnect()
    {
        close(socket);
        socket = connectTo(target.host);
        auth = {};
        input.clear();
    }

    std::string request(const std::string &method, const std::string &path, const std::string &more = {})
    {
        std::string text = method + " " + path + " HTTP/1.1\r\nHost: " + target.host + "\r\n" + target.fields + more;
        if (!auth.nonce.empty()) {
            char count[9];
            std::snprintf(count, sizeof count, "%08x", ++nc);
            auth.uri = path;
            auth.nc = count;
            text += "Authorization: Digest username=\"" + auth.username + "\", realm=\"" + auth.realm + "\", nonce=\"" +
                    auth.nonce + "\", uri=\"" + path + "\", algorithm=MD5, qop=auth, nc=" + auth.nc + ", cnonce=\"" +
                    auth.cnonce + "\", response=\"" + digestResponse(auth, auth.realm, target.password, method) +
                    "\"\r\n";
        }
        return text + "\r\n";
    }

    void challenge(const std::string &header)
    {
        auth.username = target.user;
        auth.realm = quotedField(header, "realm");
        auth.nonce = quotedField(header, "nonce");
        auth.qop = "auth";
        auth.cnonce = "0a4f113b";
        nc = 0;
    }

    const Target &target;
    int socket;
    HTTPAuthenticationRequest auth;
    unsigned nc = 0;
    std::string input;
    Clock::time_point asked;
};

struct Head
{
    int status = 0;
    std::size_t length = 0; ///< of the head
    std::size_t body = 0;
    bool chunked = false;
    std::string challenge;
};

// Reads the head at the front of the input; a length of 0 while it is not complete.
Head parseHead(const std::string &input)
{
    Head head;
    const auto end = input.find("\r\n\r\n");
    if (end == input.npos) return head;
    head.length = end + 4;
    head.status = std::atoi(input.c_str() + 9);
    for (std::size_t line = input.find("\r\n") + 2; line < end + 2; line = input.find("\r\n", line) + 2) {
        const std::string_view text(input.data() + line, input.find("\r\n", line) - line);
        const auto colon = text.find(':');
        const auto name = text.substr(0, colon);
        const std::string value(trimmed(text.substr(colon + 1)));
        if (equalsIgnoringCase(name, "Content-Length")) head.body = std::strtoul(value.c_str(), nullptr, 10);
        else if (equalsIgnoringCase(name, "WWW-Authenticate")) head.challenge = value;
        else if (equalsIgnoringCase(name, "Transfer-Encoding")) head.chunked = value == "chunked";
    }
    return head;
}

// The bytes of a whole chunked body at the front, 0 while its end has not come.
std::size_t chunkedLength(std::string_view input)
{
    std::size_t at = 0;
    while (true) {
        const auto line = input.find("\r\n", at);
        if (line == input.npos) return 0;
        const std::size_t size = std::strtoul(input.data() + at, nullptr, 16);
        at = line + 2 + size + 2;
        if (at > input.size()) return 0;
        if (size == 0) return at;
    }
}

bool sendAll(int socket, const char *bytes, std::size_t count)
{
    while (count > 0) {
        const ssize_t sent = send(socket, bytes, count, MSG_NOSIGNAL);
        if (sent <= 0) return false;
        bytes += sent;
        count -= static_cast<std::size_t>(sent);
    }
    return true;
}

// Takes one whole reply off the input; false while it is not complete.
bool takeReply(Session &session, Head &head)
{
    head = parseHead(session.input);
    if (head.length == 0) return false;
    std::size_t body = head.body;
    if (head.chunked) {
        body = chunkedLength(std::string_view(session.input).substr(head.length));
        if (body == 0) return false;
    }
    if (session.input.size() < head.length + body) return false;
    session.input.erase(0, head.length + body);
    return true;
}

Head ask(Session &session, const std::string &request)
{
    static std::vector<char> buffer(1 << 20);
    Head head;
    if (!sendAll(session.socket, request.data(), request.size())) give_up("send");
    while (!takeReply(session, head)) {
        const ssize_t count = recv(session.socket, buffer.data(), buffer.size(), 0);
        if (count <= 0) give_up("recv");
        session.input.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return head;
}

void authenticate(Session &session, const std::string &method, const std::string &path)
{
    if (!session.target.user.empty()) session.challenge(ask(session, session.request(method, path)).challenge);
}

// ---- Many small requests

int runRequests(const Target &target, const std::string &method, const std::string &path, int connections,
                double seconds)
{
    const int poll = epoll_create1(EPOLL_CLOEXEC);
    std::vector<std::unique_ptr<Session>> sessions;
    const auto next = [&](Session &session) {
        const std::string text = session.request(method, path);
        session.asked = Clock::now();
        if (!sendAll(session.socket, text.data(), text.size())) give_up("send");
    };
    const auto open = [&](Session &session) {
        authenticate(session, method, path);
        epoll_event event{};
        event.events = EPOLLIN;
        event.data.ptr = &session;
        epoll_ctl(poll, EPOLL_CTL_ADD, session.socket, &event);
    };
    for (int i = 0; i < connections; ++i) {
        sessions.push_back(std::make_unique<Session>(target));
        open(*sessions.back());
    }
    std::vector<float> times;
    std::vector<char> buffer(1 << 20);
    std::size_t errors = 0;
    std::size_t closed = 0;
    const auto start = Clock::now();
    const auto end = start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    for (auto &session : sessions) next(*session);
    while (Clock::now() < end) {
        epoll_event events[64];
        const int count = epoll_wait(poll, events, 64, 100);
        for (int i = 0; i < count; ++i) {
            auto &session = *static_cast<Session *>(events[i].data.ptr);
            const ssize_t got = recv(session.socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
            if (got <= 0) {
                ++closed;
                session.reconnect();
                open(session);
                next(session);
                continue;
            }
            session.input.append(buffer.data(), static_cast<std::size_t>(got));
            Head head;
            if (!takeReply(session, head)) continue;
            if (head.status == 401) session.challenge(head.challenge); // a nonce that grew too old
            else if (head.status >= 300) ++errors;
            else times.push_back(std::chrono::duration<float, std::micro>(Clock::now() - session.asked).count());
            next(session);
        }
    }
    const double elapsed = std::chrono::duration<double>(Clock::now() - start).count();
    std::sort(times.begin(), times.end());
    const auto at = [&times](double part) {
        return times.empty() ? 0.0F : times[static_cast<std::size_t>(part * static_cast<double>(times.size() - 1))];
    };
    std::printf("%.0f requests/s, %zu errors, %zu closed connections, median %.0f us, 99 %% within %.0f us\n",
                static_cast<double>(times.size()) / elapsed, errors, closed, at(0.5), at(0.99));
    return errors + closed == 0 ? 0 : 1;
}

// ---- One large body

double rate(std::size_t bytes, Clock::time_point start)
{
    return static_cast<double>(bytes) / 1e6 / std::chrono::duration<double>(Clock::now() - start).count();
}

int runPut(const Target &target, const std::string &path, std::size_t megabytes, int repeat)
{
    const std::size_t size = megabytes * 1000 * 1000;
    std::vector<char> block(1000 * 1000);
    for (std::size_t i = 0; i < block.size(); ++i) block[i] = static_cast<char>(i * 2654435761U >> 16);
    std::vector<double> rates;
    for (int i = 0; i < repeat; ++i) {
        Session session(target);
        authenticate(session, "GET", path);
        const auto start = Clock::now();
        const std::string head = session.request("PUT", path, "Content-Length: " + std::to_string(size) + "\r\n");
        if (!sendAll(session.socket, head.data(), head.size())) give_up("send");
        for (std::size_t sent = 0; sent < size; sent += block.size())
            if (!sendAll(session.socket, block.data(), block.size())) give_up("send");
        const Head reply = ask(session, {});
        if (reply.status >= 300) {
            std::fprintf(stderr, "status %d\n", reply.status);
            return 1;
        }
        rates.push_back(rate(size, start));
    }
    std::sort(rates.begin(), rates.end());
    std::printf("%.0f MB/s (median %.0f)\n", rates.back(), rates[rates.size() / 2]);
    return 0;
}

int runGet(const Target &target, const std::string &path, int repeat)
{
    static std::vector<char> buffer(1 << 20);
    std::vector<double> rates;
    for (int i = 0; i < repeat; ++i) {
        Session session(target);
        authenticate(session, "HEAD", path);
        const auto start = Clock::now();
        const std::string head = session.request("GET", path);
        if (!sendAll(session.socket, head.data(), head.size())) give_up("send");
        Head reply;
        while (reply.length == 0) {
            const ssize_t count = recv(session.socket, buffer.data(), buffer.size(), 0);
            if (count <= 0) give_up("recv");
            session.input.append(buffer.data(), static_cast<std::size_t>(count));
            reply = parseHead(session.input);
        }
        if (reply.status != 200) {
            std::fprintf(stderr, "status %d\n", reply.status);
            return 1;
        }
        for (std::size_t got = session.input.size() - reply.length; got < reply.body;) {
            const ssize_t count = recv(session.socket, buffer.data(), buffer.size(), 0);
            if (count <= 0) give_up("recv");
            got += static_cast<std::size_t>(count);
        }
        rates.push_back(rate(reply.body, start));
    }
    std::sort(rates.begin(), rates.end());
    std::printf("%.0f MB/s (median %.0f)\n", rates.back(), rates[rates.size() / 2]);
    return 0;
}

Target targetOf(int argc, char **argv, int from)
{
    Target target{argv[2], {}, {}, {}};
    for (int i = from; i < argc; ++i) {
        const std::string word = argv[i];
        const auto colon = word.find(':');
        if (word.find(": ") != word.npos) target.fields += word + "\r\n";
        else if (colon != word.npos) {
            target.user = word.substr(0, colon);
            target.password = word.substr(colon + 1);
        }
    }
    return target;
}

} // namespace

int main(int argc, char **argv)
{
    const std::string mode = argc > 1 ? argv[1] : "";
    if (mode == "requests" && argc >= 7)
        return runRequests(targetOf(argc, argv, 7), argv[3], argv[4], std::atoi(argv[5]), std::atof(argv[6]));
    if (mode == "put" && argc >= 6)
        return runPut(targetOf(argc, argv, 6), argv[3], static_cast<std::size_t>(std::atol(argv[4])),
                      std::atoi(argv[5]));
    if (mode == "get" && argc >= 5) return runGet(targetOf(argc, argv, 5), argv[3], std::atoi(argv[4]));
    std::fputs("usage: see the head of LoadClient.cpp\n", stderr);
    return 2;
}
