// SPDX-License-Identifier: GPL-3.0-or-later
// One save of a document apart from its view: what the view held, and what follows from that. Everything but the fields
// that it begins with may be found out on any thread.
#pragma once

#include "editor/DocumentFacts.h"
#include "editor/DocumentForms.h"
#include "editor/DocumentView.h"
#include "foundation/SafeWriter.h"

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>

namespace tomelet {

struct DocumentSave
{
    // What it begins with.
    QString path;         ///< of the file; of a document without one yet, where it will go
    QString previousPath; ///< before the name followed the title
    QString book;
    bool isNew = false;    ///< there is no file yet
    bool isForced = false; ///< it is written even if the text is the same
    bool isTyping = false; ///< somebody is at it: the name stays
    DocumentViewKind kind = DocumentViewKind::PlainText;
    bool isForeignPage = false;
    bool isCombined = false; ///< Markdown that is stored as a page
    QString held;            ///< by the view: the text, or the body of the page
    QString loaded;          ///< the text with its own line ends as it was read, or the page
    QString visibleText;     ///< of the page, or the text as the view has it
    TextForm form;
    QString md5hash;     ///< when editing began
    QString md5OfFile;   ///< as it was read or last written; "" when nobody knows
    quint64 changes = 0; ///< that had been typed

    // read(): what is to be saved.
    QString text;
    bool isUnchanged = false;

    // make(): what goes into the file, and what it says.
    QByteArray bytes;
    QString md5OfText;
    QString md5OfBytes;
    TextFacts facts;

    // run(): all this, on the disk but without a name.
    bool isForeign = false;         ///< somebody else wrote the file; then nothing was made
    std::optional<FileStamp> stamp; ///< of the file that was compared
    std::unique_ptr<StagedFile> file;

    void read();
    void make();
    void run();
    /// The text as the file holds it.
    [[nodiscard]] QString finalForm() const;
    [[nodiscard]] QString plainText() const;
    /// Somebody else wrote the file since it was read or last written.
    [[nodiscard]] bool fileIsForeign() const;

private:
    void writeSidecarForWebview() const;
};

} // namespace tomelet
