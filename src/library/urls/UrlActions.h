// SPDX-License-Identifier: GPL-3.0-or-later
// Carrying out URLs of the scheme "tomelet". Whoever calls this does so for a person: a page that only shows such a URL
// never gets here.
#pragma once

#include "library/urls/Grab.h"

#include <QString>

#include <functional>

namespace tomelet {

/// What the actions need of windows and of the network.
class UrlActionShell
{
public:
    using Fetched = std::function<void(const FetchedPage &)>;

    virtual ~UrlActionShell() = default;
    /// Fetches the address and calls `done` once, now or later, on the thread of the call.
    virtual void fetch(const QUrl &address, Fetched done) = 0;
    /// To the front with the window of its own in which the document (its path with its anchor) is shown already; false
    /// where there is none.
    virtual bool bringToFront(const QString &path) = 0;
    virtual void showAlert(const QString &title, const QString &text) = 0;
    /// A document was made of a text or fetched.
    virtual void noteAdded(const QString &) {}
    /// Called on any thread.
    virtual void pageImported(const QString &path) = 0;
    /// Nothing came of the action; what is said is in the log already. Called on any thread.
    virtual void actionFailed(const QString &) {}
};

/// Does what the URL says. Items are shown by posting `TMLTShowItemAtPathNotification`, searches by
/// `TMLTNewBookSelectedNotification` and `TMStartSpotlightSearchNotification`. The shell lives until all is fetched.
void handleTomeletURL(const QString &url, UrlActionShell &shell);

} // namespace tomelet
