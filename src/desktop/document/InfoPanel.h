// SPDX-License-Identifier: GPL-3.0-or-later
// The panel that tells about a document: its dates, its length, its task, what it refers to and who refers to it.
#pragma once

#include "foundation/NotificationCenter.h"

#include <QDockWidget>

#include <vector>

class QLabel;
class QListWidget;
class QTimer;

namespace tomelet::desktop {

class InfoPanel final : public QDockWidget
{
    Q_OBJECT

public:
    explicit InfoPanel(QWidget *parent = nullptr);

    /// Tells about the document from now on; "" for none.
    void setDocument(const QString &path);

Q_SIGNALS:
    void dueDateWanted(const QString &path);
    void noAlertWanted(const QString &path);
    void noDueDateWanted(const QString &path);

protected:
    void showEvent(QShowEvent *event) override;

private:
    void fill();
    void follow(const QString &link);

    QTimer *m_soon; // the document itself is shown first
    QLabel *m_facts;
    QLabel *m_task;
    QListWidget *m_links;
    QListWidget *m_backlinks;
    QString m_path;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
};

} // namespace tomelet::desktop
