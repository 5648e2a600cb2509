// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/Page.h"

#include "conversion/MarkdownToHtml.h"
#include "conversion/StyleSheets.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "import/Mail.h"
#include "import/Opml.h"
#include "import/WebArchive.h"
#include "library/Appearance.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/TextFile.h"
#include "screenplay/FNHTMLScript.h"

#include <QFileInfo>
#include <QLocale>

namespace tomelet {

// -- other kinds ------------------------------------------------------------------------------------------------------

static QString pageOfText(const QString &path)
{
    const auto decoded = readTextFile(path);
    const QString text = decoded ? decoded->text : QString();
    return tm_createFormattedDocWithBody(path,
                                         QStringLiteral("<pre class=\"tm_plain\">%1</pre>").arg(text.toHtmlEscaped()));
}

static QString pageOfImage(const QString &path)
{
    // Beside the page, as all references of pages are: they are resolved by the document's folder.
    const QString name = lastPathComponent(path);
    return tm_createFormattedDocWithBody(path, QStringLiteral("<p class=\"tm_image\"><img src=\"%1\" alt=\"%2\"></p>")
                                                   .arg(percentEncodedPath(name), name.toHtmlEscaped()));
}

static QString pageOfMail(const QString &path)
{
    const auto decoded = readTextFile(path);
    const Font font = tm_fontForPath(path);
    return tm_emlToHTML(decoded ? decoded->text : QString())
        .replace(QStringLiteral("**TomeletFont**"), font.face)
        .replace(QStringLiteral("**TomeletFontSize**"), QString::number(qlonglong(font.size)));
}

static QString pageOfOutline(const QString &path)
{
    const auto decoded = readTextFile(path);
    return tm_createFormattedDocWithBody(path, tm_OPMLToHTML(decoded ? decoded->text : QString()));
}

static QString pageOfUnknown(const QString &path)
{
    const QFileInfo file(path);
    const QString kind =
        pathExtension(path).isEmpty() ? localized(TOMELET_TEXT("Document")) : pathExtension(path).toUpper();
    return tm_createFormattedDocWithBody(
        path, QStringLiteral("<div class=\"tm_card\"><p class=\"tm_card_name\">%1</p><p>%2 · %3 · %4</p></div>")
                  .arg(file.fileName().toHtmlEscaped(), kind.toHtmlEscaped(), QLocale().formattedDataSize(file.size()),
                       QLocale().toString(file.lastModified(), QLocale::ShortFormat).toHtmlEscaped()));
}

// This page loads nothing from the network; the link opens it in another program.
static QString pageOfAddress(const QString &path, const QString &address)
{
    const QString shown = address.toHtmlEscaped();
    return tm_createFormattedDocWithBody(
        path,
        QStringLiteral("<div class=\"tm_card\"><p class=\"tm_card_name\">%1</p><p><a href=\"%2\">%2</a></p></div>")
            .arg(lastPathComponent(path).toHtmlEscaped(), shown));
}

static QString pageOfAnyKind(const QString &path)
{
    const QString extension = lowerExtension(path);
    if (hasMarkdownExtension(path)) return tm_markdownToHTML(path);
    if (extension == u"html" || extension == u"htm") {
        const auto decoded = readTextFile(path);
        return decoded ? decoded->text : tm_createFormattedDocWithBody(path, {});
    }
    if (extension == u"webloc" || extension == u"url")
        if (const QString address = tm_embeddedURL(path); address.startsWith(u"http"))
            return pageOfAddress(path, address);
    if (extension == u"eml") return pageOfMail(path);
    if (extension == u"opml") return pageOfOutline(path);
    if (extension == u"fountain") return pageOfScreenplay(path);
    if (hasImageExtension(path)) return pageOfImage(path);
    if (hasPlainTextExtension(path)) return pageOfText(path);
    // Files without an extension are mostly text: README, LICENSE, Makefile.
    if (extension.isEmpty() && QFileInfo(path).size() < 1024 * 1024) return pageOfText(path);
    return pageOfUnknown(path);
}

QString pageForItem(const QString &path)
{
    // Pages of others keep their own colours.
    if (opensAsWebArchive(path))
        if (const QString page = tm_webarchiveToHTML(path); !page.isEmpty()) return page;
    return tm_formattedDocAdjustedToColorTheme(pageOfAnyKind(path));
}

} // namespace tomelet
