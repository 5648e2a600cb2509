// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as RTF: reading ends, and gives no more characters than there were bytes.
#include "organising/search/RichText.h"

#include <cstdlib>

using namespace tomelet;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes(data, qsizetype(size));
    if (textOfRichText(bytes).size() > bytes.size()) std::abort();
    return 0;
}
