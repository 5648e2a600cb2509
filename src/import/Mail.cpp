// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/Mail.h"

#include "conversion/Discount.h"
#include "conversion/Patterns.h"
#include "conversion/TextUtilities.h"
#include "foundation/Platform.h"
#include "foundation/TextCodec.h"
#include "import/MailDate.h"
#include "import/MailParts.h"
#include "import/MailText.h"
#include "library/PathForms.h"

namespace tomelet {

namespace {

const QString bodyTag = QStringLiteral("<body.*?>");

// -- the block on top -------------------------------------------------------------------------------------------------

QString cleaned(QString name)
{
    return name.replace(QStringLiteral("\\("), QStringLiteral("("))
        .replace(QStringLiteral("\\)"), QStringLiteral(")"))
        .remove(u'"');
}

struct Field
{
    bool found = false;
    QString value;
};

Field field(const QString &header, const QString &pattern)
{
    const Range range = rangeOfPattern(header, pattern, PatternLineAnchored, wholeRange, 1);
    return {range.isFound(), substring(header, range)};
}

QString senderLine(const QString &header)
{
    const Field from = field(header, QStringLiteral("^From: (.*?)(<|$)"));
    if (!from.found) return {};
    const Field address = field(header, QStringLiteral("^From: .*?<(.*?)>"));
    const QString name = cleaned(from.value);
    const QString shown = address.found ? QString(QStringLiteral("<a href=\"mailto:") + address.value +
                                                  QStringLiteral("\">") + name + QStringLiteral("</a>"))
                                        : name;
    return QStringLiteral("<div style=\"padding: **HeaderPadding**%; font-family: **TomeletFont**;\"><b>") + shown +
           QStringLiteral("</b><br/>");
}

QString receiverLine(const QString &header)
{
    const Field to = field(header, QStringLiteral("^To: (.*?)$"));
    if (!to.found) return {};
    const Field address = field(header, QStringLiteral("^To: .*?<(.*?)>"));
    const QString names = cleaned(to.value).replace(u'<', QStringLiteral("&lt;")).replace(u'>', QStringLiteral("&gt;"));
    if (!address.found) return QStringLiteral("To: ") + names + QStringLiteral("<br/>\n");
    return QStringLiteral("To: <a href=\"mailto:") + address.value + QStringLiteral("\">") + names +
           QStringLiteral("</a><br/>\n");
}

QString headerBlock(const QString &header)
{
    QString block = senderLine(header) + receiverLine(header);
    const QString date = readableMailDate(field(header, QStringLiteral("^Date: (.*?)(\\(|$)")).value);
    if (!date.isEmpty())
        block += QStringLiteral("<font color=\"#999\">") + date + QStringLiteral("</font><hr/><br/>\n");
    if (const Field subject = field(header, QStringLiteral("^Subject: (.*?)$")); subject.found)
        block += QStringLiteral("<div style=\"font-size: 1.1em; line-height: 1.1em; font-weight: bold;\">") +
                 subject.value + QStringLiteral("</div><div style=\"padding-bottom: 20px;\"></div>\n");
    return block;
}

// -- the text ---------------------------------------------------------------------------------------------------------

QString pageOfHtml(const QStringList &parts)
{
    if (parts.size() > 1) {
        QStringList bodies;
        for (const QString &part : parts) bodies.append(tm_getInnerHTML(part));
        return wrapTextInHTML(bodies.join(u'\n'));
    }
    const QString &html = parts.first();
    const bool hasBody = rangeOfPattern(html, bodyTag).isFound();
    if (hasBody && !html.contains(u"<style")) return html;
    const Range body = rangeOfPattern(html, QStringLiteral("<body.*?>(.*?)</body>"), PatternDotAll, wholeRange, 1);
    return wrapTextInHTML(body.isFound() ? substring(html, body) : html);
}

QString pageOfText(const QStringList &parts)
{
    QString text = parts.join(QStringLiteral("\n\n")).trimmed();
    return wrapTextInHTML(convertToHTML(text.replace(u'\n', QStringLiteral("  \n"))));
}

// -- files ------------------------------------------------------------------------------------------------------------

QString addressOf(const MailFile &file)
{
    return QStringLiteral("file://") + percentEncodedPath(file.path);
}

QString attachmentLinks(const QList<MailFile> &files)
{
    QString links;
    for (const MailFile &file : files)
        links += QStringLiteral("📎 <a href=\"") + addressOf(file) + QStringLiteral("\">") + file.name.toHtmlEscaped() +
                 QStringLiteral("</a><br/>\n");
    return links;
}

// Pictures take their places in the HTML; those that have none are returned, to stand behind the text.
QString placeImages(QString &page, const QList<MailFile> &images)
{
    QString rest;
    for (const MailFile &image : images) {
        const QString reference = QStringLiteral("cid:") + image.contentId;
        if (!image.contentId.isEmpty() && page.contains(reference, Qt::CaseInsensitive))
            page.replace(reference, addressOf(image), Qt::CaseInsensitive);
        else
            rest += QStringLiteral(
                        "<a href=\"%1\"><img style=\"width:auto; max-width:96%; height:auto;\" src=\"%1\"></a>\n")
                        .replace(QStringLiteral("%1"), addressOf(image));
    }
    return rest;
}

QString withAtEnd(const QString &page, const QString &html)
{
    const qsizetype end = page.lastIndexOf(u"</body>");
    return end < 0 ? QString(page + html) : QString(page.left(end) + html + page.mid(end));
}

QString withBlockOnTop(const QString &page, const QString &block)
{
    const Range body = rangeOfPattern(page, bodyTag);
    return body.isFound() ? QString(page.left(body.end()) + block + page.mid(body.end())) : QString(block + page);
}

} // namespace

QString tm_emlToHTML(const QString &text)
{
    MailMessage message = splitMessage(QString(text).remove(u'\r'));
    const bool quoted = message.header.toLower().contains(u"content-transfer-encoding: quoted-printable");
    if (quoted) message.body = stringWithQuotedPrintableString(message.body);
    const MailParts parts = partsOfMessage(message, quoted);
    QString page = parts.html.isEmpty() ? pageOfText(parts.plain) : pageOfHtml(parts.html);
    const QString images = placeImages(page, parts.images);
    page = withAtEnd(page, attachmentLinks(parts.attachments) + images);
    page = withBlockOnTop(page, headerBlock(message.header));
    page.replace(QStringLiteral("**BodyPadding**"), QStringLiteral("5"))
        .replace(QStringLiteral("**HeaderPadding**"), QStringLiteral("5"));
    page = regexSweep(page, QStringLiteral("<br>"), QStringLiteral("<br/>"));
    return regexSweep(page, QStringLiteral("<br.*?>"), QStringLiteral("<br/>"));
}

// -- frames -----------------------------------------------------------------------------------------------------------

// UTF-8 that was read as Latin-1, when reading it rightly makes it no shorter.
static QString repaired(const QString &text)
{
    const QByteArray latin = text.toLatin1();
    if (QString::fromLatin1(latin) != text) return text;
    const auto read = decodeTextAs(latin, TextEncoding::Utf8);
    return read && read->size() >= text.size() ? *read : text;
}

QString convertToHTML(const QString &text)
{
    const bool dropsComments = settings().boolean(QStringLiteral("ignoreCommentsForWordCount"));
    return discountFragment(repaired(dropsComments ? tm_stringByRemovingComments(text) : text));
}

QString wrapTextInHTML(const QString &fragment)
{
    return QStringLiteral(
               "<html>\n<head>\n"
               "<meta name=\"viewport\" content=\"initial-scale=1.0, maximum-scale=1.0, user-scalable=no\">\n"
               "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\" />\n"
               "<style>\n"
               "\tbody { -webkit-text-size-adjust: none; }\n"
               "\thr { height: 1px; background-color: #ddd; border-width: 0; }\n"
               "\tblockquote { margin: 2em 2em 2em 0em; padding: 0 .75em 0 1.25em; border-left: 1px solid "
               "darkblue; color: darkblue; }\n"
               "\tblockquote blockquote\t{ border-left: 1px solid darkgreen; color: darkgreen; }\n"
               "\tblockquote blockquote blockquote\t{ border-left: 1px solid brown; color: brown; }\n"
               "\tblockquote blockquote blockquote blockquote\t{ border-left: 1px solid darkblue; color: "
               "darkblue; }\n"
               "\ta { color: #02aaff; text-decoration: none; }\n"
               "</style>\n"
               "</head>\n"
               "<body style=\"font-family:**TomeletFont**; padding: **BodyPadding**%; color:black; "
               "font-size:**TomeletFontSize**px;\">\n") +
           fragment + QStringLiteral("\n</body>\n</html>");
}

} // namespace tomelet
