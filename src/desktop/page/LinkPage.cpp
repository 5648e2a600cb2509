// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/LinkPage.h"

#include "desktop/page/PageProfile.h"

#include <QUrl>

namespace tomelet::desktop {

namespace {

// Takes the place of the window that a link asks for, until it knows the address.
class NewTab final : public QWebEnginePage
{
public:
    NewTab(QObject *parent, LinkFollower follow)
        : QWebEnginePage(pageProfile(), parent)
        , m_follow(std::move(follow))
    {}

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType, bool) override
    {
        m_follow(url, true);
        deleteLater();
        return false;
    }

private:
    LinkFollower m_follow;
};

} // namespace

LinkPage::LinkPage(QObject *parent, LinkFollower follow)
    : QWebEnginePage(pageProfile(), parent)
    , m_follow(std::move(follow))
{}

bool LinkPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    // A saved page that asks for a fresh one of itself, or sends a form, would be gone.
    if (type == NavigationTypeRedirect || type == NavigationTypeReload || type == NavigationTypeFormSubmitted)
        return false;
    if (type != NavigationTypeLinkClicked || !isMainFrame) return true;
    const bool sameDocument = url.adjusted(QUrl::RemoveFragment) == this->url().adjusted(QUrl::RemoveFragment);
    if (sameDocument) return true;
    m_follow(url, false);
    return false;
}

QWebEnginePage *LinkPage::createWindow(WebWindowType)
{
    return new NewTab(this, m_follow);
}

} // namespace tomelet::desktop
