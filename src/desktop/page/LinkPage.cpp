// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/LinkPage.h"

#include <QUrl>

namespace tomelet::desktop {

namespace {

// Takes the place of the window that a link asks for, until it knows the address.
class NewTab final : public QWebEnginePage
{
public:
    NewTab(QWebEngineProfile *profile, QObject *parent, LinkFollower follow)
        : QWebEnginePage(profile, parent)
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

LinkPage::LinkPage(QWebEngineProfile *profile, QObject *parent, LinkFollower follow)
    : QWebEnginePage(profile, parent)
    , m_follow(std::move(follow))
{}

// Nothing but the program and the person's clicks takes a page away: no form, and no refresh that the page asks for.
bool LinkPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    if (!isMainFrame) return true;
    if (type != NavigationTypeLinkClicked) return type == NavigationTypeTyped;
    const bool sameDocument = url.adjusted(QUrl::RemoveFragment) == this->url().adjusted(QUrl::RemoveFragment);
    if (!sameDocument) m_follow(url, false);
    return sameDocument;
}

QWebEnginePage *LinkPage::createWindow(WebWindowType)
{
    return new NewTab(profile(), this, m_follow);
}

} // namespace tomelet::desktop
