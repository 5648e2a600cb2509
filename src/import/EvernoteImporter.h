// SPDX-License-Identifier: GPL-3.0-or-later
// An export file of Evernote as formatted documents with their pictures, dates, contexts and properties.
#pragma once

#include "foundation/Progress.h"

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QVariantMap>

class QXmlStreamReader;

namespace tomelet {

/// Reads the file element by element, so that no more of it is in memory than one note or one of its files. A note is
/// written when its end was read; what comes of a file that breaks off are the notes before.
class TMLTEvernoteImporter
{
public:
    /// `book` takes the documents, its folder of embedded images their files.
    TMLTEvernoteImporter(QString path, QString book);

    /// Tells how much of the file was read, in KB. Stopped, the notes so far stay.
    void start(const Progress &progress = {});
    /// The documents, in the order of the file.
    [[nodiscard]] const QStringList &notes() const { return m_notes; }
    /// Why the rest of the file could not be read; "" when all of it was, or the import was stopped.
    [[nodiscard]] const QString &fault() const { return m_fault; }

private:
    void endElement(const QString &name);
    void endOfResourcePart(const QString &name);
    void endOfNotePart(const QString &name);
    void takeCharacters(const QXmlStreamReader &reader);
    void takeTitle(const QString &text);
    void takeFileName(const QString &text);
    void writeResource();
    void finishNote();
    void writeNote();
    [[nodiscard]] bool isPartOf(const char *parent) const;

    QString m_path;
    QString m_book;
    QString m_imagesFolder;
    QStringList m_openElements;
    QString m_currentElement; ///< the text since the last end of an element
    bool m_processingResources = false;
    QHash<QString, QString> m_hashFilenameDictionary;

    // The note in hand. Without a path there is none.
    QString m_notePath;
    QString m_content;
    QVariantMap m_properties;
    QStringList m_tags;
    QDateTime m_created;
    QDateTime m_modifiedDate;

    // The file in hand.
    QByteArray m_data; ///< as base64
    QString m_fileName;
    QString m_mime;

    QStringList m_notes;
    QStringList m_tagged; ///< those of them that have contexts
    QString m_fault;
};

} // namespace tomelet
