// SPDX-License-Identifier: GPL-3.0-or-later
//
// Any bytes as exported notes: files come into the book and its folder of images alone, and each document that is told
// of is one of the program's.
#include "editor/DocumentForms.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "fuzz/FuzzWorld.h"
#include "import/ExportedNotes.h"
#include "import/Imports.h"

#include <QDir>

using namespace tomelet;
using namespace tomelet::fuzz;

namespace {

QString book()
{
    return joinPath(world().path(), QStringLiteral("root/book"));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    for (const char *variable : {"XDG_RUNTIME_DIR", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
        qputenv(variable, joinPath(world().path(), QStringLiteral("state")).toUtf8());
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    made->settings->setObject(QStringLiteral("TomeletFolder"), parentPath(book()));
    setPlatform(std::move(made));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QDir(parentPath(book())).removeRecursively();
    makeFolder(book());
    const QByteArrayView bytes(data, qsizetype(size));
    (void)pageOfNote(QString::fromUtf8(bytes), {});
    const QString path = joinPath(book(), QStringLiteral("a.enex"));
    require(bool(writeFile(path, bytes)));
    for (const QString &note : importFile(path, book()).documents) {
        require(parentPath(note) == book());
        require(tm_generatorIsTomelet(QString::fromUtf8(readFile(note).value_or(QByteArray()))));
    }
    for (const QString &name : namesInFolder(world().path())) require(name == u"root" || name == u"state");
    for (const QString &name : namesInFolder(parentPath(book()))) require(name == u"book" || name == u"TMResources");
    return 0;
}
