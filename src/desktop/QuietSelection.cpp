// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/QuietSelection.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QMenuBar>
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
    // A menu is about what is selected, and another program takes no keys from here for good.
    connect(qApp, &QApplication::focusChanged, this, [this](QWidget *, QWidget *now) {
        if (now && !qobject_cast<QMenuBar *>(now)) show(m_view->isAncestorOf(now));
    });
    show(view->hasFocus());
}

bool QuietSelection::eventFilter(QObject *watched, QEvent *event)
{
    // Before the program runs nobody is told of a new palette.
    if (event->type() == QEvent::Show || event->type() == QEvent::ApplicationPaletteChange) show(m_view->hasFocus());
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
    const auto highlight = [](const QPalette &palette) { return palette.color(QPalette::Active, QPalette::Highlight); };
    return option.state.testFlag(QStyle::State_Selected) &&
           highlight(option.palette) == highlight(QApplication::palette(option.widget));
}

} // namespace tomelet::desktop
