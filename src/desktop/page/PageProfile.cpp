// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/PageProfile.h"

#include "desktop/page/PageDictionaries.h"

#include <QCoreApplication>
#include <QLocale>
#include <QWebEngineProfile>
#include <QWebEngineSettings>
#include <QWebEngineUrlRequestInterceptor>

namespace tomelet::desktop {

namespace {

// Pages are files of the person's own; nothing on them has a reason to call home.
class NetworkBlocker final : public QWebEngineUrlRequestInterceptor
{
public:
    using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;
    void interceptRequest(QWebEngineUrlRequestInfo &info) override
    {
        static const QStringList local{QStringLiteral("file"),  QStringLiteral("data"),
                                       QStringLiteral("blob"),  QStringLiteral("qrc"),
                                       QStringLiteral("about"), QStringLiteral("chrome-extension"),
                                       QStringLiteral("chrome")};
        if (!local.contains(info.requestUrl().scheme())) info.block(true);
    }
};

} // namespace

QPageLayout paperForPages()
{
    static constexpr double margin = 18;
    const bool letter = QLocale().measurementSystem() == QLocale::ImperialUSSystem;
    return {QPageSize(letter ? QPageSize::Letter : QPageSize::A4), QPageLayout::Portrait,
            QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter};
}

static void useDictionaries()
{
    const QStringList languages = pageDictionaries();
    pageProfile()->setSpellCheckLanguages(languages);
    pageProfile()->setSpellCheckEnabled(!languages.isEmpty());
}

void checkSpellingOfPages(bool on)
{
    if (!on) return pageProfile()->setSpellCheckEnabled(false);
    useDictionaries();
    makePageDictionaries(useDictionaries);
}

QWebEngineProfile *pageProfile()
{
    // Off the record: nothing that a page leaves behind is kept.
    static auto *profile = [] {
        auto *made = new QWebEngineProfile(QCoreApplication::instance());
        made->setUrlRequestInterceptor(new NetworkBlocker(made));
        QWebEngineSettings *settings = made->settings();
        settings->setAttribute(QWebEngineSettings::JavascriptEnabled, false);
        settings->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, false);
        settings->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, true);
        settings->setAttribute(QWebEngineSettings::PluginsEnabled, true);
        settings->setAttribute(QWebEngineSettings::PdfViewerEnabled, true);
        settings->setAttribute(QWebEngineSettings::AutoLoadIconsForPage, false);
        settings->setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);
        return made;
    }();
    return profile;
}

} // namespace tomelet::desktop
