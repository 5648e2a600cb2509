// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/tasks/TaskMirror.h"

#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/Root.h"
#include "library/TextFile.h"

namespace tomelet {

namespace {

constexpr qsizetype longestTitleInName = 100;

// The document that the task was taken from; "" for none.
QString sourceOf(const QString &path)
{
    QString url = tm_propertyForKey(path, QStringLiteral("URL")).toString();
    if (!url.startsWith(u"tomelet://")) return {};
    url = percentDecoded(url.remove(QStringLiteral("tomelet://show/"))).remove(QStringLiteral("tomelet://"));
    const QString source = joinPath(tomeletRoot(), url);
    // The extension counts as it is spelled.
    const QString extension = pathExtension(source);
    return extension == u"html" || builtInPlainTextExtensions().contains(extension) ? source : QString();
}

// A long title was cut when the file was named, so that the text has to tell it.
QString titleOf(const QString &path)
{
    const QString title = pathWithoutExtension(lastPathComponent(path)).normalized(QString::NormalizationForm_C);
    if (title.size() <= longestTitleInName || !path.endsWith(u"txt")) return title;
    const auto text = readTextFile(path);
    return text ? text->text.section(u'\n', 0, 0).section(u'\r', 0, 0).trimmed() : title;
}

struct Rewrite
{
    QString marker; ///< a pattern for what stands in the line now
    QString replacement;
};

// A check box has no sign for "canceled", so that a canceled task becomes a plain item and the way back finds
// that.
Rewrite rewriteTo(TaskState state, const QString &marker)
{
    const bool checkBox = marker == u"- [ ]";
    switch (state) {
    case TaskState::Done:
        return {tm_stringByEscapingWildcards(marker), checkBox ? QStringLiteral("- [x]") : QStringLiteral("✓")};
    case TaskState::Canceled:
        if (checkBox) return {QStringLiteral("- \\[x\\]"), QStringLiteral("- ")};
        return {QStringLiteral("✓"), QStringLiteral("×")};
    default: return {checkBox ? QStringLiteral("- ") : QStringLiteral("×"), marker};
    }
}

} // namespace

void mirrorTaskState(const QString &path, TaskState state)
{
    const QString marker = settings().string(QStringLiteral("markTaskWithCharacter"));
    const QString source = marker.isEmpty() ? QString() : sourceOf(path);
    if (source.isEmpty()) return;
    auto document = readTextFile(source);
    if (!document) return logLine(QStringLiteral("error: %1 cannot be read").arg(source));

    const Rewrite rewrite = rewriteTo(state, marker);
    // The title is taken as a pattern, so that one that is none finds nothing.
    const QString inner = u'(' + rewrite.marker + QStringLiteral(")[ \t]+") + titleOf(path) + QStringLiteral("\\s*");
    const QString pattern =
        source.endsWith(u"html") ? QStringLiteral(">\\s*") + inner + u'<' : QStringLiteral("^\\s*") + inner + u'$';
    const Range place = rangeOfPattern(document->text, pattern, PatternLineAnchored, wholeRange, 1);
    if (!place.isFound()) return;
    replaceRange(document->text, place, rewrite.replacement);
    const auto bytes = encodeText(document->text, document->encoding, document->byteOrderMark);
    if (!bytes || !writeFile(source, *bytes)) return logLine(QStringLiteral("error: %1 was not written").arg(source));
    announceFile(source);
}

} // namespace tomelet
