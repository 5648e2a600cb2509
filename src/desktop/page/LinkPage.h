// SPDX-License-Identifier: GPL-3.0-or-later
// A page that follows no link itself: it tells where one leads that was clicked, and whether that is wanted in a tab of
// its own.
#pragma once

#include <QWebEnginePage>

#include <functional>

namespace tomelet::desktop {

/// Takes the address as it is written on the page.
using LinkFollower = std::function<void(const QString &address, bool inNewTab)>;

class LinkPage : public QWebEnginePage
{
public:
    LinkPage(QWebEngineProfile *profile, QObject *parent, LinkFollower follow);

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame) override;
    QWebEnginePage *createWindow(WebWindowType type) override;

private:
    void takeLink(const QUrl &url, bool inNewTab);

    LinkFollower m_follow;
};

} // namespace tomelet::desktop
