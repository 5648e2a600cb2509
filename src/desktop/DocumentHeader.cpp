// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/DocumentHeader.h"

#include "desktop/ContextsField.h"
#include "desktop/ItemActions.h"
#include "foundation/Folder.h"
#include "foundation/Localization.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/Properties.h"
#include "organising/Contexts.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QToolButton>
#include <QVBoxLayout>

namespace tomelet::desktop {

static QString displayPlace(const QString &path)
{
    const QString folder = tm_normalizedPath(parentPath(path));
    return folder.isEmpty() ? lastPathComponent(tomeletRoot()) : tm_pathFormattedForDisplay(folder);
}

DocumentHeader::DocumentHeader(ItemActions &actions, QWidget *parent)
    : QWidget(parent)
    , m_actions(actions)
    , m_title(new QLabel)
    , m_place(new QLabel)
    , m_contexts(new ContextsField)
    , m_backlinks(new QToolButton)
{
    QFont font = m_title->font();
    font.setWeight(QFont::DemiBold);
    m_title->setFont(font);
    m_title->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_place->setForegroundRole(QPalette::PlaceholderText);
    m_backlinks->setPopupMode(QToolButton::InstantPopup);
    m_backlinks->setAutoRaise(true);
    m_backlinks->setMenu(new QMenu(m_backlinks));
    connect(m_backlinks->menu(), &QMenu::aboutToShow, this, &DocumentHeader::fillBacklinksMenu);
    connect(m_contexts, &ContextsField::contextsEdited, this,
            [this](const QStringList &words) { m_actions.setContexts(m_path, words); });
    // The field's own undo would stand before that of the items.
    connect(m_contexts, &QLineEdit::returnPressed, this, &DocumentHeader::left);

    auto *below = new QHBoxLayout;
    below->addWidget(m_contexts, 1);
    below->addWidget(m_backlinks);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 10, 20, 6);
    layout->setSpacing(0);
    layout->addWidget(m_title);
    layout->addWidget(m_place);
    layout->addLayout(below);

    m_subscriptions.push_back(
        notifications().observe(QStringLiteral("TMLTFileModifiedOnDiskNotification"), [this](const QVariantMap &payload) {
            const QString changed = payload.value(QStringLiteral("path")).toString();
            if (!m_path.isEmpty() && (changed == m_path || changed == propertyFileOf(m_path))) showProperties();
        }));
}

void DocumentHeader::setDocument(const QString &path, bool edited)
{
    const QString name = path.isEmpty() ? QString() : lastPathComponent(path);
    m_title->setText(edited ? QString(name + QStringLiteral(" •")) : name);
    m_place->setText(path.isEmpty() ? QString() : displayPlace(path));
    if (std::exchange(m_path, path) != path || path.isEmpty()) showProperties();
}

void DocumentHeader::showProperties()
{
    const bool own = !m_path.isEmpty() && tm_itemIsChildOfTomelet(m_path);
    m_contexts->setVisible(own && settings().boolean(QStringLiteral("contextsEnabled")));
    m_contexts->setContexts(own ? contextsOf(m_path) : QStringList());
    const qsizetype links = own ? tm_propertyForKey(m_path, QStringLiteral("Backlinks")).toStringList().size() : 0;
    m_backlinks->setVisible(links > 0);
    m_backlinks->setText(links == 1 ? localized(TOMELET_TEXT("Linked from one document"))
                                    : localized(TOMELET_TEXT("Linked from %1 documents")).arg(links));
}

void DocumentHeader::fillBacklinksMenu()
{
    QMenu *menu = m_backlinks->menu();
    menu->clear();
    const QString root = tomeletRoot();
    for (const QString &path : tm_propertyForKey(m_path, QStringLiteral("Backlinks")).toStringList()) {
        const QString title = tm_pathFormattedForDisplay(path);
        QAction *action = menu->addAction(QString(title).replace(u'&', QStringLiteral("&&")));
        connect(action, &QAction::triggered, this, [full = fullPathOf(path, root)] {
            notifications().postPath(QStringLiteral("TMLTShowItemAtPathNotification"), full);
        });
    }
}

} // namespace tomelet::desktop
