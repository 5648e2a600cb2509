// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/LinkPage.h"

#include "library/urls/UrlAction.h"

#include <QUrl>

namespace tomelet::desktop {

namespace {

using LinkTaker = std::function<void(const QUrl &)>;

// Takes the place of the window that a link asks for, until it knows the address.
class NewTab final : public QWebEnginePage
{
public:
    NewTab(QWebEngineProfile *profile, QObject *parent, LinkTaker take)
        : QWebEnginePage(profile, parent)
        , m_take(std::move(take))
    {}

protected:
    bool acceptNavigationRequest(const QUrl &url, NavigationType, bool) override
    {
        m_take(url);
        deleteLater();
        return false;
    }

private:
    LinkTaker m_take;
};

// What comes as a URL has lost the case of its first book, or none of it is left where that has a blank.
bool isSpoiled(const QUrl &url)
{
    if (!url.isValid()) return true;
    const auto action = parseUrlAction(QString::fromLatin1(url.toEncoded()));
    return action && action->kind == UrlAction::Show;
}

} // namespace

LinkPage::LinkPage(QWebEngineProfile *profile, QObject *parent, LinkFollower follow)
    : QWebEnginePage(profile, parent)
    , m_follow(std::move(follow))
{}

// Nothing but the program and the person's clicks takes a page away: no form, and no refresh that the page asks for.
bool LinkPage::acceptNavigationRequest(const QUrl &url, NavigationType type, bool isMainFrame)
{
    const bool isClicked = type == NavigationTypeLinkClicked;
    if (url.scheme() == u"tomelet") {
        // What changes the notebook is for a click alone, in a frame too: no page does it by being shown.
        if (isClicked) takeLink(url, false);
        return false;
    }
    if (!isMainFrame) return true;
    if (!isClicked) return type == NavigationTypeTyped;
    const bool sameDocument =
        url.isValid() && url.adjusted(QUrl::RemoveFragment) == this->url().adjusted(QUrl::RemoveFragment);
    if (!sameDocument) takeLink(url, false);
    return sameDocument;
}

void LinkPage::takeLink(const QUrl &url, bool inNewTab)
{
    const QString address = QString::fromLatin1(url.toEncoded());
    if (!isSpoiled(url)) return m_follow(address, inNewTab);
    // The link that was clicked has the focus.
    static constexpr quint32 world = 1; // not the page's own
    const auto take = [follow = m_follow, address, inNewTab](const QVariant &written) {
        const auto action = parseUrlAction(written.toString());
        const bool isItem = action && action->kind == UrlAction::Show;
        if (isItem || !address.isEmpty()) follow(isItem ? written.toString() : address, inNewTab);
    };
    runJavaScript(QStringLiteral("document.activeElement?.closest('a[href]')?.href || ''"), world, take);
}

QWebEnginePage *LinkPage::createWindow(WebWindowType)
{
    return new NewTab(profile(), this, [this](const QUrl &url) { takeLink(url, true); });
}

} // namespace tomelet::desktop
