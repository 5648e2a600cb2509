// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/EmbeddedStyle.h"

#include "conversion/MarkdownToHtml.h"
#include "conversion/Patterns.h"
#include "conversion/TextUtilities.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/TextFile.h"

namespace tomelet {

QString tm_removeGeneratorTomelet(const QString &text)
{
    return regexSweep(text, QStringLiteral("<!-- Generator: Tomelet .*?-->"), {});
}

// The plain text that stands in front of a page belongs to the document, not to its style.
static QString representationOf(const QString &text)
{
    const qsizetype page = text.startsWith(plainRepresentationMark) ? text.indexOf(u"<!DOCTYPE") : 0;
    return text.left(std::max(qsizetype(0), page));
}

void tm_updateEmbeddedStylesheet(const QString &path)
{
    const auto decoded = readTextFile(path);
    if (!decoded || decoded->text.isEmpty()) return;
    const QString page = representationOf(decoded->text) +
                         pageFrame(path, lastPathComponent(pathWithoutExtension(path)), tm_getInnerHTML(decoded->text));
    if (tm_removeGeneratorTomelet(page) == tm_removeGeneratorTomelet(decoded->text)) return;
    if (writeFile(path, page.toUtf8()))
        notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), path);
}

void tm_applyCurrentStyle(const QString &path)
{
    if (lowerExtension(path).startsWith(u"htm")) tm_updateEmbeddedStylesheet(path);
}

} // namespace tomelet
