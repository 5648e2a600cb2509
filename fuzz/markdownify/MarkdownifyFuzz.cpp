// SPDX-License-Identifier: GPL-3.0-or-later
//
// Any text as HTML: there is always a Markdown text without blanks around it, and the steps that read each
// part of a text as seldom as they can give what their plain loops give.
#include "conversion/HtmlToMarkdown.h"
#include "foundation/Platform.h"

#include "tests/conversion/PlainLoops.h"

#include <cstdlib>

using namespace tomelet;

extern "C" int LLVMFuzzerInitialize(int *, char ***)
{
    auto made = std::make_unique<Platform>();
    made->settings = makeMemorySettings();
    setPlatform(std::move(made));
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString html = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString markdown = tm_markdownifyHTML(html);
    if (markdown != markdown.trimmed()) std::abort();
    for (const auto *plain : {&test::plainParagraphs, &test::plainLinks, &test::plainImages, &test::plainTables,
                              &test::plainDefinitionLists}) {
        QString text = html;
        plain->step(text);
        if (text != plain->result(html)) std::abort();
    }
    return 0;
}
