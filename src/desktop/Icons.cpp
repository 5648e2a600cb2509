// SPDX-License-Identifier: GPL-3.0-or-later
#include "desktop/Icons.h"

#include "desktop/outline/OutlineBadges.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/OutlineItem.h"
#include "organising/tasks/Tasks.h"

#include <QGuiApplication>
#include <QHash>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

namespace tomelet::desktop {

static QHash<QString, QIcon> &cache()
{
    static QHash<QString, QIcon> icons;
    return icons;
}

void clearIconCache()
{
    cache().clear();
}

// Sizes from a list row to a toolbar at twice the scale.
static void addDrawn(QIcon &icon, QByteArray svg, const QColor &color, QIcon::Mode mode)
{
    svg.replace("currentColor", color.name().toLatin1());
    QSvgRenderer renderer(svg);
    for (const int size : {16, 20, 24, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        icon.addPixmap(pixmap, mode);
    }
}

static QIcon drawnIcon(const QString &name, const QColor &color)
{
    const QString key = name + color.name();
    const auto known = cache().constFind(key);
    if (known != cache().cend()) return *known;
    const QByteArray svg = readFile(resourcePath(QStringLiteral("icons/%1.svg").arg(name))).value_or(QByteArray());
    QIcon icon;
    addDrawn(icon, svg, color, QIcon::Normal);
    addDrawn(icon, svg, QGuiApplication::palette().color(QPalette::HighlightedText), QIcon::Selected);
    cache().insert(key, icon);
    return icon;
}

QIcon bundledIcon(const QString &name)
{
    return drawnIcon(name, QGuiApplication::palette().color(QPalette::WindowText));
}

QColor overdueColor(const QPalette &palette)
{
    const bool dark = palette.color(QPalette::Base).lightness() < palette.color(QPalette::Text).lightness();
    return QColor(dark ? 0xf08273 : 0xb9372b);
}

QIcon overdueIcon(const QString &name)
{
    return drawnIcon(name, overdueColor(QGuiApplication::palette()));
}

QIcon taskStateIcon(const QString &icon)
{
    const QPalette palette = QGuiApplication::palette();
    if (tm_taskIsDoneOrCanceled(icon)) return drawnIcon(icon, palette.color(QPalette::PlaceholderText));
    if (icon.endsWith(u"-due")) return overdueIcon(icon.chopped(4));
    return drawnIcon(icon, palette.color(QPalette::WindowText));
}

QIcon themedIcon(const QString &freedesktopName, const QString &bundledName)
{
    return QIcon::hasThemeIcon(freedesktopName) ? QIcon::fromTheme(freedesktopName) : bundledIcon(bundledName);
}

static QIcon tasklistIcon(const Badge &badge)
{
    const QString name = QStringLiteral("tasklist");
    return badge.due > 0 ? overdueIcon(name) : bundledIcon(name);
}

QIcon outlineIcon(int smartType, const Badge &badge)
{
    if (badge.isTasklist && smartType == OrdinaryBook) return tasklistIcon(badge);
    switch (smartType) {
    case ContextBook:
    case ContextsBook: return bundledIcon(QStringLiteral("tag"));
    case SearchResultsBook: return bundledIcon(QStringLiteral("search"));
    case DueTasksBook: return bundledIcon(QStringLiteral("due"));
    case FavoritesBook: return bundledIcon(QStringLiteral("star"));
    case InboxBook: return bundledIcon(badge.total > 0 ? QStringLiteral("inbox-filled") : QStringLiteral("inbox"));
    case AllTaskListsBook: return bundledIcon(QStringLiteral("tasks"));
    case RecentItemsBook: return bundledIcon(QStringLiteral("recent"));
    case RecentlyModifiedBook: return bundledIcon(QStringLiteral("modified"));
    case ConflictsBook: return bundledIcon(QStringLiteral("conflict"));
    default: return bundledIcon(QStringLiteral("book"));
    }
}

QIcon documentIcon(const QString &path)
{
    const QString extension = lowerExtension(path);
    if (hasImageExtension(path)) return bundledIcon(QStringLiteral("image"));
    if (extension == u"pdf") return bundledIcon(QStringLiteral("pdf"));
    if (extension == u"html" || extension == u"htm") return bundledIcon(QStringLiteral("formatted"));
    if (pathIsPlainBook(path)) return bundledIcon(QStringLiteral("book"));
    if (markdownExtensions().contains(extension) || builtInPlainTextExtensions().contains(extension))
        return bundledIcon(QStringLiteral("text"));
    return bundledIcon(QStringLiteral("document"));
}

} // namespace tomelet::desktop
