// SPDX-License-Identifier: GPL-3.0-or-later
// Tells the local network of a service (DNS-SD, RFC 6763) through the Avahi daemon.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace tomelet::http {

struct BonjourRecord
{
    std::string name;   ///< shown to people; "" stands for the host's name
    std::string type;   ///< "_http._tcp."
    std::string domain; ///< "local."
    std::uint16_t port = 0;
    std::map<std::string, std::string> txtRecord;
};

/// Publishes from its making to its end, on a thread of Avahi's own. Without a daemon it does nothing and
/// says nothing; a daemon that starts later gets the record then.
class BonjourService
{
public:
    explicit BonjourService(BonjourRecord record);
    BonjourService(const BonjourService &) = delete;
    BonjourService &operator=(const BonjourService &) = delete;
    ~BonjourService();

    /// The name under which the service is known, which may have got a number; "" while it is not published.
    [[nodiscard]] std::string publishedName() const;

private:
    class Publication;
    std::unique_ptr<Publication> m_publication;
};

} // namespace tomelet::http
