// SPDX-License-Identifier: GPL-3.0-or-later
// What a person does to items, each as one step that can be undone.
#pragma once

#include "editor/PageBoxes.h"

#include <QObject>
#include <QStringList>
#include <QUndoStack>

namespace tomelet::desktop {

class ItemActions final : public QObject
{
    Q_OBJECT

public:
    explicit ItemActions(QObject *parent = nullptr);

    [[nodiscard]] QUndoStack &undoStack() { return m_undoStack; }

    /// Gives the item another name in its book. A name without extension keeps the document's own. False, with the
    /// reason told, when that is not possible.
    bool rename(const QString &path, const QString &name);
    /// Items dropped on a book: those of the notebook move (or are copied), those from outside are copied.
    void drop(const QStringList &paths, const QString &book, bool copy);
    void duplicate(const QStringList &paths);
    void moveToTrash(const QStringList &paths);
    void deletePermanently(const QStringList &paths);
    /// The path of the new book, "" when it could not be made.
    QString newBook(const QString &parent);
    /// Takes something new, made elsewhere, as a step that can be undone.
    void noteCreation(const QString &stepName, const QString &path);
    void setBookOrder(const QString &book, const QStringList &names);

    /// Ticks or opens a check box of a page that is made from Markdown.
    BoxResult toggleBox(const QString &path, const PageBox &box);

    /// Gives the items exactly these contexts.
    void setContexts(const QString &path, const QStringList &words);
    void addContext(const QStringList &paths, const QString &word);
    /// The person is asked whether the texts of the documents follow; this cannot be undone.
    void renameContext(const QString &word, const QString &newWord);
    void deleteContexts(const QStringList &words);
    void excludeContexts(const QStringList &words);

Q_SIGNALS:
    /// Something could not be done; a text for the person.
    void failed(const QString &title, const QString &text);

private:
    bool move(const QString &path, const QString &target, const QString &stepName);

    QUndoStack m_undoStack;
};

} // namespace tomelet::desktop
