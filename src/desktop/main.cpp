// SPDX-License-Identifier: GPL-3.0-or-later
// The program `tomelet-desktop [PATH|URL|OPTION]`: a folder becomes the notebook, a file is opened, a tomelet URL
// carried out. Options: --new-note, --add-selection, --add-selection-plain, --insert-selection. All of them reach the
// program that runs already, where there is one.
#include "desktop/DesktopShell.h"
#include "desktop/ServiceBus.h"
#include "desktop/SingleInstance.h"
#include "desktop/page/PageDictionaries.h"
#include "foundation/Folder.h"
#include "foundation/Resources.h"
#include "foundation/Signals.h"
#include "organising/NotebookOrganiser.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QLibraryInfo>
#include <QLocale>
#include <QTimer>
#include <QTranslator>

#include <cstdio>
#include <unistd.h>

using namespace tomelet;

namespace {

void installTranslations(QApplication &application)
{
    auto *qt = new QTranslator(&application);
    if (qt->load(QLocale(), QStringLiteral("qtbase"), QStringLiteral("_"),
                 QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(qt);
    auto *own = new QTranslator(&application);
    if (own->load(QLocale(), QStringLiteral("tomelet"), QStringLiteral("_"),
                  resourcePath(QStringLiteral("translations"))))
        QApplication::installTranslator(own);
}

int tellUsage(const QString &option)
{
    const bool asked = option == u"--help";
    std::fprintf(asked ? stdout : stderr, "Usage: tomelet-desktop [FOLDER|FILE|URL|%s]\n",
                 qPrintable(desktop::DesktopShell::serviceOptions().join(u'|')));
    return asked ? 0 : 2;
}

} // namespace

int main(int argc, char *argv[])
{
    QuitOnSignals::hold();
    // Chromium's sandbox cannot be set up by root, and refuses to start without being told so.
    if (::geteuid() == 0) qputenv("QTWEBENGINE_DISABLE_SANDBOX", "1");
    desktop::namePageDictionaries();
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Tomelet"));
    QApplication::setDesktopFileName(QStringLiteral("org.tomelet.app"));
    QApplication::setWindowIcon(QIcon(resourcePath(QStringLiteral("icons/org.tomelet.app.svg"))));
    installTranslations(application);

    const QString argument = QApplication::arguments().value(1);
    const bool isOption = argument.startsWith(u"--");
    if (isOption && !desktop::DesktopShell::serviceOptions().contains(argument)) return tellUsage(argument);
    const bool isUrl = argument.startsWith(u"tomelet://", Qt::CaseInsensitive);
    const bool isPath = !argument.isEmpty() && !isOption && !isUrl;
    QString path = isPath ? QDir(argument).absolutePath() : argument;
    if (isUrl) path.replace(u'\n', QStringLiteral("%0A")); // it is handed over as one line
    desktop::SingleInstance instance;
    if (instance.handedOverTo(path)) return 0;

    installNotebookOrganiser();
    desktop::DesktopShell shell;
    QObject::connect(&instance, &desktop::SingleInstance::handedOver, &shell, &desktop::DesktopShell::handOver);
    const QuitOnSignals quitter;
    const desktop::ServiceBus bus(shell.services());
    const bool opensLater = isPath ? itemExists(path) && !isFolder(path) : !path.isEmpty();
    shell.launch(opensLater ? QString() : path, opensLater ? path : QString());
    // Behind what the launch itself shows last.
    if (opensLater) QTimer::singleShot(0, &shell, [&shell, path] { shell.handOver(path); });
    return QApplication::exec();
}
