// SPDX-License-Identifier: GPL-3.0-or-later
// One save of a document apart from its view: what the view held, and what follows from that. Everything but the fields
// that it begins with may be found out on any thread.
#pragma once

#include "editor/DocumentFacts.h"
#include "editor/DocumentForms.h"
#include "editor/DocumentView.h"

#include <QByteArray>
#include <QString>

namespace tomelet {

struct DocumentSave
{
    // What it begins with.
    QString path; ///< "" for a document without a file yet
    QString book;
    DocumentViewKind kind = DocumentViewKind::PlainText;
    bool isForeignPage = false;
    QString held;        ///< by the view: the text, or the body of the page
    QString loaded;      ///< the text with its own line ends as it was read, or the page
    QString visibleText; ///< of the page
    TextForm form;
    QString md5hash; ///< when editing began

    // read(): what is to be saved.
    QString text;
    bool isUnchanged = false;

    // make(): what goes into the file, and what it says.
    QByteArray bytes;
    QString md5OfText;
    QString md5OfBytes;
    TextFacts facts;

    void read();
    void make();
    /// The text as the file holds it.
    [[nodiscard]] QString finalForm() const;
    [[nodiscard]] QString plainText() const;
    /// The visible text of a page into the cache, where search finds it; nothing for texts.
    void writeSidecarForWebview() const;
};

} // namespace tomelet
