// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes: reading ends, and what was read survives being written in either form.
#include "foundation/PropertyList.h"

#include <cstdlib>

using namespace tomelet;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto tree = parsePropertyList(QByteArrayView(data, qsizetype(size)));
    if (!tree) return 0;
    // Bytes are compared, since a number that is none is not equal to itself.
    const QByteArray binary = binaryPropertyList(*tree);
    const auto again = parsePropertyList(binary);
    if (!again || binaryPropertyList(*again) != binary) std::abort();
    // The XML form leaves out characters, in keys too, and fractions of seconds once, and nothing the second
    // time.
    const auto plain = parsePropertyList(xmlPropertyList(*tree));
    if (!plain) std::abort();
    const QByteArray xml = xmlPropertyList(*plain);
    const auto fromXml = parsePropertyList(xml);
    if (!fromXml || xmlPropertyList(*fromXml) != xml) std::abort();
    return 0;
}
