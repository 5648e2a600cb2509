// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/MailParts.h"

#include "conversion/Patterns.h"
#include "foundation/Directories.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/SafeWriter.h"
#include "import/MailText.h"
#include "library/Extensions.h"
#include "library/PathForms.h"

#include <QCryptographicHash>

namespace tomelet {

namespace {

constexpr int deepestNesting = 100;
constexpr qsizetype longestName = 120;

bool says(const QString &header, const char *words)
{
    return header.contains(QLatin1StringView(words));
}

/// A part with the words of its header in lower case.
struct Part
{
    MailMessage message;
    QString lower;
    bool decoded = false;

    [[nodiscard]] bool isBase64() const { return says(lower, "content-transfer-encoding: base64"); }
    [[nodiscard]] bool isQuoted() const { return says(lower, "content-transfer-encoding: quoted-printable"); }
};

QString decodedText(const Part &part)
{
    if (part.decoded) return part.message.body;
    if (part.isQuoted()) return stringWithQuotedPrintableString(part.message.body);
    if (part.isBase64()) return stringWithBase64Encoding(part.message.body).value_or(QString());
    return part.message.body;
}

// -- files ------------------------------------------------------------------------------------------------------------

QString fileNameOf(const Part &part, const QString &otherwise)
{
    const Range range = rangeOfPattern(part.message.header, QStringLiteral("filename=([^;\n]+)"),
                                       PatternCaseInsensitive, wholeRange, 1);
    const QString name = substring(part.message.header, range).remove(u'"').trimmed();
    return name.isEmpty() ? otherwise : name;
}

QString extensionOf(const Part &part)
{
    const Range type = rangeOfPattern(part.lower, QStringLiteral("content-type: *([a-z0-9.+/-]+)"), 0, wholeRange, 1);
    return type.isFound() ? tm_extensionForMimeType(substring(part.lower, type)) : QStringLiteral("txt");
}

// The name begins with a sum of the content: the same mail shown again writes no second file.
MailFile written(const QByteArray &bytes, const QString &name)
{
    const QString folder = workingDirectory();
    if (!makeFolder(folder)) return {};
    const QByteArray sum = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(16);
    const QString path =
        joinPath(folder, QString::fromLatin1(sum) + u'-' + tm_escapeIllegalCharacters(name).right(longestName));
    if (!itemExists(path) && !writeFile(path, bytes)) return {};
    return {path, name, {}};
}

void add(QList<MailFile> &files, const MailFile &file)
{
    if (!file.path.isEmpty()) files.append(file);
}

void addNestedMessage(MailParts &result, const Part &part)
{
    QString text = part.message.body;
    const bool plain = says(part.lower, "content-transfer-encoding: 7bit") ||
                       says(part.lower, "content-transfer-encoding: 8bit") ||
                       says(part.lower, "content-transfer-encoding: binary");
    if (!plain) text = stringWithQuotedPrintableString(text);
    add(result.attachments, written(text.trimmed().toUtf8(), fileNameOf(part, QStringLiteral("message.eml"))));
}

void addImage(MailParts &result, const Part &part)
{
    if (!part.isBase64()) {
        logLine(QStringLiteral("image with other thatn Base64 encoding"));
        return;
    }
    MailFile file =
        written(bytesOfBase64(part.message.body), fileNameOf(part, QStringLiteral("image.") + extensionOf(part)));
    const Range id = rangeOfPattern(part.message.header, QStringLiteral("content-id: *<(.+?)>"),
                                    PatternCaseInsensitive | PatternDotAll, wholeRange, 1);
    if (id.isFound()) file.contentId = substring(part.message.header, id);
    add(result.images, file);
}

void addAttachment(MailParts &result, const Part &part)
{
    if (!part.isBase64()) logLine(QStringLiteral("octet stream with other thatn Base64 encoding"));
    const QByteArray bytes = part.isBase64() ? bytesOfBase64(part.message.body) : decodedText(part).toUtf8();
    add(result.attachments, written(bytes, fileNameOf(part, QStringLiteral("attachment.") + extensionOf(part))));
}

bool isAttachment(const QString &lower)
{
    return says(lower, "content-type: application/") || says(lower, "content-type: audio/") ||
           says(lower, "content-type: video/") || says(lower, "content-disposition: attachment");
}

// -- walk -------------------------------------------------------------------------------------------------------------

void addPart(MailParts &result, const Part &part, int depth);

// Pieces between the boundaries; the one in front of the first is none, and the one behind the last has no body.
void addPieces(MailParts &result, const MailMessage &message, int depth)
{
    QString boundary = substring(message.header, rangeOfPattern(message.header, QStringLiteral("boundary=(\\S+)"),
                                                                PatternLineAnchored, wholeRange, 1));
    while (boundary.endsWith(u';')) boundary.chop(1);
    while (boundary.startsWith(u';')) boundary.remove(0, 1);
    boundary.remove(u'"');
    if (boundary.isEmpty()) {
        result.plain.append(message.body);
        return;
    }
    const QStringList pieces = message.body.split(QStringLiteral("--") + boundary);
    for (qsizetype i = 1; i < pieces.size(); ++i) {
        const QString piece = pieces[i].startsWith(u'\n') ? pieces[i].mid(1) : pieces[i];
        if (piece.startsWith(u"--") || (!piece.contains(u"\n\n") && !piece.startsWith(u'\n'))) continue;
        const MailMessage inner = splitMessage(piece);
        addPart(result, {inner, inner.header.toLower()}, depth + 1);
    }
}

void addPart(MailParts &result, const Part &part, int depth)
{
    if (depth > deepestNesting) return;
    const QString &lower = part.lower;
    const bool isFile =
        says(lower, "content-type: message/") || says(lower, "content-type: image/") || isAttachment(lower);
    if (says(lower, "content-type: multipart/")) addPieces(result, part.message, depth);
    else if (isFile && result.passesOverFiles) return;
    else if (says(lower, "content-type: message/")) addNestedMessage(result, part);
    else if (says(lower, "content-type: image/")) addImage(result, part);
    else if (isAttachment(lower)) addAttachment(result, part);
    else if (says(lower, "content-type: text/html")) result.html.append(decodedText(part));
    else if (says(lower, "content-type: text/plain") || !says(lower, "content-type:"))
        result.plain.append(decodedText(part));
}

} // namespace

MailMessage splitMessage(const QString &text)
{
    qsizetype cut = text.startsWith(u'\n') ? 0 : text.indexOf(u"\n\n");
    const qsizetype body = cut < 0 ? text.size() : cut + (cut == 0 ? 1 : 2);
    if (cut < 0) cut = text.size();
    QString header = stringWithEncodedWordsString(text.left(cut));
    header.replace(QStringLiteral("\n "), QStringLiteral(" ")).replace(QStringLiteral("\n\t"), QStringLiteral(" "));
    return {header, text.mid(body)};
}

MailParts partsOfMessage(const MailMessage &message, bool decoded, MailFiles files)
{
    MailParts result;
    result.passesOverFiles = files == MailFiles::PassOver;
    addPart(result, {message, message.header.toLower(), decoded}, 0);
    return result;
}

} // namespace tomelet
