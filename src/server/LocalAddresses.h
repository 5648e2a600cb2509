// SPDX-License-Identifier: GPL-3.0-or-later
// Under which addresses other machines reach this one.
#pragma once

#include <QString>
#include <QStringList>

namespace tomelet {

/// The machine's name in the local network: its first label with ".local" behind it.
[[nodiscard]] QString localHostName();
/// The IPv4 addresses of all network cards, wired and wireless ("en...", "eth...", "wl..."); not the
/// loopback's and not those of bridges and tunnels.
[[nodiscard]] QStringList localIPv4Addresses();

} // namespace tomelet
