// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/Organiser.h"

#include "foundation/Clock.h"
#include "foundation/Platform.h"
#include "library/Properties.h"

namespace tomelet {

Organiser::~Organiser() = default;

QStringList Organiser::itemsWithContext(const QString &)
{
    return {};
}

QStringList Organiser::tasklists()
{
    return settings().stringList(QStringLiteral("allTaskLists"));
}

TaskRow Organiser::taskRow(const QString &, const QVariant &)
{
    return {farFuture(), {}, false};
}

QString Organiser::withContextsMarked(const QString &, const QString &html)
{
    return html;
}

void Organiser::setMark(const QString &path, const QString &mark, bool on)
{
    QStringList tags = tm_propertyForKey(path, QStringLiteral("Tags")).toStringList();
    if (tags.contains(mark) == on) return;
    if (on) tags.append(mark);
    else tags.removeAll(mark);
    tm_setProperty(path, QVariantList(tags.begin(), tags.end()), QStringLiteral("Tags"));
}

static std::unique_ptr<Organiser> &current()
{
    static std::unique_ptr<Organiser> instance;
    return instance;
}

Organiser &organiser()
{
    if (!current()) current() = std::make_unique<Organiser>();
    return *current();
}

void setOrganiser(std::unique_ptr<Organiser> replacement)
{
    current() = std::move(replacement);
}

} // namespace tomelet
