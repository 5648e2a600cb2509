// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/Page.h"

#include "conversion/Discount.h"
#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/SetUp.h"
#include "library/TextFile.h"

#include <QFileInfo>
#include <QLocale>
#include <QUrl>

namespace tomelet {

static QString styleElement()
{
    const QByteArray sheet = readFile(resourcePath(QStringLiteral("CSS/Default Theme.css"))).value_or(QByteArray());
    return QStringLiteral("<style>\n") + QString::fromUtf8(sheet) + QStringLiteral("</style>");
}

static QString titleOf(const QString &path, const QString &body)
{
    const Range heading = rangeOfPattern(body, QStringLiteral("<h1.*?>(.+?)</h1>"), PatternLineAnchored, wholeRange, 1);
    return heading.isFound() ? substring(body, heading) : lastPathComponent(pathWithoutExtension(path));
}

QString tm_createFormattedDocWithBody(const QString &path, const QString &body)
{
    return QStringLiteral("<!DOCTYPE html>\n"
                          "<html xmlns=\"http://www.w3.org/1999/xhtml\" >\n"
                          "<head>\n"
                          "  <!-- Generator: Tomelet for Mac %1 -->\n"
                          "  <title>%2</title>\n"
                          "  <meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\">\n"
                          "%3\n"
                          "</head>\n"
                          "<body>\n"
                          "%4\n"
                          "</body>\n"
                          "</html>")
        .arg(shortVersion, titleOf(path, body), styleElement(), body);
}

QString pageOfMarkdown(const QString &path)
{
    const auto decoded = readTextFile(path);
    if (!decoded) return tm_createFormattedDocWithBody(path, {});
    const bool smartyPants = settings().boolean(QStringLiteral("useSmartyPants"));
    return tm_createFormattedDocWithBody(path, discountToHtml(decoded->text, true, smartyPants));
}

// -- other kinds ------------------------------------------------------------------------------------------------------

static QString pageOfText(const QString &path)
{
    const auto decoded = readTextFile(path);
    const QString text = decoded ? decoded->text : QString();
    return tm_createFormattedDocWithBody(path, QStringLiteral("<pre class=\"tm_plain\">%1</pre>").arg(text.toHtmlEscaped()));
}

static QString pageOfImage(const QString &path)
{
    const QString url = QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
    return tm_createFormattedDocWithBody(
        path, QStringLiteral("<p class=\"tm_image\"><img src=\"%1\" alt=\"%2\"></p>")
                  .arg(url, lastPathComponent(path).toHtmlEscaped()));
}

static QString pageOfUnknown(const QString &path)
{
    const QFileInfo file(path);
    const QString kind = pathExtension(path).isEmpty() ? localized(TOMELET_TEXT("Document"))
                                                       : pathExtension(path).toUpper();
    return tm_createFormattedDocWithBody(
        path, QStringLiteral("<div class=\"tm_card\"><p class=\"tm_card_name\">%1</p><p>%2 · %3 · %4</p></div>")
                  .arg(file.fileName().toHtmlEscaped(), kind.toHtmlEscaped(), QLocale().formattedDataSize(file.size()),
                       QLocale().toString(file.lastModified(), QLocale::ShortFormat).toHtmlEscaped()));
}

QString pageForItem(const QString &path)
{
    const QString extension = lowerExtension(path);
    if (hasMarkdownExtension(path)) return pageOfMarkdown(path);
    if (extension == u"html" || extension == u"htm") {
        const auto decoded = readTextFile(path);
        return decoded ? decoded->text : tm_createFormattedDocWithBody(path, {});
    }
    if (hasImageExtension(path)) return pageOfImage(path);
    if (hasPlainTextExtension(path)) return pageOfText(path);
    // Files without an extension are mostly text: README, LICENSE, Makefile.
    if (extension.isEmpty() && QFileInfo(path).size() < 1024 * 1024) return pageOfText(path);
    return pageOfUnknown(path);
}

} // namespace tomelet
