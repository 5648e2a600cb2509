// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/PageProfile.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
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

// The dictionaries of the machine's languages that the engine finds: "de-DE.bdic".
QStringList installedDictionaries()
{
    const QString usual = QLibraryInfo::path(QLibraryInfo::DataPath) + QStringLiteral("/qtwebengine_dictionaries");
    const QDir folder(qEnvironmentVariable("QTWEBENGINE_DICTIONARIES_PATH", usual));
    QStringList languages;
    for (const QFileInfo &file : folder.entryInfoList({QStringLiteral("*.bdic")}, QDir::Files, QDir::Name))
        languages.append(file.completeBaseName());
    QStringList wanted;
    for (const QString &language : QLocale::system().uiLanguages() + QStringList{QStringLiteral("en-US")})
        if (languages.contains(language) && !wanted.contains(language)) wanted.append(language);
    return wanted;
}

} // namespace

QPageLayout paperForPages()
{
    static constexpr double margin = 18;
    const bool letter = QLocale().measurementSystem() == QLocale::ImperialUSSystem;
    return {QPageSize(letter ? QPageSize::Letter : QPageSize::A4), QPageLayout::Portrait,
            QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter};
}

void checkSpellingOfPages(bool on)
{
    const QStringList languages = installedDictionaries();
    pageProfile()->setSpellCheckLanguages(languages);
    pageProfile()->setSpellCheckEnabled(on && !languages.isEmpty());
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
