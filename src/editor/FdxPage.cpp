// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/FdxPage.h"

#include "conversion/Edits.h"
#include "conversion/Patterns.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"

namespace tomelet {

// The sheet opens the element that holds both, and that is closed at the end.
static QString withStyleSheet(QString document)
{
    static const QString declaration = QStringLiteral("(<?xml version.*?>\\n)");
    const QByteArray sheet = readFile(resourcePath(QStringLiteral("XSL/Screenplay.xsl"))).value_or(QByteArray());
    const PatternMatches found = matchesOfPattern(document, declaration);
    if (!found.isEmpty()) document.insert(found[0].range().end(), QString::fromUtf8(sheet));
    return document + QStringLiteral("\n</DOC>");
}

QString pageOfFdx(const QString &document)
{
    static const QString scene = QStringLiteral("<Paragraph [^>]*?Type=\"Scene Heading\"[^>]*?>\\s*<Text>");
    const QString page = withStyleSheet(document);
    const PatternMatches scenes = matchesOfPattern(page, scene, PatternDotAll);
    Edits edits;
    for (size_t i = scenes.size(); i-- > 0;) edits.replace({scenes[i].range().end(), 0}, QString::number(i + 1) + u' ');
    return edits.appliedTo(page);
}

} // namespace tomelet
