// SPDX-License-Identifier: GPL-3.0-or-later
#include "organising/tasks/TaskExtraction.h"

#include "conversion/Patterns.h"
#include "conversion/RegexLayer.h"
#include "conversion/TextUtilities.h"
#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/PropertyStore.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemOperations.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "library/TextFile.h"
#include "organising/contexts/Contexts.h"
#include "organising/dates/DueDateCalendar.h"
#include "organising/dates/Reminders.h"
#include "organising/tasks/TaskLists.h"
#include "organising/tasks/TaskRepeats.h"
#include "organising/tasks/TaskStore.h"
#include "organising/tasks/Tasks.h"

#include <algorithm>

namespace tomelet {

namespace {

QString marker()
{
    return settings().string(QStringLiteral("markTaskWithCharacter"));
}

QStringList markedLines(const QString &text)
{
    const QString mark = marker();
    if (mark.isEmpty()) return {};
    const QString pattern = QStringLiteral("^\\s*%1[ \t]+(.*)$").arg(tm_stringByEscapingWildcards(mark));
    const PatternMatches matches = matchesOfPattern(text, pattern, PatternLineAnchored);
    QStringList texts;
    for (size_t i = 0; i < matches.size(); ++i) texts.append(substring(text, matches[i].group(1)));
    return texts;
}

QStringList taskTexts(const QString &text, int mode)
{
    static const QString rule = QStringLiteral("\n----\n");
    switch (mode) {
    case ExtractLines: return componentsSeparatedByRegex(text, QStringLiteral("\\R"));
    case ExtractParagraphs: return text.split(QStringLiteral("\n\n"));
    case ExtractByRules: return regexSweep(text, QStringLiteral("\\n----+\\s*\\n"), rule).split(rule);
    case ExtractMarked: return markedLines(text);
    default: return {};
    }
}

// -- the target -------------------------------------------------------------------------------------------------------

QString bookOfDocumentsName(const QString &path)
{
    return pathWithoutExtension(path).trimmed();
}

QString inboxForExtraction()
{
    const QString inbox = settings().string(QStringLiteral("defaultInbox"));
    if (!settings().boolean(QStringLiteral("extractTasksToInbox")) || inbox.isEmpty()) return {};
    return isFolder(fullPathOf(inbox)) ? fullPathOf(inbox) : QString();
}

void makeTasklist(const QString &book, const QString &document)
{
    if (!isFolder(book)) {
        if (!makeFolder(book)) return;
        const QStringList tags = tm_verifiedTagList(document);
        if (!tags.isEmpty()) tm_updateContextsRemoving(book, {}, tags);
        const QDateTime created = tm_creationDate(document);
        tm_setCreationDate(book, created == farPast() ? fileDates(document).modified : created);
    }
    if (tm_bookIsTasklist(book)) return;
    writeStore(taskStorePath(book), QVariantMap());
    tasklistChanged({}, book);
}

QString targetBook(const QString &path, int mode, bool inNewBook)
{
    const QString candidate = bookOfDocumentsName(path);
    if (inNewBook) {
        makeTasklist(candidate, path);
        return candidate;
    }
    if (isFolder(candidate)) return candidate;
    const QString inbox = mode == ExtractMarked ? inboxForExtraction() : QString();
    return inbox.isEmpty() ? parentPath(path) : inbox;
}

// -- one task ---------------------------------------------------------------------------------------------------------

struct TaskText
{
    QString text;
    TaskState state = TaskState::Open;
};

QString trimmedOfBullets(const QString &text)
{
    const auto trims = [](QChar unit) { return QStringView(u"\n-— •*").contains(unit); };
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && trims(text[begin])) ++begin;
    while (end > begin && trims(text[end - 1])) --end;
    return text.mid(begin, end - begin);
}

TaskText readTaskText(const QString &raw, int mode)
{
    static const struct
    {
        QString prefix;
        TaskState state;
    } prefixes[] = {{QStringLiteral("(OK) "), TaskState::Done},
                    {QStringLiteral("✔ "), TaskState::Done},
                    {QStringLiteral("(X) "), TaskState::Canceled},
                    {QStringLiteral("✘ "), TaskState::Canceled}};
    const QString text = raw.trimmed();
    for (const auto &row : prefixes)
        if (text.startsWith(row.prefix)) return {text.mid(row.prefix.size()), row.state};
    return {mode == ExtractMarked ? text : trimmedOfBullets(text), TaskState::Open};
}

class Extraction
{
public:
    Extraction(const QString &document, const QString &book, qlonglong encoding)
        : m_document(document)
        , m_book(book)
        , m_encoding(TextEncoding(encoding))
        , m_tags(tm_verifiedTagList(document))
        , m_start(platform().clock.now())
        , m_collectsContexts(settings().boolean(QStringLiteral("contextsEnabled")) &&
                             settings().boolean(QStringLiteral("extractContextsAutomatically")))
    {}

    void add(const QString &raw, int mode)
    {
        // A heading that repeats the name of the book or the document is no task.
        if (localizedCompare(raw, lastPathComponent(m_book)) == 0 ||
            localizedCompare(raw, pathWithoutExtension(lastPathComponent(m_document))) == 0)
            return;
        const TaskText task = readTaskText(raw, mode);
        const QString name = fileNameFor(task.text);
        if (task.text.isEmpty() || isThereAlready(name, task.text)) return;
        const QString path = tm_uniqueNameForFileatPath(name, m_book);
        const auto bytes = encodeText(task.text, m_encoding);
        if (!bytes || !writeFile(path, *bytes)) return logLine(QStringLiteral("error: %1 was not written").arg(path));
        describe(path, task.text);
        const int steps = task.state == TaskState::Done ? 2 : task.state == TaskState::Canceled ? 3 : 0;
        for (int i = 0; i < steps; ++i) tm_toggleTask(path);
        made.append(path);
        announceFile(path);
    }

    QStringList made;

private:
    static QString fileNameFor(const QString &text)
    {
        const QString extension = settings().string(QStringLiteral("DefaultDocumentType"));
        return tm_firstLineOfText(text) + u'.' + (extension.isEmpty() ? QStringLiteral("html") : extension);
    }

    // Extracting a document twice makes no second task. The file has the name in the form that file systems
    // take, with a number where another text was there first.
    [[nodiscard]] bool isThereAlready(const QString &name, const QString &text) const
    {
        if (holdsText(joinPath(m_book, name), text)) return true;
        for (qulonglong number = 0;; ++number) {
            const QString taken = joinPath(m_book, safeFileName(name, number));
            if (!itemExists(taken)) return false;
            if (holdsText(taken, text)) return true;
        }
    }

    [[nodiscard]] bool holdsText(const QString &path, const QString &text) const
    {
        const auto bytes = readFile(path);
        const auto present = bytes ? decodeTextAs(*bytes, m_encoding) : std::nullopt;
        return present && localizedCompare(*present, text) == 0;
    }

    void describe(const QString &path, const QString &text) const
    {
        // A second apart, so that the order of creation is the order in the document.
        tm_setCreationDate(path, m_start.addSecs(made.size()));
        if (!m_tags.isEmpty()) tm_updateContextsRemoving(path, {}, m_tags);
        if (settings().boolean(QStringLiteral("assignDefaultDueDate")))
            tm_setDueDate(path, withoutMidnightAlert(tm_todayMidnight()));
        if (m_collectsContexts) tm_collectTagsFromText(path, text);
        const QString url = QStringLiteral("tomelet://show") + percentEncodedPath(tm_normalizedPath(m_document));
        tm_setProperty(path, url, QStringLiteral("URL"));
    }

    QString m_document;
    QString m_book;
    TextEncoding m_encoding;
    QStringList m_tags;
    QDateTime m_start;
    bool m_collectsContexts;
};

// Nothing lies in the book but the stores that were made with it.
bool holdsOnlyStores(const QString &book)
{
    return tm_isEmptyBook(book) &&
           std::ranges::all_of(namesInFolder(book), [](const QString &name) { return tm_pathIsSystemFile(name); });
}

void moveWhole(const QString &path, const QString &book)
{
    const QString target = joinPath(book, lastPathComponent(path));
    if (target != path) tm_moveItemToPath(path, target);
}

} // namespace

QStringList extractTasks(const QString &text, const QString &path, int mode, qlonglong encoding, bool inNewBook)
{
    const QString book = targetBook(path, mode, inNewBook);
    // A document without an extension stands where its book would have to be.
    if (!isFolder(book)) {
        logLine(QStringLiteral("error: the book %1 was not made").arg(book));
        return {};
    }
    if (mode == ExtractWhole) {
        moveWhole(path, book);
        return {};
    }
    Extraction extraction(path, book, encoding);
    for (const QString &raw : taskTexts(text, mode)) extraction.add(raw, mode);
    if (!extraction.made.isEmpty()) rebuildRemindersSoon();
    else if (inNewBook && holdsOnlyStores(book) && tm_deleteItemAtPath(book)) tasklistChanged(book, {});
    return extraction.made;
}

QString tm_extractTasksToPath(const QString &text, const QString &path, int mode, qlonglong encoding, bool inNewBook)
{
    (void)extractTasks(text, path, mode, encoding, inNewBook);
    return path;
}

// -- commands ---------------------------------------------------------------------------------------------------------

QStringList extractMarkedTasks(const QString &path)
{
    const auto document = readTextFile(path);
    const QString mark = marker();
    if (!document || mark.isEmpty() || !document->text.contains(mark)) return {};
    const QString text = pathExtension(path) == u"html" ? tm_htmlToPlainText(document->text) : document->text;
    return extractTasks(text, path, ExtractMarked, qlonglong(document->encoding), false);
}

bool textHasMarkedLines(const QString &text)
{
    const QString mark = marker();
    return !mark.isEmpty() &&
           (text.contains(QString(u'\n' + mark + u' ')) || text.contains(QString(u'\n' + mark + u'\t')));
}

} // namespace tomelet
