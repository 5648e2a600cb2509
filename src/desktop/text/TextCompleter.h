// SPDX-License-Identifier: GPL-3.0-or-later
// The list that opens under the caret of the plain text editor where something can be completed. It takes no key from
// somebody who just types on: Return takes an entry only after an arrow key has chosen one, Tab takes the first.
#pragma once

#include "editor/Completion.h"
#include "editor/LibraryNames.h"

#include <QObject>
#include <QTimer>

#include <optional>

class QCompleter;
class QKeyEvent;
class QStringListModel;

namespace tomelet::desktop {

class TMLTTextView;

class TextCompleter final : public QObject
{
    Q_OBJECT

public:
    explicit TextCompleter(TMLTTextView *view);

    /// Where paths begin and which style sheet counts from now on; an empty document is a new one.
    void setDocument(const QString &book, const QString &document);
    /// The Tab key: completes as far as it is clear how, and opens the list for the rest. False: nothing to complete.
    bool completeByTab();
    /// A key while the list is open; true when it was for the list.
    bool takeKey(const QKeyEvent &event);
    /// Something was typed or the caret moved: the list follows, or opens when typing pauses for a moment.
    void typed();
    void caretMoved();
    void close();
    [[nodiscard]] bool isOpen() const;
    [[nodiscard]] QStringList offered() const;

private:
    [[nodiscard]] std::optional<CompletionPlace> place() const;
    [[nodiscard]] QStringList completions(const CompletionPlace &place);
    [[nodiscard]] QStringList completionsFromEverywhere(const CompletionPlace &place);
    void offer();
    void open(const QStringList &completions);
    void refuse();
    void insert(const QString &completion, bool isWhole = true);

    TMLTTextView *m_view;
    QCompleter *m_completer;
    QStringListModel *m_offered;
    QString m_book;
    QString m_document;
    std::optional<CompletionPlace> m_place; // the one that the candidates were read for
    QStringList m_candidates;
    LibraryNames m_names;
    int m_refusedAt = -1; // where Escape closed the list: it stays closed there
    QTimer m_pause;
};

} // namespace tomelet::desktop
