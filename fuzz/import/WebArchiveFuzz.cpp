// SPDX-License-Identifier: GPL-3.0-or-later
//
// Any bytes as a web archive: its files are written to their two folders alone, the page of the same archive is the
// same again, and what was saved is a document of the program.
#include "editor/DocumentForms.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "fuzz/FuzzWorld.h"
#include "import/WebArchive.h"

#include <QDir>

using namespace tomelet;
using namespace tomelet::fuzz;

namespace {

QString book()
{
    return joinPath(world().path(), QStringLiteral("book"));
}

void startAfresh()
{
    QDir(workingDirectory()).removeRecursively();
    QDir(book()).removeRecursively();
    makeFolder(book());
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qputenv("XDG_RUNTIME_DIR", world().path().toUtf8());
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    made->settings->setObject(QStringLiteral("TomeletFolder"), book());
    setPlatform(std::move(made));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    startAfresh();
    const QString path = joinPath(book(), QStringLiteral("a.webarchive"));
    require(bool(writeFile(path, QByteArrayView(data, qsizetype(size)))));
    const QString page = tm_webarchiveToHTML(path);
    require(tm_webarchiveToHTML(path) == page);
    const QString saved = tm_saveWebarchiveAsHTML(path);
    if (!saved.isEmpty()) require(tm_generatorIsTomelet(QString::fromUtf8(readFile(saved).value_or(QByteArray()))));
    require(namesInFolder(world().path()).size() <= 2 && namesInFolder(workingDirectory()).size() <= 1);
    for (const QString &name : namesInFolder(book())) require(name.startsWith(u"a.") || name == u"TMImages");
    return 0;
}
