// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QuietSelection.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFocusEvent>
#include <QPalette>
#include <QStyleOptionViewItem>

namespace tomelet::desktop {

// The text's own colour, thinned over the ground.
static QColor quietHighlight(const QPalette &palette)
{
    static constexpr float share = 0.16F;
    const QColor text = palette.color(QPalette::Text);
    const QColor ground = palette.color(QPalette::Base);
    const auto mixed = [](float over, float under) { return over * share + under * (1 - share); };
    return QColor::fromRgbF(mixed(text.redF(), ground.redF()), mixed(text.greenF(), ground.greenF()),
                            mixed(text.blueF(), ground.blueF()));
}

QuietSelection::QuietSelection(QAbstractItemView *view)
    : QObject(view)
    , m_view(view)
{
    view->installEventFilter(this);
    show(view->hasFocus());
}

bool QuietSelection::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusIn: show(true); break;
    case QEvent::FocusOut: {
        // A menu is about what is selected.
        const Qt::FocusReason reason = static_cast<QFocusEvent *>(event)->reason();
        if (reason != Qt::PopupFocusReason && reason != Qt::MenuBarFocusReason) show(false);
        break;
    }
    case QEvent::ApplicationPaletteChange: show(m_view->hasFocus()); break;
    default: break;
    }
    return QObject::eventFilter(watched, event);
}

void QuietSelection::show(bool focused)
{
    const QPalette standard = QApplication::palette(m_view);
    QPalette palette = m_view->palette();
    palette.setColor(QPalette::Highlight, focused ? standard.color(QPalette::Highlight) : quietHighlight(standard));
    palette.setColor(QPalette::HighlightedText, standard.color(focused ? QPalette::HighlightedText : QPalette::Text));
    m_view->setPalette(palette);
}

bool isHighlighted(const QStyleOptionViewItem &option)
{
    return option.state.testFlag(QStyle::State_Selected) &&
           option.palette.color(QPalette::Highlight) != quietHighlight(option.palette);
}

} // namespace tomelet::desktop
