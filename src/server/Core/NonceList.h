// SPDX-License-Identifier: GPL-3.0-or-later
// The nonces that the server handed out lately: a client may begin with one of these and no other.
#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <string>
#include <unordered_set>

namespace tomelet::http {

/// A nonce is known for 300 seconds from its making. The time is given by the caller and never runs
/// backwards. May be used from several threads.
class NonceList
{
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::seconds life{300};
    /// Requests without a password each cost a nonce; past this number the oldest goes, so that a flood of
    /// them cannot fill the memory. Clients whose nonce went are asked once more.
    static constexpr std::size_t capacity = 65536;

    /// Makes a nonce and remembers it.
    [[nodiscard]] std::string generateNonce(Time now);
    [[nodiscard]] bool hasRecentNonce(const std::string &nonce, Time now);

private:
    struct Entry
    {
        const std::string *nonce; ///< the set's own copy, which stays where it is
        Time expiry;
    };

    void forgetOldest();
    void forgetExpired(Time now);

    std::mutex m_mutex;
    std::unordered_set<std::string> m_nonces;
    std::deque<Entry> m_order;
};

/// The one list of the process.
NonceList &recentNonces();

} // namespace tomelet::http
