// SPDX-License-Identifier: GPL-3.0-or-later
// The field in a document's header that holds its contexts: words between blanks, completed while they are typed.
#pragma once

#include <QLineEdit>
#include <QStringList>

class QCompleter;
class QStringListModel;

namespace tomelet::desktop {

class ContextsField final : public QLineEdit
{
    Q_OBJECT

public:
    explicit ContextsField(QWidget *parent = nullptr);

    void setContexts(const QStringList &words);

Q_SIGNALS:
    /// The person has left the field, or pressed Return, with other words in it than before.
    void contextsEdited(const QStringList &words);

protected:
    void focusInEvent(QFocusEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void completeWord();
    void insertCompletion(const QString &word);
    void finish();

    QCompleter *m_completer;
    QStringListModel *m_known;
    QStringList m_words;
};

} // namespace tomelet::desktop
