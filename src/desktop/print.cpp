// SPDX-License-Identifier: GPL-3.0-or-later
// The program `tomelet-print PAGE RESULT`: prints a page, a file, to PDF. The command line calls it; it shows nothing.
#include "desktop/page/PageProfile.h"

#include <QApplication>
#include <QTimer>
#include <QUrl>
#include <QWebEnginePage>
#include <QWebEngineProfile>

#include <cstdio>
#include <unistd.h>

using namespace std::chrono_literals;

static void endWith(const char *message)
{
    std::fprintf(stderr, "%s\n", message);
    QCoreApplication::exit(1);
}

int main(int argc, char *argv[])
{
    // Chromium's sandbox cannot be set up by root, and refuses to start without being told so.
    if (::geteuid() == 0) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() != 3) {
        std::fprintf(stderr, "usage: tomelet-print PAGE RESULT\n");
        return 2;
    }
    QWebEnginePage page(tomelet::desktop::pageProfile());
    QObject::connect(&page, &QWebEnginePage::loadFinished, &page, [&](bool ok) {
        if (!ok) return endWith("the page could not be loaded");
        page.printToPdf(arguments[2], tomelet::desktop::paperForPages());
    });
    QObject::connect(&page, &QWebEnginePage::pdfPrintingFinished, &page, [](const QString &, bool ok) {
        if (!ok) return endWith("the page could not be printed");
        QCoreApplication::exit(0);
    });
    QTimer::singleShot(120s, &page, [] { endWith("printing took too long"); });
    page.load(QUrl::fromLocalFile(arguments[1]));
    return QApplication::exec();
}
