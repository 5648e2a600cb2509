// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/DocumentForms.h"

#include "conversion/MarkdownToHtml.h"
#include "conversion/Patterns.h"
#include "conversion/TextUtilities.h"
#include "editor/EditedText.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/Properties.h"

#include <QCryptographicHash>

namespace tomelet {

QString nameWithoutExtension(const QString &path)
{
    return lastPathComponent(pathWithoutExtension(path));
}

QString fileNameFor(const QString &title, const QString &path)
{
    const QString extension = pathExtension(path);
    return extension.isEmpty() ? title : QString(title + u'.' + extension);
}

// Half a pair has no bytes in any encoding.
static QString withoutLoneSurrogates(QString text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (!text[i].isSurrogate()) continue;
        const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair) ++i;
        else text[i] = QChar::ReplacementCharacter;
    }
    return text;
}

QByteArray bytesOfText(const QString &text, TextForm &form)
{
    if (const auto bytes = encodeText(text, form.encoding, form.byteOrderMark)) return *bytes;
    if (form.encoding != TextEncoding::Utf8) {
        form = {};
        logLine(QStringLiteral("Converted to UTF8"));
    }
    return form.byteOrderMark + withoutLoneSurrogates(text).toUtf8();
}

// Every write is atomic here; whoever does not need it loses nothing by it.
bool tm_writeToFile(const QString &text, const QString &path, bool, TextEncoding encoding)
{
    const QByteArray mark = encoding == TextEncoding::Utf16   ? QByteArray("\xff\xfe")
                            : encoding == TextEncoding::Utf32 ? QByteArray("\xff\xfe\0\0", 4)
                                                              : QByteArray();
    const auto bytes = encodeText(text, encoding, mark);
    return bytes && writeFile(path, *bytes);
}

QString md5OfBytes(const QByteArray &bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex().toUpper());
}

QString md5OfText(const QString &text, const TextForm &form)
{
    const auto bytes = encodeText(text, form.encoding);
    return md5OfBytes(bytes ? *bytes : text.toUtf8());
}

bool tm_generatorIsTomelet(const QString &page)
{
    return page.contains(u"<!-- Generator: Tomelet ");
}

bool isCombinedMarkdown(const QString &path)
{
    return lowerExtension(path) == u"html" && tm_propertyForKey(path, QStringLiteral("Markdown")).toString() == u"OK";
}

QString combinedForm(const QString &source)
{
    QString kept = source;
    kept.replace(QStringLiteral("-->"), QStringLiteral("\\-\\-\\>"));
    QString page = tm_markdownToHTML(plainRepresentationMark + kept + QStringLiteral("\n-->"));
    // A text has no name that the page could bear; without a heading it is called by its first line.
    const qsizetype from = page.indexOf(u"<!DOCTYPE") + 1;
    const Range title =
        rangeOfPattern(page, QStringLiteral("<title>(.*?)</title>"), PatternDotAll, {from, Range::notFound}, 1);
    if (title.isFound() && page.indexOf(u"<h1", from) < 0)
        replaceRange(page, title, tm_firstLineOfText(source).toHtmlEscaped());
    return page;
}

QString cleanedBody(const QString &html)
{
    static const std::pair<QString, QString> literals[] = {
        {QStringLiteral("<ul></ul>"), {}},
        {QStringLiteral("<ol></ol>"), {}},
        {QStringLiteral("<li></li>"), {}},
        {QStringLiteral("<h1><br></h1>"), {}},
        {QStringLiteral("<li><li "), QStringLiteral("<li ")},
    };
    static const QString patterns[] = {
        QStringLiteral(R"(<a href="[^>]*?><br></a>)"),
        QStringLiteral(R"(<a href="[^>]*?>&nbsp;</a>)"),
        QStringLiteral(R"(<a href="[^>]*?>\s*?</a>)"),
        QStringLiteral(R"(<div[^>]*?></div>)"),
    };
    QString cleaned = html;
    for (const auto &[from, to] : literals) cleaned.replace(from, to);
    for (const QString &pattern : patterns) cleaned = regexSweep(cleaned, pattern, {});
    return cleaned;
}

namespace {

// Where the target of a link ends whose label is closed here, or the same place.
qsizetype behindTarget(QStringView paragraph, qsizetype at)
{
    if (!paragraph.sliced(at).startsWith(u"](")) return at;
    const qsizetype end = paragraph.indexOf(u')', at);
    return end < 0 ? at : end;
}

// Without the targets of links, which no page shows.
QString lettersAlone(QStringView paragraph)
{
    QString letters;
    for (qsizetype i = 0; i < paragraph.size(); ++i) {
        i = behindTarget(paragraph, i);
        const QChar unit = paragraph[i];
        if (unit.isLetterOrNumber() || unit.isSurrogate()) letters += unit;
    }
    return letters;
}

} // namespace

qsizetype positionOfParagraph(const QString &text, const QString &paragraph)
{
    const QString wanted = lettersAlone(paragraph);
    if (wanted.isEmpty()) return -1;
    qsizetype best = -1;
    for (Range line = paragraphRange(text, {0, 0});; line = paragraphRange(text, {line.end(), 0})) {
        const QString letters = lettersAlone(QStringView(text).sliced(line.location, line.length));
        if (letters == wanted) return line.location;
        if (best < 0 && letters.size() > wanted.size() / 2 && (letters.contains(wanted) || wanted.contains(letters)))
            best = line.location;
        if (line.end() >= text.size()) return best;
    }
}

qsizetype positionOfHeading(const QString &text, const QString &anchor)
{
    const QString wanted = lettersAlone(anchor);
    for (Range line = paragraphRange(text, {0, 0}); !wanted.isEmpty(); line = paragraphRange(text, {line.end(), 0})) {
        const QStringView shown = QStringView(text).sliced(line.location, line.length);
        if (shown.startsWith(u'#') && lettersAlone(shown).compare(wanted, Qt::CaseInsensitive) == 0)
            return line.location;
        if (line.end() >= text.size()) break;
    }
    return -1;
}

} // namespace tomelet
