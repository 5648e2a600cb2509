// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/actions/ItemActions.h"

#include "desktop/actions/Step.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/Deletion.h"
#include "library/Extensions.h"
#include "library/ItemOperations.h"
#include "library/ItemPath.h"
#include "library/PathForms.h"
#include "library/Properties.h"
#include "organising/contexts/Contexts.h"

#include <algorithm>

namespace tomelet::desktop {

namespace {

// Tells lists and tree at once; the file events that follow find it done.
void announce(const QString &path)
{
    notifications().postPath(QStringLiteral("TMLTHandleFileModificationInstantly"), path);
}

// A move is told as one, so that whoever shows the item goes along with it.
void announceMove(const QString &from, const QString &to)
{
    notifications().post(QStringLiteral("TMLTHandleFileMoveInstantly"),
                         {{QStringLiteral("originalPath"), from}, {QStringLiteral("newPath"), to}});
}

class MoveStep final : public Step
{
public:
    MoveStep(const QString &text, QString from, QString to)
        : Step(text)
        , m_from(std::move(from))
        , m_to(std::move(to))
    {}
    void undo() override { carryOut(m_to, m_from); }
    void again() override { carryOut(m_from, m_to); }

private:
    void carryOut(const QString &from, const QString &to)
    {
        if (!tm_moveItemToPath(from, to)) return setObsolete(true);
        announceMove(from, to);
    }

    QString m_from;
    QString m_to;
};

class TrashStep final : public Step
{
public:
    TrashStep(const QString &text, QStringList paths, QList<DeletionRecord> records)
        : Step(text)
        , m_paths(std::move(paths))
        , m_records(std::move(records))
    {}
    void undo() override
    {
        m_records = undoLastDelete(m_records);
        for (const QString &path : m_paths) announce(path);
    }
    void again() override
    {
        m_records = performDeleteSelectedItems(m_paths, false).records;
        for (const QString &path : m_paths) announce(path);
    }

private:
    QStringList m_paths;
    QList<DeletionRecord> m_records;
};

// Something new: undone by moving it to the trash, where it can be found again.
class CreationStep final : public Step
{
public:
    CreationStep(const QString &text, QString path)
        : Step(text)
        , m_path(std::move(path))
    {}
    void undo() override
    {
        m_records = performDeleteSelectedItems({m_path}, false).records;
        announce(m_path);
    }
    void again() override
    {
        m_records = undoLastDelete(m_records);
        announce(m_path);
    }

private:
    QString m_path;
    QList<DeletionRecord> m_records;
};

class BoxStep final : public Step
{
public:
    BoxStep(const QString &text, QString path, const PageBox &box)
        : Step(text)
        , m_path(std::move(path))
        , m_box(box)
    {}
    void undo() override { again(); }
    void again() override
    {
        m_box.isDone = !m_box.isDone;
        if (toggleBox(m_path, m_box) != BoxResult::Toggled) setObsolete(true);
    }

private:
    QString m_path;
    PageBox m_box; ///< as it was before the last toggling
};

class ContextsStep final : public Step
{
public:
    ContextsStep(const QString &text, QString path, QStringList before, QStringList after)
        : Step(text)
        , m_path(std::move(path))
        , m_before(std::move(before))
        , m_after(std::move(after))
    {}
    void undo() override { carryOut(m_before); }
    void again() override { carryOut(m_after); }

    void carryOut(const QStringList &words)
    {
        const QStringList now = contextsOf(m_path);
        for (const QString &word : now)
            if (!words.contains(word)) tm_clearTag(m_path, word);
        for (const QString &word : words) {
            if (now.contains(word)) continue;
            tm_setTag(m_path, word);
            // A new word must be on the list before the next one comes, or it counts as none.
            tm_collectTagsInPlist(m_path);
        }
        announce(propertyFileOf(m_path));
    }

private:
    QString m_path;
    QStringList m_before;
    QStringList m_after;
};

// The document's own extension stays unless another known one was typed: "Version 1.2" has none.
QString withKeptExtension(const QString &path, const QString &name)
{
    const QString extension = isFolder(path) ? QString() : pathExtension(path);
    const QString typed = pathExtension(name);
    const bool known = typed == extension || recognisedExtensions().contains(typed.toLower()) ||
                       hasPlainTextExtension(name) || hasImageExtension(name);
    return extension.isEmpty() || (known && !typed.isEmpty()) ? name : name + u'.' + extension;
}

} // namespace

ItemActions::ItemActions(QObject *parent)
    : QObject(parent)
{}

void ItemActions::noteCreation(const QString &stepName, const QString &path)
{
    m_undoStack.push(new CreationStep(stepName, path));
    announce(path);
}

bool ItemActions::move(const QString &path, const QString &target, const QString &stepName)
{
    if (!tm_moveItemToPath(path, target)) {
        Q_EMIT failed(localized(TOMELET_TEXT("The item could not be moved.")),
                      localized(TOMELET_TEXT("\"%1\" stays where it is.")).arg(lastPathComponent(path)));
        return false;
    }
    m_undoStack.push(new MoveStep(stepName, path, target));
    announceMove(path, target);
    return true;
}

bool ItemActions::rename(const QString &path, const QString &name)
{
    if (name.trimmed().isEmpty()) return false;
    const QString safe = withKeptExtension(path, tm_escapeIllegalCharacters(name.trimmed()));
    if (safe == lastPathComponent(path)) return false;
    const QString target = joinPath(parentPath(path), safe);
    const bool onlyCase = target.compare(path, Qt::CaseInsensitive) == 0;
    if (!onlyCase && tm_fileExistsAtPathIsDirectory(target).exists) {
        Q_EMIT failed(localized(TOMELET_TEXT("An item with name \"%1\" already exists.")).arg(safe),
                      localized(TOMELET_TEXT("Please select a different name.")));
        return false;
    }
    return move(path, target, localized(TOMELET_TEXT("Rename...")));
}

void ItemActions::drop(const QStringList &paths, const QString &book, bool copy)
{
    const QString root = tomeletRoot();
    const auto isOwn = [&](const QString &path) { return path.startsWith(root + u'/'); };
    QStringList dropped = paths;
    if (!copy) dropped.removeIf([&](const QString &path) { return isOwn(path) && parentPath(path) == book; });
    if (dropped.isEmpty()) return;
    m_undoStack.beginMacro(localized(TOMELET_TEXT("Move")));
    for (const QString &path : dropped) {
        const bool ownItem = isOwn(path);
        const QString target = tm_uniqueNameForFileatPath(lastPathComponent(path), book);
        if (ownItem && !copy) {
            move(path, target, {});
        } else if (tm_copyItemToPath(path, target)) {
            noteCreation({}, target);
        } else {
            Q_EMIT failed(localized(TOMELET_TEXT("The item could not be copied.")),
                          localized(TOMELET_TEXT("\"%1\" is not in the book.")).arg(lastPathComponent(path)));
        }
    }
    m_undoStack.endMacro();
}

void ItemActions::duplicate(const QStringList &paths)
{
    for (const QString &path : paths) {
        const QString copy = pathForDuplicate(path);
        if (!tm_duplicateItemAtPath(path)) {
            Q_EMIT failed(localized(TOMELET_TEXT("The item could not be copied.")),
                          localized(TOMELET_TEXT("\"%1\" is not in the book.")).arg(lastPathComponent(copy)));
            continue;
        }
        noteCreation(localized(TOMELET_TEXT("Duplicate")), copy);
    }
}

void ItemActions::moveToTrash(const QStringList &paths)
{
    const Deletion deletion = performDeleteSelectedItems(paths, false);
    if (!deletion.records.isEmpty() && !deletion.permanent)
        m_undoStack.push(new TrashStep(localized(TOMELET_TEXT("Delete")), paths, deletion.records));
    for (const QString &path : paths) announce(path);
}

void ItemActions::deletePermanently(const QStringList &paths)
{
    const int answer = askQuestion({localized(TOMELET_TEXT("Permanently delete?")),
                                    localized(TOMELET_TEXT("You cannot undo this action.")),
                                    {localized(TOMELET_TEXT("Delete")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer != 0) return;
    performDeleteSelectedItems(paths, true);
    for (const QString &path : paths) announce(path);
}

QString ItemActions::newBook(const QString &parent)
{
    const QString path = makeNewBook(parent);
    if (path.isEmpty()) {
        Q_EMIT failed(localized(TOMELET_TEXT("The book could not be made.")),
                      localized(TOMELET_TEXT("Nothing can be written in \"%1\".")).arg(lastPathComponent(parent)));
        return {};
    }
    noteCreation(localized(TOMELET_TEXT("New Book")), path);
    return path;
}

void ItemActions::setBookOrder(const QString &book, const QStringList &names)
{
    const QStringList documents = storedProperties(book).value(QStringLiteral("Notes")).toStringList();
    saveCustomSortOrder(book, names, documents);
    tm_setProperty(book, QStringLiteral("custom"), QStringLiteral("sortOrderForNotes"));
    announce(bookPropertiesPath(book));
}

// -- contexts ---------------------------------------------------------------------------------------------------------

BoxResult ItemActions::toggleBox(const QString &path, const PageBox &box)
{
    const BoxResult result = tomelet::toggleBox(path, box);
    if (result == BoxResult::Toggled) m_undoStack.push(new BoxStep(localized(TOMELET_TEXT("Check Box")), path, box));
    return result;
}

void ItemActions::setContexts(const QString &path, const QStringList &words)
{
    const QStringList before = contextsOf(path);
    if (before == words) return;
    auto *step = new ContextsStep(localized(TOMELET_TEXT("Contexts")), path, before, words);
    step->carryOut(words);
    m_undoStack.push(step);
}

void ItemActions::addContext(const QStringList &paths, const QString &word)
{
    m_undoStack.beginMacro(localized(TOMELET_TEXT("Add to Context")));
    for (const QString &path : paths) {
        const QStringList words = contextsOf(path);
        if (tm_itemIsChildOfTomelet(path) && !words.contains(word)) setContexts(path, words + QStringList{word});
    }
    m_undoStack.endMacro();
}

void ItemActions::renameContext(const QString &word, const QString &newWord)
{
    const QString wanted = newWord.simplified().remove(u' ');
    if (!wanted.isEmpty() && wanted != word) tm_renameTagTo(word, wanted);
}

void ItemActions::deleteContexts(const QStringList &words)
{
    const int answer = askQuestion({localized(TOMELET_TEXT("Delete Contexts?")),
                                    localized(TOMELET_TEXT("The selected contexts will be removed from all items.")),
                                    {localized(TOMELET_TEXT("Delete")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer != 0) return;
    for (const QString &word : words) tm_renameTagTo(word, QString());
}

void ItemActions::excludeContexts(const QStringList &words)
{
    const int answer =
        askQuestion({localized(TOMELET_TEXT("Exclude Contexts?")),
                     localized(TOMELET_TEXT(
                         "The selected contexts will be removed, and Tomelet will no longer automatically extract "
                         "them from the contents of documents.")),
                     {localized(TOMELET_TEXT("Exclude")), localized(TOMELET_TEXT("Cancel"))}});
    if (answer != 0) return;
    for (const QString &word : words) tm_excludeTag(word);
    notifications().post(QStringLiteral("TMLTReloadCurrentDocument"));
}

} // namespace tomelet::desktop
