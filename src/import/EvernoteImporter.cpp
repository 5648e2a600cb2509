// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/EvernoteImporter.h"

#include "conversion/MarkdownToHtml.h"
#include "conversion/TextUtilities.h"
#include "foundation/Clock.h"
#include "foundation/Folder.h"
#include "foundation/HtmlEntities.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/SafeWriter.h"
#include "import/ExportedNotes.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "organising/contexts/Contexts.h"

#include <QCryptographicHash>
#include <QFile>
#include <QXmlStreamReader>

namespace tomelet {

namespace {

constexpr qint64 kilobyte = 1024;

// Titles hold what pages hold, and the file's DTD is out of reach. The answer is read as XML once more.
class PageEntities final : public QXmlStreamEntityResolver
{
public:
    QString resolveUndeclaredEntity(const QString &name) override
    {
        return withEntitiesResolved(u'&' + name + u';').toHtmlEscaped();
    }
};

// Opening a file to set its date does not change it.
void setModificationDate(const QString &path, const QDateTime &date)
{
    QFile file(path);
    if (file.open(QIODevice::ReadWrite)) file.setFileTime(date, QFile::FileModificationTime);
}

} // namespace

TMLTEvernoteImporter::TMLTEvernoteImporter(QString path, QString book)
    : m_path(std::move(path))
    , m_book(std::move(book))
{}

void TMLTEvernoteImporter::start(const Progress &progress)
{
    QFile file(m_path);
    if (!file.open(QIODevice::ReadOnly)) {
        m_fault = file.errorString();
        return;
    }
    PageEntities entities;
    QXmlStreamReader reader(&file);
    reader.setEntityResolver(&entities);
    bool goesOn = true;
    while (goesOn && !reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            m_openElements.append(reader.name().toString());
            logLine(QStringLiteral("Processing Element: ") + m_openElements.last());
            if (m_openElements.last() == u"resource") m_processingResources = true;
            break;
        case QXmlStreamReader::Characters: takeCharacters(reader); break;
        case QXmlStreamReader::EndElement:
            logLine(QStringLiteral("end ") + reader.name());
            endElement(reader.name().toString());
            m_openElements.removeLast();
            goesOn = !progress || progress(file.pos() / kilobyte, file.size() / kilobyte);
            break;
        default: break;
        }
    }
    if (reader.hasError()) m_fault = reader.errorString();
    if (!m_tagged.isEmpty()) collectTagsOf(m_tagged);
}

// A file is by far the longest text; it takes a byte a character.
void TMLTEvernoteImporter::takeCharacters(const QXmlStreamReader &reader)
{
    if (m_processingResources && isPartOf("resource") && m_openElements.last() == u"data")
        m_data += reader.text().toLatin1();
    else if (!m_openElements.isEmpty()) m_currentElement += reader.text();
}

void TMLTEvernoteImporter::endElement(const QString &name)
{
    if (m_processingResources) endOfResourcePart(name);
    else if (name == u"note") finishNote();
    else endOfNotePart(name);
    m_currentElement.clear();
}

bool TMLTEvernoteImporter::isPartOf(const char *parent) const
{
    return m_openElements.size() > 1 && m_openElements[m_openElements.size() - 2] == QLatin1StringView(parent);
}

// -- files ------------------------------------------------------------------------------------------------------------

void TMLTEvernoteImporter::endOfResourcePart(const QString &name)
{
    if (name == u"file-name") takeFileName(m_currentElement.trimmed());
    else if (name == u"mime") m_mime = m_currentElement.trimmed();
    else if (name == u"resource") writeResource();
}

void TMLTEvernoteImporter::takeFileName(const QString &text)
{
    const QString name = tm_escapeIllegalCharacters(text).replace(u' ', u'-');
    if (name.isEmpty()) return;
    if (m_imagesFolder.isEmpty()) m_imagesFolder = tm_imagesFolderAtMyPath(joinPath(m_book, name));
    m_fileName = lastPathComponent(tm_uniqueNameForFileatPath(name, m_imagesFolder));
}

void TMLTEvernoteImporter::writeResource()
{
    const QByteArray bytes = QByteArray::fromBase64(m_data);
    const QString hash = QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Md5).toHex());
    QString name = hash;
    if (!m_fileName.isEmpty()) m_hashFilenameDictionary.insert(hash, name = m_fileName);
    else if (!m_mime.isEmpty()) name += u'.' + tm_extensionForMimeType(m_mime);
    if (m_imagesFolder.isEmpty()) m_imagesFolder = tm_imagesFolderAtMyPath(joinPath(m_book, name));
    (void)writeFile(joinPath(m_imagesFolder, name), bytes); // a missing picture is no reason to lose the note
    m_processingResources = false;
    m_data.clear();
    m_fileName.clear();
    m_mime.clear();
}

// -- notes ------------------------------------------------------------------------------------------------------------

void TMLTEvernoteImporter::takeTitle(const QString &text)
{
    const QString title = text.isEmpty() ? localized(TOMELET_TEXT("Untitled")) : text;
    m_notePath = tm_uniqueNameForFileatPath(tm_escapeIllegalCharacters(title) + QStringLiteral(".html"), m_book);
}

// The tasks that newer exports have in their notes bear titles and dates of their own.
void TMLTEvernoteImporter::endOfNotePart(const QString &name)
{
    const bool isOfNote = isPartOf("note");
    const QString text = m_currentElement.trimmed();
    if (name == u"title" && isOfNote) return takeTitle(text);
    if (name == u"content") {
        if (isOfNote) m_content = m_currentElement;
        return;
    }
    if (name.toLower() == u"updated") {
        if (isOfNote && !text.isEmpty()) m_modifiedDate = dateFromEvernoteDate(text);
        return;
    }
    if (m_notePath.isEmpty() || text.isEmpty()) return;
    if (name == u"created" && isOfNote) m_created = dateFromEvernoteDate(text);
    else if (name == u"tag" && isOfNote) m_tags.append(text);
    else if (name == u"source-url") m_properties.insert(QStringLiteral("URL"), text);
    else m_properties.insert(name, text);
}

void TMLTEvernoteImporter::finishNote()
{
    if (!m_notePath.isEmpty()) writeNote();
    m_notePath.clear();
    m_content.clear();
    m_properties.clear();
    m_tags.clear();
    m_created = m_modifiedDate = QDateTime();
}

// The properties are there before the document, which is written once, with the style that it has now: a disk takes
// longer than all else. Its date is set when nothing writes it any more.
void TMLTEvernoteImporter::writeNote()
{
    m_tags.removeDuplicates();
    if (!m_tags.isEmpty()) m_properties.insert(QStringLiteral("Tags"), QVariantList(m_tags.begin(), m_tags.end()));
    if (m_created.isValid()) m_properties.insert(QStringLiteral("CreationDate"), m_created);
    setProperties(m_notePath, m_properties);
    const QString body = tm_getInnerHTML(pageOfNote(m_content, m_hashFilenameDictionary));
    const QString page = pageFrame(m_notePath, lastPathComponent(pathWithoutExtension(m_notePath)), body);
    if (const auto written = writeFile(m_notePath, page.toUtf8()); !written) return logLine(written.message);
    if (m_modifiedDate.isValid() && m_modifiedDate != farPast()) setModificationDate(m_notePath, m_modifiedDate);
    m_notes.append(m_notePath);
    if (!m_tags.isEmpty()) m_tagged.append(m_notePath);
}

} // namespace tomelet
