// SPDX-License-Identifier: GPL-3.0-or-later
// The right-hand pane: a document as a page. Pages run no script and load nothing from the network.
#pragma once

#include "foundation/NotificationCenter.h"

#include <QWebEngineView>
#include <QWidget>

#include <memory>
#include <vector>

class QLabel;
class QLayout;
class QStackedWidget;
class QToolButton;

namespace tomelet::desktop {

class ContextsField;
class ItemActions;

class DocumentPane final : public QWidget
{
    Q_OBJECT

public:
    explicit DocumentPane(ItemActions &actions, QWidget *parent = nullptr);
    ~DocumentPane() override;

    /// Shows the document, at the anchor if one is given ("part" or "#part"); an empty path shows what to do next.
    void showDocument(const QString &path, const QString &anchor = {});
    [[nodiscard]] const QString &path() const { return m_path; }
    [[nodiscard]] QWebEngineView *view() { return m_view; }
    [[nodiscard]] ContextsField *contextsField() { return m_contexts; }

protected:
    void changeEvent(QEvent *event) override;

Q_SIGNALS:
    void titleChanged(const QString &title);

private:
    void load();
    /// Loads the page anew and scrolls to where it was.
    void reload();
    void followLink(const QUrl &url);
    void documentChanged(const QString &path);
    void documentMoved(const QString &from, const QString &to);

    QLayout *makeHeader();
    /// Contexts and backlinks of the document, as they are stored now.
    void showProperties();
    void fillBacklinksMenu();
    void scrollTo(const QString &anchor);

    ItemActions &m_actions;
    QLabel *m_title;
    QLabel *m_place;
    ContextsField *m_contexts;
    QToolButton *m_backlinks;
    QLabel *m_empty;
    QStackedWidget *m_stack;
    QWebEngineView *m_view;
    QString m_path;
    std::vector<NotificationCenter::Subscription> m_subscriptions;
};

} // namespace tomelet::desktop
