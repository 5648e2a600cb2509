// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/NonceList.h"

#include "server/Core/UUID.h"

namespace tomelet::http {

std::string NonceList::generateNonce(Time now)
{
    std::string nonce = makeUUID();
    const std::lock_guard lock(m_mutex);
    forgetExpired(now);
    if (m_order.size() >= capacity) forgetOldest();
    const auto [position, added] = m_nonces.insert(nonce);
    if (added) m_order.push_back({&*position, now + life});
    return nonce;
}

bool NonceList::hasRecentNonce(const std::string &nonce, Time now)
{
    const std::lock_guard lock(m_mutex);
    forgetExpired(now);
    return m_nonces.count(nonce) > 0;
}

void NonceList::forgetOldest()
{
    m_nonces.erase(m_nonces.find(*m_order.front().nonce));
    m_order.pop_front();
}

void NonceList::forgetExpired(Time now)
{
    while (!m_order.empty() && m_order.front().expiry <= now) forgetOldest();
}

NonceList &recentNonces()
{
    static NonceList list;
    return list;
}

} // namespace tomelet::http
