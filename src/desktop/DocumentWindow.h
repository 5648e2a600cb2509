// SPDX-License-Identifier: GPL-3.0-or-later
// A window of its own for documents, without outline and list.
#pragma once

#include "library/AppState.h"

#include <QMainWindow>

namespace tomelet::desktop {

class DocumentDesk;
class ItemActions;

class DocumentWindow final : public QMainWindow
{
    Q_OBJECT

public:
    /// Opens the documents in tabs, and where the first entry says; without any there is one empty tab.
    DocumentWindow(ItemActions &actions, const QList<WindowEntry> &entries);

    /// The window as the next session gets it back; nothing when it shows no document.
    [[nodiscard]] QList<WindowEntry> entries(const QString &group) const;
    /// The tab of the document in front, a page of it at the anchor; false when no tab has it.
    [[nodiscard]] bool showOpenDocument(const QString &path, const QString &anchor);
    /// Begins a new document in the inbox.
    void startNote();
    [[nodiscard]] DocumentDesk &desk() { return *m_desk; }

Q_SIGNALS:
    void quitWanted();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void makeMenus(ItemActions &actions);
    void updateTitle();
    void toggleFullScreen();

    DocumentDesk *m_desk;
};

} // namespace tomelet::desktop
