// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/DocumentViewChoice.h"

#include "foundation/Platform.h"
#include "import/WebArchive.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"

namespace tomelet {

DocumentView::~DocumentView() = default;

namespace {

constexpr ViewChoice pageAlone{DocumentViewKind::Formatted, false};

ViewChoice plainIf(bool plain)
{
    return {plain ? DocumentViewKind::PlainText : DocumentViewKind::Formatted, true};
}

bool isPagePicture(const QString &path, const QString &extension)
{
    if (extension == u"itmz") return true;
    return hasImageExtension(path) && extension != u"heic" && extension != u"heif";
}

} // namespace

ViewChoice viewForDocument(const QString &path, bool presentingToggledView)
{
    const QString extension = lowerExtension(path);
    if (hasMarkdownExtension(path) || extension == u"fountain" || extension == u"opml")
        return plainIf(settings().boolean(QStringLiteral("showMarkdownAsPlainText")) != presentingToggledView);
    if (extension.startsWith(u"htm")) return plainIf(presentingToggledView);
    if (extension == u"pdf") return {DocumentViewKind::Pdf, false};
    if (extension == u"webloc" || extension == u"url")
        return tm_embeddedURL(path).startsWith(u"http") ? pageAlone : ViewChoice{};
    if (opensAsWebArchive(path)) return pageAlone;
    if (extension == u"fdx" || extension == u"eml" || extension == u"enex" || isPagePicture(path, extension))
        return pageAlone;
    if (hasPlainTextExtension(path)) return plainIf(!presentingToggledView);
    return {};
}

ViewChoice viewForNewDocument(const QString &extension)
{
    return {extension == u"html" ? DocumentViewKind::Formatted : DocumentViewKind::PlainText, false};
}

} // namespace tomelet
