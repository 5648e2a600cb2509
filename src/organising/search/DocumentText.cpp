// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/search/DocumentText.h"

#include "conversion/TextUtilities.h"
#include "foundation/SafeWriter.h"
#include "foundation/TextCodec.h"
#include "import/MailParts.h"
#include "import/MailText.h"
#include "import/WebArchive.h"
#include "library/Extensions.h"
#include "organising/search/OfficeText.h"
#include "organising/search/PageText.h"
#include "organising/search/RichText.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

#include <memory>

namespace tomelet {

namespace {

constexpr qint64 largestFile = 32 << 20;
constexpr qint64 largestWebArchive = 256 << 20; // nearly all of it pictures
constexpr qsizetype mostCharacters = 16'000'000;
constexpr qsizetype sniffedBytes = 8192;

// A zero byte is in nearly every file that is no text, and in none that is; a byte-order mark tells of wide text.
bool looksLikeText(const QByteArray &bytes)
{
    if (bytes.startsWith("\xff\xfe") || bytes.startsWith("\xfe\xff")) return true;
    return !QByteArrayView(bytes).first(std::min(bytes.size(), sniffedBytes)).contains('\0');
}

// A page may hold the text that it was made of.
QString textOfAnyPage(const QString &html)
{
    return html.contains(plainRepresentationMark) ? tm_htmlToPlainText(html) : textOfPage(html);
}

QString textOfWebArchive(const QString &path)
{
    if (QFileInfo(path).size() > largestWebArchive) return {};
    return textOfPage(sourceOfWebArchive(path).value_or(QString()));
}

QString textOfMail(QString source)
{
    static const QStringList shown{QStringLiteral("from:"), QStringLiteral("to:"), QStringLiteral("cc:"),
                                   QStringLiteral("date:"), QStringLiteral("subject:")};
    MailMessage message = splitMessage(source.remove(u'\r'));
    QStringList texts;
    for (const QString &line : message.header.split(u'\n'))
        if (shown.contains(line.left(line.indexOf(u':') + 1).toLower())) texts.append(line);
    const bool quoted = message.header.toLower().contains(u"content-transfer-encoding: quoted-printable");
    if (quoted) message.body = stringWithQuotedPrintableString(message.body);
    const MailParts parts = partsOfMessage(message, quoted, MailFiles::PassOver);
    for (const QString &html : parts.html) texts.append(textOfPage(html));
    if (parts.html.isEmpty()) texts += parts.plain;
    return texts.join(u'\n');
}

QString textOfPdf(const QString &path)
{
    poppler::set_debug_error_function([](const std::string &, void *) {}, nullptr);
    const std::unique_ptr<poppler::document> document(
        poppler::document::load_from_file(QFile::encodeName(path).toStdString()));
    if (!document || document->is_locked()) return {};
    QString text;
    for (int number = 0; number < document->pages() && text.size() < mostCharacters; ++number) {
        const std::unique_ptr<poppler::page> page(document->create_page(number));
        if (!page) continue;
        const poppler::byte_array utf8 = page->text().to_utf8();
        text += QString::fromUtf8(utf8.data(), qsizetype(utf8.size())) + u'\n';
    }
    return text;
}

} // namespace

namespace {

QString wholeText(const QString &path)
{
    const QString extension = lowerExtension(path);
    if (extension == u"pdf") return textOfPdf(path);
    if (isOfficeDocument(extension)) return textOfOfficeDocument(path);
    if (extension == u"webarchive") return textOfWebArchive(path);
    if (hasImageExtension(path) || QFileInfo(path).size() > largestFile) return {};
    const auto bytes = readFile(path);
    if (!bytes || !looksLikeText(*bytes)) return {};
    if (bytes->startsWith("{\\rtf")) return textOfRichText(*bytes);
    const QString text = decodeText(*bytes).text;
    if (extension.startsWith(u"htm")) return textOfAnyPage(text);
    return extension == u"eml" ? textOfMail(text) : text;
}

// Signs side by side make a token each, words one for all their letters. Four million characters are always taken.
constexpr qsizetype workOfCharacter = 4;
constexpr qsizetype mostWork = workOfCharacter * mostCharacters;
constexpr qsizetype workOfSigns = 16;

QString cutToMostWork(QString text)
{
    if (text.size() <= mostWork / workOfSigns) return text;
    qsizetype work = 0;
    bool wasLetter = true;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isLetter = text[i].isLetterOrNumber();
        work += isLetter || wasLetter ? workOfCharacter : workOfSigns;
        wasLetter = isLetter;
        if (work > mostWork) return text.first(i);
    }
    return text;
}

} // namespace

QString documentText(const QString &path)
{
    return cutToMostWork(wholeText(path));
}

} // namespace tomelet
