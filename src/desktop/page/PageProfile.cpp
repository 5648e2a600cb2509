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

class SchemeGate final : public QWebEngineUrlRequestInterceptor
{
public:
    SchemeGate(QStringList schemes, QObject *parent)
        : QWebEngineUrlRequestInterceptor(parent)
        , m_schemes(std::move(schemes))
    {}
    void interceptRequest(QWebEngineUrlRequestInfo &info) override
    {
        if (!m_schemes.contains(info.requestUrl().scheme())) info.block(true);
    }

private:
    QStringList m_schemes;
};

// Off the record: nothing that a page leaves behind is kept.
QWebEngineProfile *makeProfile(const QStringList &schemes)
{
    auto *made = new QWebEngineProfile(QCoreApplication::instance());
    made->setUrlRequestInterceptor(new SchemeGate(schemes, made));
    QWebEngineSettings *settings = made->settings();
    settings->setAttribute(QWebEngineSettings::JavascriptEnabled, false);
    settings->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, false);
    settings->setAttribute(QWebEngineSettings::AutoLoadIconsForPage, false);
    settings->setAttribute(QWebEngineSettings::FocusOnNavigationEnabled, false);
    return made;
}

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

// They are files of the person's own; nothing on them has a reason to call home.
QWebEngineProfile *pageProfile()
{
    static auto *profile = [] {
        auto *made =
            makeProfile({QStringLiteral("file"), QStringLiteral("data"), QStringLiteral("blob"), QStringLiteral("qrc"),
                         QStringLiteral("about"), QStringLiteral("chrome-extension"), QStringLiteral("chrome")});
        QWebEngineSettings *settings = made->settings();
        settings->setAttribute(QWebEngineSettings::LocalContentCanAccessFileUrls, true);
        settings->setAttribute(QWebEngineSettings::PluginsEnabled, true);
        settings->setAttribute(QWebEngineSettings::PdfViewerEnabled, true);
        return made;
    }();
    return profile;
}

QWebEngineProfile *webProfile()
{
    static auto *profile = [] {
        auto *made = makeProfile({QStringLiteral("http"), QStringLiteral("https"), QStringLiteral("data"),
                                  QStringLiteral("blob"), QStringLiteral("about")});
        made->settings()->setAttribute(QWebEngineSettings::ErrorPageEnabled, false);
        return made;
    }();
    return profile;
}

} // namespace tomelet::desktop
