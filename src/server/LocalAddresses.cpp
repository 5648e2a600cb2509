// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/LocalAddresses.h"

#include <QSysInfo>

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <string_view>

namespace tomelet {

namespace {

bool isNetworkCard(std::string_view name)
{
    return name.starts_with("en") || name.starts_with("eth") || name.starts_with("wl");
}

} // namespace

QString localHostName()
{
    return QSysInfo::machineHostName().section(u'.', 0, 0) + QStringLiteral(".local");
}

QStringList localIPv4Addresses()
{
    ifaddrs *all = nullptr;
    if (getifaddrs(&all) != 0) return {};
    QStringList addresses;
    for (const ifaddrs *one = all; one; one = one->ifa_next) {
        if (!one->ifa_addr || one->ifa_addr->sa_family != AF_INET || !isNetworkCard(one->ifa_name)) continue;
        char text[INET_ADDRSTRLEN] = {};
        const auto *const address = reinterpret_cast<const sockaddr_in *>(one->ifa_addr);
        if (inet_ntop(AF_INET, &address->sin_addr, text, sizeof text)) addresses += QString::fromLatin1(text);
    }
    freeifaddrs(all);
    return addresses;
}

} // namespace tomelet
