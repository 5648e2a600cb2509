// SPDX-License-Identifier: GPL-3.0-or-later
// Fetches one page or file from the web, within bounds: by http and https alone, also behind redirections, without
// cookies and passwords, never more than so many bytes and never longer than so long.
#pragma once

#include "library/urls/UrlActions.h"

#include <QNetworkAccessManager>

#include <chrono>

class QNetworkReply;

namespace tomelet {

struct FetchLimits
{
    qint64 bytes = 256LL * 1024 * 1024;             ///< unpacked
    std::chrono::milliseconds silence{30'000};      ///< without a byte
    std::chrono::milliseconds whole{10 * 60'000LL}; ///< from the first to the last
};

class PageFetcher
{
public:
    explicit PageFetcher(FetchLimits limits = {});

    /// Calls `done` once, from the event loop; a failure has its reason in `error`. What is under way when the fetcher
    /// is destroyed is given up, and calls nothing.
    void fetch(const QUrl &address, UrlActionShell::Fetched done);

private:
    QNetworkAccessManager m_network;
    FetchLimits m_limits;
};

} // namespace tomelet
