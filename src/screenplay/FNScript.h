// SPDX-License-Identifier: GPL-3.0-or-later
// A screenplay: its title page and its elements. It is built once, from a text or a file, and written back as a text
// that is read as the same elements.
#pragma once

#include "screenplay/FNElement.h"
#include "screenplay/FNTitlePage.h"

#include <QList>
#include <QString>
#include <QUrl>

namespace tomelet {

class FNScript
{
public:
    /// A file in UTF-8. One that cannot be read leaves a log line and the script empty.
    [[nodiscard]] static FNScript initWithFile(const QString &path);
    [[nodiscard]] static FNScript initWithString(const QString &text);

    void loadFile(const QString &path);
    void loadString(const QString &text);

    /// Title page and body.
    [[nodiscard]] QString stringFromDocument() const;
    [[nodiscard]] QString stringFromTitlePage() const;
    [[nodiscard]] QString stringFromBody() const;
    /// The whole document in UTF-8. False when it could not be written.
    [[nodiscard]] bool writeToFile(const QString &path) const;
    [[nodiscard]] bool writeToURL(const QUrl &url) const;

    QString filename; ///< without the folder; "" for a script from a text
    QList<FNElement> elements;
    FNTitlePage titlePage;
    bool suppressSceneNumbers = false; ///< the text that is written back has none
};

} // namespace tomelet
