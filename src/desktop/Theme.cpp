// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/Theme.h"

#include "desktop/Icons.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QPalette>
#include <QStyle>

namespace tomelet::desktop {

namespace {

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString portalInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

// 1 prefers dark, 2 prefers light, 0 says nothing; wrapped in one or two variants by the portal's version.
std::optional<bool> darkFrom(QVariant value)
{
    while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    if (value.toUInt() == 1) return true;
    if (value.toUInt() == 2) return false;
    return std::nullopt;
}

std::optional<bool> portalIsDark()
{
    QDBusMessage question = QDBusMessage::createMethodCall(portal, portalPath, portalInterface, QStringLiteral("Read"));
    question << appearance << colorScheme;
    const QDBusMessage answer = QDBusConnection::sessionBus().call(question, QDBus::Block, 200);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty()) return std::nullopt;
    return darkFrom(answer.arguments().first());
}

QPalette madePalette(bool dark)
{
    const QColor window(dark ? 0x24272b : 0xf6f6f4);
    const QColor base(dark ? 0x1d2023 : 0xffffff);
    const QColor text(dark ? 0xd9dde2 : 0x1f2328);
    const QColor dim(dark ? 0x8f98a3 : 0x6a737d);
    const QColor button(dark ? 0x2f3338 : 0xececea);
    const QColor accent(dark ? 0x3a6ea5 : 0x2f6fab);
    QPalette palette(text, button, button.lighter(115), button.darker(150), button.darker(120), text, Qt::white, base,
                     window);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::PlaceholderText, dim);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(dark ? 0x7db4e6 : 0x2f6fab));
    palette.setColor(QPalette::ToolTipBase, base);
    palette.setColor(QPalette::ToolTipText, text);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, dim);
    return palette;
}

} // namespace

Theme::Theme(QObject *parent)
    : QObject(parent)
{
    m_dark = portalIsDark().value_or(isDark(QApplication::palette()));
    QDBusConnection::sessionBus().connect(portal, portalPath, portalInterface, QStringLiteral("SettingChanged"), this,
                                          SLOT(portalSettingChanged(QString, QString, QDBusVariant)));
}

void Theme::portalSettingChanged(const QString &group, const QString &key, const QDBusVariant &value)
{
    if (group != appearance || key != colorScheme) return;
    const auto dark = darkFrom(QVariant::fromValue(value));
    if (!dark || *dark == m_dark) return;
    m_dark = *dark;
    Q_EMIT desktopChanged(m_dark);
}

void Theme::apply(bool dark)
{
    const QPalette own = QApplication::style()->standardPalette();
    const bool styleIsPlain = QApplication::style()->name().compare(u"fusion", Qt::CaseInsensitive) == 0;
    if (styleIsPlain || isDark(own) != dark) QApplication::setPalette(madePalette(dark));
    else QApplication::setPalette(own);
    clearIconCache();
}

} // namespace tomelet::desktop
