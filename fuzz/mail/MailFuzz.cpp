// SPDX-License-Identifier: GPL-3.0-or-later
//
// Any bytes as a mail: there is always a page, files are written to the working folder alone, and the page of the same
// mail is the same again.
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/TextCodec.h"
#include "fuzz/FuzzWorld.h"
#include "import/Mail.h"

#include <QFile>

using namespace tomelet;
using namespace tomelet::fuzz;

namespace {

// A long run would fill the disk with the files of its mails.
void emptyWorkingFolder()
{
    for (const QString &name : namesInFolder(workingDirectory())) QFile::remove(joinPath(workingDirectory(), name));
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    qputenv("XDG_RUNTIME_DIR", world().path().toUtf8());
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    setPlatform(std::move(made));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = decodeText(QByteArrayView(data, qsizetype(size))).text;
    const QString page = tm_emlToHTML(text);
    require(!page.isEmpty() && tm_emlToHTML(text) == page);
    require(namesInFolder(world().path()).size() <= 1);
    emptyWorkingFolder();
    return 0;
}
