// SPDX-License-Identifier: GPL-3.0-or-later
//
// Any text as a screenplay: its pages hold what its elements hold, and what is written of it has pages as well.
#include "foundation/Platform.h"
#include "foundation/TextCodec.h"
#include "fuzz/FuzzWorld.h"
#include "screenplay/FNHTMLScript.h"
#include "screenplay/FNPaginator.h"

using namespace tomelet;
using namespace tomelet::fuzz;

namespace {

qsizetype lengthOf(const QList<FNElement> &elements)
{
    qsizetype length = 0;
    for (const FNElement &element : elements) length += element.elementText.size();
    return length;
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    setPlatform(std::move(made));
    return 0;
}

static void requireWholePages(const FNScript &script)
{
    FNPaginator pages = FNPaginator::initWithScript(script);
    pages.paginate();
    qsizetype length = 0;
    for (qsizetype i = 0; i < pages.numberOfPages(); ++i) {
        require(!pages.pageAtIndex(i).isEmpty());
        length += lengthOf(pages.pageAtIndex(i));
    }
    require(length >= lengthOf(script.elements)); // names and "(MORE)" are added
    require(!FNHTMLScript::initWithScript(script).bodyForScript().isNull());
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = decodeText(QByteArrayView(data, qsizetype(size))).text;
    const FNScript script = FNScript::initWithString(text);
    requireWholePages(script);
    requireWholePages(FNScript::initWithString(script.stringFromDocument()));
    return 0;
}
