// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/Preview.h"

#include "conversion/Discount.h"
#include "conversion/MarkdownPreparation.h"
#include "conversion/MarkdownToHtml.h"
#include "conversion/Patterns.h"
#include "conversion/TextUtilities.h"
#include "conversion/WikiLinks.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "import/Opml.h"
#include "library/Appearance.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "library/TextFile.h"

#include <QFile>

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

#include <memory>

namespace tomelet {

namespace {

constexpr qsizetype longestPreview = 450;
constexpr qsizetype cutPreview = 449;
constexpr qsizetype littleText = 99;

QString textOfPage(const poppler::document &document, int number)
{
    const std::unique_ptr<poppler::page> page(document.create_page(number));
    if (!page) return {};
    const poppler::byte_array text = page->text().to_utf8();
    return QString::fromUtf8(text.data(), qsizetype(text.size()));
}

QString readUtf8(const QString &path)
{
    return QString::fromUtf8(readFile(path).value_or(QByteArray()));
}

QString readDecoded(const QString &path)
{
    const auto decoded = readTextFile(path);
    return decoded ? decoded->text : QString();
}

// What was kept of the visible text; a text of the empty window is stale and goes.
QString sideCarText(const QString &path)
{
    const QString sideCar = tm_sideCarPath(path);
    const QString text = readUtf8(sideCar);
    if (!text.startsWith(localized(TOMELET_TEXT("No Document Selected")))) return text;
    QFile::remove(sideCar);
    return {};
}

QString recognisedText(const QString &path)
{
    if (!hasImageExtension(path)) return {};
    const QString file = tm_propertyForKey(path, QStringLiteral("OCR")).toString();
    if (file.isEmpty()) return {};
    return readUtf8(itemExists(file) ? file : fullPathOf(file));
}

QString textOfPdf(const QString &path)
{
    const QString text = beginningOfPdf(path);
    if (!text.isEmpty()) (void)writeFile(tm_sideCarPathCreatingParentIfNeeded(path), text.toUtf8());
    return text;
}

QString textOf(const QString &path)
{
    const QString extension = lowerExtension(path);
    if (builtInPlainTextExtensions().contains(extension)) return readDecoded(path).trimmed();
    if (extension.startsWith(u"htm") || isNonEmptyProperty(tm_propertyForKey(path, QStringLiteral("Markdown")))) {
        const QString page = readDecoded(path);
        return page.contains(plainRepresentationMark) ? tm_htmlToPlainText(page) : tm_htmlToPlainQuick(page);
    }
    QString kept = sideCarText(path);
    if (kept.isEmpty()) kept = recognisedText(path);
    if (!kept.isEmpty()) return kept.contains(u"<!DOCTYPE html>") ? tm_htmlToPlainQuick(kept) : kept;
    if (extension == u"opml") return tm_htmlToPlainQuick(tm_OPMLToHTML(readDecoded(path)));
    return extension == u"pdf" ? textOfPdf(path) : QString();
}

// The first steps of a page alone: the preview shows text, not style.
QString renderedText(const QString &path, QString text)
{
    const Settings &values = settings();
    if (values.boolean(QStringLiteral("ignoreCommentsForWordCount"))) text = tm_stringByRemovingComments(text);
    if (!values.boolean(QStringLiteral("useMarkdownStrictly"))) text = tm_makeEveryNewlineaLinebreak(text);
    if (text.contains(u"[[")) text = tm_makeWikiLinksMarkdownLinks(text);
    const bool own = tm_markdownConverterAtPath(path) == OwnConverter;
    return tm_htmlToPlainQuick(own ? tm_ownMarkdownWithPath(text, path) : tm_markdownWithPandoc(text, true, false))
        .trimmed();
}

QString bareLine(const QString &line)
{
    static const QStringView marks = u"-_+#& ";
    qsizetype begin = 0;
    qsizetype end = line.size();
    while (begin < end && marks.contains(line[begin])) ++begin;
    while (end > begin && marks.contains(line[end - 1])) --end;
    return line.mid(begin, end - begin).toLower();
}

QString withoutTitle(const QString &path, const QString &title, const QString &text)
{
    QStringList lines = text.split(u'\n');
    const QString name = lastPathComponent(pathWithoutExtension(path)).toLower();
    if (bareLine(lines.first()) == name || tm_stringMatchesFirstLineOfText(title, text)) lines.removeFirst();
    return lines.join(u'\n').trimmed();
}

} // namespace

QString beginningOfPdf(const QString &path)
{
    poppler::set_debug_error_function([](const std::string &, void *) {}, nullptr);
    const std::unique_ptr<poppler::document> document(
        poppler::document::load_from_file(QFile::encodeName(path).toStdString()));
    if (!document || document->is_locked()) return {};
    QString text = textOfPage(*document, 0);
    if (text.size() <= littleText && document->pages() >= 2) text += textOfPage(*document, 1);
    return text;
}

QString tm_previewOfNoteWithTitle(const QString &path, const QString &title)
{
    const QString description = storedProperties(path).value(QStringLiteral("Description")).toString();
    if (!description.isEmpty()) return description;
    QString text = textOf(path);
    if (text.size() > longestPreview) text = text.left(cutPreview).trimmed();
    if (hasMarkdownExtension(path)) text = renderedText(path, text);
    if (text.isEmpty()) return {};
    text = withoutTitle(path, title, text);
    return regexSweep(text, QStringLiteral("[\\n\\r\\u2028\\u2029]+"), QStringLiteral("\n")).trimmed();
}

} // namespace tomelet
