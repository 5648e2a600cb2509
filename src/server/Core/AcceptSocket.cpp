// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/AcceptSocket.h"

#include <asio/ip/v6_only.hpp>

#include <array>
#include <optional>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>

namespace tomelet::http {

using asio::ip::tcp;

namespace {

constexpr std::chrono::milliseconds pauseWithoutDescriptors{100};

std::optional<asio::ip::address> addressOfInterfaceNamed(const std::string &name)
{
    ifaddrs *all = nullptr;
    if (getifaddrs(&all) != 0) return std::nullopt;
    std::optional<asio::ip::address> found;
    for (const ifaddrs *one = all; one && !found; one = one->ifa_next) {
        if (!one->ifa_addr || one->ifa_addr->sa_family != AF_INET || name != one->ifa_name) continue;
        std::array<char, INET_ADDRSTRLEN> text{};
        const auto *const address = reinterpret_cast<const sockaddr_in *>(one->ifa_addr);
        if (inet_ntop(AF_INET, &address->sin_addr, text.data(), text.size()))
            found = asio::ip::make_address(text.data());
    }
    freeifaddrs(all);
    return found;
}

std::optional<asio::ip::address> addressOfInterface(const std::string &interface)
{
    if (interface.empty()) return asio::ip::address_v6::any();
    if (interface == "localhost" || interface == "loopback") return asio::ip::address_v4::loopback();
    std::error_code error;
    const auto address = asio::ip::make_address(interface, error);
    return error ? addressOfInterfaceNamed(interface) : address;
}

std::error_code listenOn(tcp::acceptor &acceptor, const tcp::endpoint &endpoint, bool bothFamilies)
{
    std::error_code error;
    acceptor.open(endpoint.protocol(), error);
    if (!error) acceptor.set_option(asio::socket_base::reuse_address(true), error);
    if (!error && bothFamilies) acceptor.set_option(asio::ip::v6_only(false), error);
    if (!error) acceptor.bind(endpoint, error);
    if (!error) acceptor.listen(asio::socket_base::max_listen_connections, error);
    std::error_code ignored;
    if (error) acceptor.close(ignored);
    return error;
}

} // namespace

AcceptSocket::AcceptSocket(asio::any_io_executor queue, NextQueue nextQueue, DidAccept didAccept)
    : m_acceptor(queue)
    , m_pause(queue)
    , m_nextQueue(std::move(nextQueue))
    , m_didAccept(std::move(didAccept))
{}

bool AcceptSocket::acceptOnInterface(const std::string &interface, std::uint16_t port, SocketError &error)
{
    const auto address = addressOfInterface(interface);
    if (!address) {
        error = {EADDRNOTAVAIL, "There is no network interface \"" + interface + "\""};
        return false;
    }
    std::error_code code = listenOn(m_acceptor, {*address, port}, interface.empty());
    // A machine without IPv6 still has all of IPv4.
    if (code == std::errc::address_family_not_supported && interface.empty())
        code = listenOn(m_acceptor, {tcp::v4(), port}, false);
    if (code) {
        error = {code.value(), code.message()};
        return false;
    }
    acceptNext();
    return true;
}

std::uint16_t AcceptSocket::localPort() const
{
    std::error_code error;
    const auto endpoint = m_acceptor.local_endpoint(error);
    return error ? 0 : endpoint.port();
}

void AcceptSocket::acceptNext()
{
    m_acceptor.async_accept(m_nextQueue(), [self = shared_from_this()](std::error_code error, tcp::socket socket) {
        if (!self->m_acceptor.is_open()) return;
        if (!error) {
            self->m_didAccept(std::move(socket));
            return self->acceptNext();
        }
        // Out of descriptors, as a rule: they come back when connections end.
        self->m_pause.expires_after(pauseWithoutDescriptors);
        self->m_pause.async_wait([self](std::error_code cancelled) {
            if (!cancelled && self->m_acceptor.is_open()) self->acceptNext();
        });
    });
}

void AcceptSocket::close()
{
    std::error_code ignored;
    m_acceptor.close(ignored);
    m_pause.cancel();
}

} // namespace tomelet::http
