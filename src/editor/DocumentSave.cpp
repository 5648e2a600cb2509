// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/DocumentSave.h"

#include "conversion/MarkdownToHtml.h"
#include "conversion/PageReferences.h"
#include "conversion/Patterns.h"
#include "conversion/TextUtilities.h"
#include "editor/LineEnds.h"
#include "editor/PageBody.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "library/Extensions.h"
#include "library/Properties.h"

namespace tomelet {

void DocumentSave::read()
{
    if (kind == DocumentViewKind::PlainText) text = visibleText = withLineEndsOf(loaded, held);
    else text = tm_makeTMLinksRelativeTo(cleanedBody(held), book);
    md5OfText = tomelet::md5OfText(text, form);
    isUnchanged = md5OfText == md5hash;
}

QString DocumentSave::finalForm() const
{
    if (kind == DocumentViewKind::Formatted)
        return isForeignPage ? pageWithBody(loaded, held) : tm_createFormattedDocWithBody(isNew ? book : path, text);
    if (isCombined) return combinedForm(text);
    const bool isPage = lowerExtension(path).startsWith(u"htm");
    return isPage && !text.contains(u"<head>") ? tm_createFormattedDocWithBody(path, text) : text;
}

// For contexts, which are none in code.
QString DocumentSave::plainText() const
{
    static const QString code = QStringLiteral("(?s)<code>.*?</code>");
    return kind == DocumentViewKind::Formatted ? tm_htmlToPlainQuick(regexSweep(text, code, {})) : text;
}

void DocumentSave::make()
{
    const QString stored = finalForm();
    bytes = bytesOfText(stored, form);
    md5OfText = tomelet::md5OfText(text, form); // in the encoding that it was written in
    md5OfBytes = tomelet::md5OfBytes(bytes);
    facts = factsOfText(path, {readsContexts(path) ? plainText() : QString(), stored, text});
}

bool DocumentSave::fileIsForeign() const
{
    if (isNew || md5OfFile.isEmpty()) return false;
    const auto present = readFile(path);
    return present && tomelet::md5OfBytes(*present) != md5OfFile;
}

void DocumentSave::run()
{
    read();
    if (isUnchanged && !isForced) return;
    if (!isNew) stamp = fileStamp(path); // a new one writes over nothing
    isForeign = fileIsForeign();
    if (isForeign) return;
    writeSidecarForWebview();
    make();
    file = std::make_unique<StagedFile>(path, bytes);
}

// The visible text of a page into the cache, where search finds it.
void DocumentSave::writeSidecarForWebview() const
{
    if (isNew || kind != DocumentViewKind::Formatted) return;
    const QString sidecar = tm_sideCarPathCreatingParentIfNeeded(path);
    if (sidecar.isEmpty()) return;
    if (const WriteResult written = writeFile(sidecar, visibleText.toUtf8()); !written) logLine(written.message);
}

} // namespace tomelet
