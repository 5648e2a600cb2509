// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/urls/Grab.h"

#include "conversion/TextUtilities.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/TextCodec.h"
#include "library/Extensions.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/urls/FromOutside.h"

namespace tomelet {

namespace {

// The name without an extension: that follows from what the server says it is.
QString stemFor(const FetchedPage &page, const GrabOrder &order, const QString &extension)
{
    if (const QString title = nameFromOutside(order.title); !title.isEmpty())
        return title.endsWith(extension, Qt::CaseInsensitive) ? title.chopped(extension.size()) : title;
    const QUrl address(order.address);
    for (const QString &candidate : {page.suggestedName, address.fileName(), address.host()}) {
        const QString name = nameFromOutside(candidate);
        if (name.isEmpty()) continue;
        return recognisedExtensions().contains(lowerExtension(name)) ? pathWithoutExtension(name) : name;
    }
    return localized(TOMELET_TEXT("Untitled"));
}

// In front of everything on the page, so that its relative links lead where they did.
QString withBase(QString html, const QUrl &address)
{
    if (html.contains(u"<base href")) return html;
    const QString base = QString::fromLatin1(address.toEncoded()).replace(u'"', QStringLiteral("%22"));
    return html.replace(QStringLiteral("<head>"), QStringLiteral("<head>\n<base href=\"%1\">\n").arg(base));
}

// A page that does not say itself in which charset it is loses that with the header.
QByteArray encodedPage(const QString &html, const QString &charset)
{
    if (!charset.isEmpty() && html.contains(u"charset=", Qt::CaseInsensitive))
        if (const auto bytes = encodeTextInCharset(html, charset)) return *bytes;
    return html.toUtf8();
}

} // namespace

QString storeFetchedPage(const FetchedPage &page, const GrabOrder &order)
{
    const QString extension = QString(u'.') + tm_extensionForMimeType(page.mediaType);
    QString stem = stemFor(page, order, extension);
    QByteArray bytes = page.body;
    if (page.mediaType == u"text/html") {
        const auto html = decodeTextInCharset(bytes, page.charset.isEmpty() ? QStringLiteral("UTF-8") : page.charset);
        if (html) {
            if (const QString title = nameFromOutside(tm_getTitleFromHTML(*html)); !title.isEmpty()) stem = title;
            const QString stored = withBase(*html, page.address);
            if (stored != *html || !page.charset.isEmpty()) bytes = encodedPage(stored, page.charset);
        }
    }
    const QString path = writeFromOutside(stem + extension, order.book, bytes);
    if (!path.isEmpty()) tm_setProperty(path, order.address, QStringLiteral("URL"));
    return path;
}

} // namespace tomelet
