// SPDX-License-Identifier: GPL-3.0-or-later
//
// Any text as a screenplay: its pages hold what its elements hold, what is written of it is read again, with the same
// title page, and is the same when it is written once more.
#include "foundation/Platform.h"
#include "foundation/TextCodec.h"
#include "screenplay/FNHTMLScript.h"
#include "screenplay/FNPaginator.h"

#include <algorithm>
#include <cstdlib>

using namespace tomelet;

namespace {

void require(bool condition)
{
    if (!condition) std::abort();
}

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

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = decodeText(QByteArrayView(data, qsizetype(size))).text;
    const FNScript script = FNScript::initWithString(text);
    FNPaginator pages = FNPaginator::initWithScript(script);
    pages.paginate();
    qsizetype length = 0;
    for (qsizetype i = 0; i < pages.numberOfPages(); ++i) {
        require(!pages.pageAtIndex(i).isEmpty());
        length += lengthOf(pages.pageAtIndex(i));
    }
    require(length >= lengthOf(script.elements)); // names and "(MORE)" are added

    const QString document = script.stringFromDocument();
    const FNScript again = FNScript::initWithString(document);
    require(again.titlePage == script.titlePage);
    // A "^" alone on its line is a speaker without a name, who cannot be written.
    const bool isNamed = std::ranges::none_of(
        script.elements, [](const FNElement &element) { return element.is(FNType::Character) && element.isBlank(); });
    require(!isNamed || again.stringFromDocument() == document);
    require(FNHTMLScript::initWithScript(script).bodyForScript().isNull() == false);
    return 0;
}
