// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/MenuCommands.h"

#include "desktop/document/DocumentDesk.h"
#include "desktop/document/DocumentPane.h"
#include "desktop/document/DocumentTabs.h"
#include "foundation/Localization.h"

#include <QAction>
#include <QMenu>

namespace tomelet::desktop {

QAction *addCommand(QMenu *menu, const char *text, const QKeySequence &keys, QObject *context,
                    std::function<void()> action)
{
    QAction *made = menu->addAction(localized(text));
    made->setShortcut(keys);
    QObject::connect(made, &QAction::triggered, context, std::move(action));
    return made;
}

void addTabCommands(QMenu *menu, DocumentDesk *desk)
{
    const auto keys = [](const char *first, const char *second) {
        return QList{QKeySequence(QString::fromLatin1(first)), QKeySequence(QString::fromLatin1(second))};
    };
    addCommand(menu, TOMELET_TEXT("Ne&xt Tab"), {}, desk, [desk] {
        desk->tabs()->step(1);
    })->setShortcuts(keys("Ctrl+Tab", "Ctrl+PgDown"));
    addCommand(menu, TOMELET_TEXT("Pre&vious Tab"), {}, desk, [desk] {
        desk->tabs()->step(-1);
    })->setShortcuts(keys("Ctrl+Shift+Tab", "Ctrl+PgUp"));
    QAction *split =
        addCommand(menu, TOMELET_TEXT("T&wo Documents Beside Each Other"), QKeySequence(QStringLiteral("Ctrl+\\")),
                   desk, [desk] { desk->setSplit(!desk->isSplit()); });
    split->setCheckable(true);
    QObject::connect(desk, &DocumentDesk::splitChanged, split, &QAction::setChecked);
}

void addZoomCommands(QMenu *menu, DocumentDesk *desk)
{
    addCommand(menu, TOMELET_TEXT("Larger"), QKeySequence::ZoomIn, desk, [desk] { desk->current()->zoom(1); });
    addCommand(menu, TOMELET_TEXT("Smaller"), QKeySequence::ZoomOut, desk, [desk] { desk->current()->zoom(-1); });
    addCommand(menu, TOMELET_TEXT("Actual Size"), QKeySequence(QStringLiteral("Ctrl+0")), desk,
               [desk] { desk->current()->zoom(0); });
}

} // namespace tomelet::desktop
