// SPDX-License-Identifier: GPL-3.0-or-later
// Any bytes as an office document: the first byte chooses the format. Reading ends, with a text that is not larger than
// what it was unpacked from, and the same one again.
#include "organising/search/OfficeText.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdlib>

using namespace tomelet;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QTemporaryDir world;
    static const char *const extensions[] = {"odt", "docx", "pptx", "xlsx", "epub"};
    if (size == 0) return 0;
    const QString path = world.filePath(QStringLiteral("Any.") + QLatin1StringView(extensions[data[0] % 5]));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
    file.write(reinterpret_cast<const char *>(data + 1), qint64(size - 1));
    file.close();
    const QString text = textOfOfficeDocument(path);
    if (text.size() > largestOfficeText || textOfOfficeDocument(path) != text) std::abort();
    return 0;
}
