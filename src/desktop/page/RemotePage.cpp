// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/RemotePage.h"

#include "desktop/page/PageProfile.h"

#include <QUrl>

namespace tomelet::desktop {

static bool isOfWeb(const QUrl &url)
{
    return url.scheme() == u"http" || url.scheme() == u"https";
}

RemotePage::RemotePage(QObject *parent, const LinkFollower &follow)
    : LinkPage(webProfile(), parent, [follow](const QString &address, bool inNewTab) {
        const QUrl url(address);
        if (isOfWeb(url) || url.scheme() == u"mailto") follow(address, inNewTab);
    })
{}

bool RemotePage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    if (type == NavigationTypeFormSubmitted) return false;
    if (type != NavigationTypeLinkClicked && isMainFrame) return isOfWeb(url);
    return LinkPage::acceptNavigationRequest(url, type, isMainFrame);
}

} // namespace tomelet::desktop
