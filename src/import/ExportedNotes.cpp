// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/ExportedNotes.h"

#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Extensions.h"

#include <QStringList>

namespace tomelet {

QDateTime dateFromEvernoteDate(const QString &text)
{
    QDateTime date;
    if (text.endsWith(u'Z') && text.contains(u'-')) date = QDateTime::fromString(text, Qt::ISODateWithMs);
    else if (text.size() == 16 && text.endsWith(u'Z') && text[8] == u'T')
        date = QDateTime(QDate::fromString(text.first(8), QStringLiteral("yyyyMMdd")),
                         QTime::fromString(text.sliced(9).chopped(1), QStringLiteral("HHmmss")), Qt::UTC);
    return date.isValid() ? date.toUTC() : platform().clock.now();
}

namespace {

// `hash="abc"` gives abc for "hash=".
QString attributeOf(const QStringList &parts, const QString &marker)
{
    for (const QString &part : parts)
        if (part.contains(marker)) return QString(part).remove(marker).remove(u'"').remove(u'\'');
    return {};
}

// What would end a reference, or mean something else in one.
QString inReference(const QString &name)
{
    QString safe;
    for (const QChar unit : name) {
        if (QStringView(u"%#()[]").contains(unit)) safe += u'%' + QString::number(unit.unicode(), 16).toUpper();
        else safe += unit;
    }
    return safe;
}

QString elementFor(const QString &reference, const QString &extension)
{
    static const QStringList sounds{QStringLiteral("m4a"), QStringLiteral("mp3"), QStringLiteral("aiff"),
                                    QStringLiteral("flac")};
    static const QStringList films{QStringLiteral("m4v"), QStringLiteral("mp4"), QStringLiteral("mov"),
                                   QStringLiteral("wav"), QStringLiteral("mpg")};
    // The bare name is how players have always been written.
    const auto player = [&reference](const QString &name) {
        return QStringLiteral("<br/>&nbsp;<%1 src=\"%2\" controls></%1>&nbsp;<br/>").arg(name, reference);
    };
    if (sounds.contains(extension)) return player(QStringLiteral("audio"));
    if (films.contains(extension)) return player(QStringLiteral("video"));
    return QStringLiteral("<a href=\"TMImages/%1\"><img src=\"TMImages/%1\"></a>").arg(reference);
}

QString mediaElement(const QString &attributes, const QHash<QString, QString> &names)
{
    const QStringList parts = attributes.split(u' ', Qt::SkipEmptyParts);
    const QString hash = attributeOf(parts, QStringLiteral("hash=")).toLower();
    const QString type = attributeOf(parts, QStringLiteral("type="));
    const QString extension = type.isEmpty() ? QString() : tm_extensionForMimeType(type);
    QString name = names.value(hash);
    if (name.isEmpty()) {
        name = hash;
        if (pathExtension(name).isEmpty() && !extension.isEmpty()) name += u'.' + extension;
    }
    return elementFor(inReference(name), extension);
}

// One way through the text: a note can have thousands of pictures. Behind the last ">" no tag ends, and looking for one
// from each beginning would take long.
QString withMedia(const QString &content, const QHash<QString, QString> &names)
{
    const PatternMatches matches = matchesOfPattern(content, QStringLiteral("<en-media (.*?)/?>"),
                                                    PatternCaseInsensitive, {0, content.lastIndexOf(u'>') + 1});
    QString page;
    qsizetype done = 0;
    for (size_t i = 0; i < matches.size(); ++i) {
        const Range range = matches[i].range();
        page += QStringView(content).sliced(done, range.location - done);
        page += mediaElement(substring(content, matches[i].group(1)), names);
        done = range.end();
    }
    return page + QStringView(content).sliced(done);
}

} // namespace

QString pageOfNote(QString content, const QHash<QString, QString> &hashFilenameDictionary)
{
    content =
        regexSweep(content, QStringLiteral("<en-note(\\s[^<>]*)?>"), QStringLiteral("<html>\n<head></head>\n<body>\n"));
    content.replace(QStringLiteral("</en-note>"), QStringLiteral("</body>\n</html>"));
    content = regexSweep(content, QStringLiteral("<en-todo\\s[^<>]*checked=\"true\"[^<>]*>"),
                         QStringLiteral("<input type=\"checkbox\" class=\"tm_checkbox\" checked>"));
    content = regexSweep(content, QStringLiteral("<en-todo(\\s[^<>]*)?/?>"),
                         QStringLiteral("<input type=\"checkbox\" class=\"tm_checkbox\">"));
    content.remove(QStringLiteral("</en-todo>"));
    return withMedia(content, hashFilenameDictionary).remove(QStringLiteral("</en-media>"));
}

} // namespace tomelet
