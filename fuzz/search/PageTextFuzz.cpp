// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as a page: reading ends, and gives no more characters than there were.
#include "foundation/TextCodec.h"
#include "organising/search/PageText.h"

#include <cstdlib>

using namespace tomelet;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString html = decodeText(QByteArrayView(data, qsizetype(size))).text;
    if (textOfPage(html).size() > html.size()) std::abort();
    return 0;
}
