// SPDX-License-Identifier: GPL-3.0-or-later
// Reads screenplays in plain text: what a line is follows from its marks, its capitals and the lines around it.
#pragma once

#include "screenplay/FNElement.h"
#include "screenplay/FNTitlePage.h"

#include <QList>
#include <QString>

namespace tomelet {

class FastFountainParser
{
public:
    /// A file in UTF-8, with or without a byte-order mark. One that cannot be read leaves a log line and no elements.
    [[nodiscard]] static FastFountainParser initWithFile(const QString &path);
    [[nodiscard]] static FastFountainParser initWithString(const QString &text);

    /// Any line ends. The time that this takes grows with the length of the text alone.
    void parseContents(const QString &contents);

    QList<FNElement> elements;
    FNTitlePage titlePage;
};

/// The elements of a text without a title page whose line ends are newlines.
[[nodiscard]] QList<FNElement> elementsOfBody(const QString &body);
/// The same where no empty line stands in front of the text: it goes on directly below a line, and below a speaker.
[[nodiscard]] QList<FNElement> elementsBelowLine(const QString &body);
[[nodiscard]] QList<FNElement> elementsBelowSpeaker(const QString &body);

} // namespace tomelet
