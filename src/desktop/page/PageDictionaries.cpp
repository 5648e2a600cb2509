// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/page/PageDictionaries.h"

#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QLocale>
#include <QProcess>
#include <QSet>

namespace tomelet::desktop {

static constexpr const char *folderVariable = "QTWEBENGINE_DICTIONARIES_PATH";

static QString folderOfDictionaries()
{
    return qEnvironmentVariable(folderVariable, joinPath(cacheDirectory(), QStringLiteral("dictionaries")));
}

static QString dictionaryOf(const QString &language)
{
    return joinPath(folderOfDictionaries(), language + QStringLiteral(".bdic"));
}

static QStringList languagesOfPerson()
{
    QStringList languages = QLocale::system().uiLanguages() + QStringList{QStringLiteral("en-US")};
    languages.removeDuplicates();
    return languages;
}

void namePageDictionaries()
{
    if (qEnvironmentVariableIsSet(folderVariable)) return;
    makeFolder(folderOfDictionaries()); // what is not there when the engine starts it never looks at again
    qputenv(folderVariable, QFile::encodeName(folderOfDictionaries()));
}

QStringList pageDictionaries()
{
    QStringList found;
    for (const QString &language : languagesOfPerson())
        if (itemExists(dictionaryOf(language))) found.append(language);
    return found;
}

// The converter's own file is moved into place when it is whole.
static void convert(const QString &source, const QString &language, const std::function<void()> &made)
{
    static QSet<QString> begun; // one try for each start of the program
    const QString converter =
        joinPath(QLibraryInfo::path(QLibraryInfo::LibraryExecutablesPath), QStringLiteral("qwebengine_convert_dict"));
    if (begun.contains(language) || !itemExists(converter) || !makeFolder(folderOfDictionaries())) return;
    begun.insert(language);
    const QString unfinished = joinPath(folderOfDictionaries(), language + QStringLiteral(".part"));
    auto *process = new QProcess(QCoreApplication::instance());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    QObject::connect(process, &QProcess::finished, process, [=](int code) {
        const auto bytes = code == 0 ? readFile(unfinished) : std::nullopt;
        if (bytes && !bytes->isEmpty() && writeFile(dictionaryOf(language), *bytes)) made();
        QFile::remove(unfinished);
        process->deleteLater();
    });
    process->start(converter, {source, unfinished});
}

void makePageDictionaries(const std::function<void()> &made)
{
    for (const QString &language : languagesOfPerson()) {
        const QString name = QString(language).replace(u'-', u'_');
        const QFileInfo source(QStringLiteral("/usr/share/hunspell/%1.dic").arg(name));
        const QFileInfo present(dictionaryOf(language));
        const bool isFresh = present.exists() && present.lastModified() >= source.lastModified();
        if (source.exists() && !isFresh) convert(source.filePath(), language, made);
    }
}

} // namespace tomelet::desktop
