// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/FormattedPage.h"

#include "conversion/EmbeddedStyle.h"
#include "conversion/MarkdownToHtml.h"
#include "conversion/Page.h"
#include "conversion/StyleSheets.h"
#include "conversion/TextUtilities.h"
#include "editor/DocumentForms.h"
#include "editor/FdxPage.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"
#include "import/Mail.h"
#include "import/MailText.h"
#include "import/MindMap.h"
#include "import/WebArchive.h"
#include "library/Appearance.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/TextFile.h"
#include "screenplay/FNHTMLScript.h"

#include <QFileInfo>

namespace tomelet {

namespace {

QString textOf(const QString &path)
{
    const auto decoded = readTextFile(path);
    return decoded ? decoded->text : QString();
}

// The stored page is only a copy of what its source gives; style and program may have moved on since.
QString combinedPage(const QString &path)
{
    const auto decoded = readTextFile(path);
    if (!decoded) return tm_createFormattedDocWithBody(path, {});
    const QString fresh = combinedForm(tm_htmlToPlainText(decoded->text));
    TextForm form{decoded->encoding, decoded->byteOrderMark};
    const auto comparable = [&](const QString &text) {
        return md5OfText(tm_removeGeneratorTomelet(text).trimmed(), form);
    };
    const bool holdsSource = decoded->text.contains(plainRepresentationMark);
    if (holdsSource && comparable(fresh) != comparable(decoded->text))
        (void)writeFile(path, bytesOfText(fresh, form)); // on a failure the old copy stands, which loses nothing
    return holdsSource ? tm_stripMarkdownFromHTML(fresh) : decoded->text;
}

FormattedPage htmlPage(const QString &path)
{
    const QString text = textOf(path);
    if (tm_generatorIsTomelet(text)) {
        const QString page = tm_createFormattedDocWithBody(path, tm_getInnerHTML(text));
        return {tm_formattedDocAdjustedToColorTheme(page), path, true, false};
    }
    const QString origin = tm_propertyForKey(path, QStringLiteral("URL")).toString();
    return {text, urlScheme(origin).isEmpty() ? path : origin, true, true};
}

QString systemFace(const QString &face)
{
    if (face.startsWith(u"System Monospaced")) return QStringLiteral("ui-monospace");
    return face.startsWith(u"System Font") ? QStringLiteral("-apple-system") : face;
}

QString mailPage(const QString &path)
{
    const QString message = textOf(path);
    QString page = tm_emlToHTML(message);
    if (page.isEmpty())
        page = tm_createFormattedDocWithBody(
            path, tm_getInnerHTML(tm_markdownToHTML(stringWithQuotedPrintableString(message))));
    const Font font = tm_fontForPath(path);
    return tm_formattedDocAdjustedToColorTheme(page)
        .replace(QStringLiteral("**TomeletFontSize**"), QString::number(qlonglong(font.size)))
        .replace(QStringLiteral("**TomeletFont**"), systemFace(font.face));
}

// The time stamp keeps a changed picture from being taken out of a cache.
QString picturePage(const QString &path)
{
    const QString style = QStringLiteral(
        "body { background: #fff; } img {-webkit-user-select: none; display: block; max-height: 97%; max-width: 97%; "
        "width: auto; height: auto; position: absolute; top: 0; bottom: 0; left: 0; right: 0; margin: auto;; "
        "-webkit-filter: drop-shadow(0px 0px 5px #bbb); }");
    return QStringLiteral("<html><head><style> ") + style + QStringLiteral(" </style></head><body><img src=\"") +
           percentEncodedPath(path) + u'?' + QString::number(QFileInfo(path).lastModified().toSecsSinceEpoch()) +
           QStringLiteral("\"></body></html>");
}

QString exportedNotesPage(const QString &path)
{
    const QString page =
        QString::fromUtf8(readFile(resourcePath(QStringLiteral("CSS/CannotLoadError.html"))).value_or(QByteArray()));
    const QString offer = QStringLiteral("<a name=\"link\" href=\"file://%1\">%2</a>")
                              .arg(percentEncodedPath(path), localized(TOMELET_TEXT("Click to extract and import...")));
    return QString(page)
        .replace(QStringLiteral("**Message**"),
                 localized(TOMELET_TEXT("This file contains notes exported from Evernote.")))
        .replace(QStringLiteral("**Extra**"), offer)
        .replace(QStringLiteral("**Title**"), lastPathComponent(path).toHtmlEscaped());
}

FormattedPage fdxPage(const QString &path)
{
    const QString page = tm_formattedDocAdjustedToColorTheme(pageOfFdx(textOf(path)));
    const QString file = joinPath(workingDirectory(), nameWithoutExtension(path) + QStringLiteral(".xml"));
    if (makeFolder(workingDirectory()) && writeFile(file, page.toUtf8())) return {page, file, false, false, true};
    return {pageForItem(path), path, false, false};
}

} // namespace

FormattedPage formattedPageFor(const QString &path)
{
    const QString extension = lowerExtension(path);
    if (isCombinedMarkdown(path)) return {tm_formattedDocAdjustedToColorTheme(combinedPage(path)), path, false, false};
    if (extension.startsWith(u"htm")) return htmlPage(path);
    if (extension == u"webloc" || extension == u"url") {
        const QString address = tm_embeddedURL(path);
        if (address.startsWith(u"http")) return {{}, address, false, true};
    }
    if (extension == u"eml") return {mailPage(path), path, false, false};
    if (extension == u"fdx") return fdxPage(path);
    if (opensAsWebArchive(path))
        if (const QString page = tm_webarchiveToHTML(path); !page.isEmpty()) return {page, path, false, true};
    if (extension == u"fountain")
        return {tm_formattedDocAdjustedToColorTheme(pageOfScreenplay(path)), path, false, false};
    if (extension == u"enex") return {exportedNotesPage(path), path, false, false};
    if (extension == u"itmz")
        if (const QString picture = tm_pathToPreviewOfITMZ(path); !picture.isEmpty())
            return {picturePage(picture), path, false, false};
    if (hasImageExtension(path)) return {picturePage(path), path, false, false};
    // Every text with a source is shown as what its Markdown says.
    if (hasPlainTextExtension(path))
        return {tm_formattedDocAdjustedToColorTheme(tm_markdownToHTML(path)), path, false, false};
    return {pageForItem(path), path, false, false};
}

} // namespace tomelet
