// SPDX-License-Identifier: GPL-3.0-or-later
// A document controller in a notebook of its own, with what a person does typed into a view that is none.
#pragma once

#include "editor/TMLTDocumentViewController.h"
#include "foundation/Platform.h"
#include "library/Properties.h"
#include "organising/NotebookOrganiser.h"
#include "tests/editor/FakeDocumentView.h"
#include "tests/support/Notebook.h"

#include <QFile>

namespace tomelet::test {

class DocumentController : public Notebook
{
protected:
    DocumentController()
    {
        installNotebookOrganiser();
        settings().setObject(QStringLiteral("showMarkdownAsPlainText"), true);
    }

    // A file from an hour ago, so that every write shows in its date.
    QString document(const QString &name, const QByteArray &bytes)
    {
        const QString path = write(name, bytes);
        setDate(path, platform().clock.now().addSecs(-3600));
        return path;
    }
    static void setDate(const QString &path, const QDateTime &date)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::Append | QIODevice::ReadOnly));
        EXPECT_TRUE(file.setFileTime(date, QFileDevice::FileModificationTime));
    }
    // By another program, at another time than now.
    void overwrite(const QString &path, const QByteArray &bytes)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        setDate(path, platform().clock.now().addSecs(-60));
    }
    void type(const QString &text)
    {
        if (!controller.shouldChangeText(false)) return;
        view.plainText = text;
        controller.textDidChange();
    }
    void typeIntoPage(const QString &html, const QString &visible)
    {
        if (!controller.shouldBeginEditingInDOMRange(false)) return;
        view.body = html;
        view.visibleText = visible;
        controller.textDidChange();
    }
    void pause()
    {
        for (int save = 0; save < 3; ++save) { // between two keys, then the one that renames
            platform().delayedCalls.drain();
            controller.waitForSave();
        }
    }

    FakeDocumentView view;
    TMLTDocumentViewController controller{view};
};

} // namespace tomelet::test
