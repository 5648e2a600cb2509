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
    /// Opens the documents in tabs, and where the first entry says; at least one is needed.
    DocumentWindow(ItemActions &actions, const QList<WindowEntry> &entries);

    /// The window as the next session gets it back; nothing when it shows no document.
    [[nodiscard]] QList<WindowEntry> entries(const QString &group) const;

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
