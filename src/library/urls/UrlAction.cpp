// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/urls/UrlAction.h"

#include "library/PathForms.h"

#include <QHash>
#include <QStringList>

#include <algorithm>

namespace tomelet {

namespace {

UrlAction::Kind kindOf(const QString &host)
{
    static const QHash<QString, UrlAction::Kind> kinds{
        {QStringLiteral("grab"), UrlAction::Grab},
        {QStringLiteral("addnote"), UrlAction::AddNote},
        {QStringLiteral("search"), UrlAction::Search},
        {QStringLiteral("wifi_sharing"), UrlAction::Unsupported},
        {QStringLiteral("webdav_sync"), UrlAction::Unsupported},
        {QStringLiteral("addnewsketch"), UrlAction::Unsupported},
        {QStringLiteral("append"), UrlAction::LogOnly},
        {QStringLiteral("addnewdoc"), UrlAction::LogOnly},
        {QStringLiteral("addnewtask"), UrlAction::LogOnly},
    };
    return kinds.value(host, UrlAction::Show); // a book "Search" is none of them
}

// "title=A%20b" gives "A b" for the name "title"; nothing for another part.
std::optional<QString> valueOf(const QString &part, QStringView name)
{
    if (!part.startsWith(name, Qt::CaseInsensitive) || part.size() <= name.size() || part[name.size()] != u'=')
        return std::nullopt;
    return percentDecoded(part.mid(name.size() + 1));
}

// Takes the parts that name title and book out of the others.
void takeTitleAndParent(QStringList &parts, UrlAction &action)
{
    parts.removeIf([&action](const QString &part) {
        if (const auto title = valueOf(part, u"title")) action.title = *title;
        else if (const auto parent = valueOf(part, u"parent")) action.parent = *parent;
        else return false;
        return true;
    });
}

QString trimmedSlashes(QString text)
{
    while (text.startsWith(u'/')) text.remove(0, 1);
    while (text.endsWith(u'/')) text.chop(1);
    return text;
}

// "localhost:8080/x" names a port, not a scheme.
bool hasScheme(const QString &address)
{
    const QString scheme = urlScheme(address.section(u' ', 0, 0));
    if (scheme.isEmpty()) return false;
    const QString behind = address.mid(scheme.size() + 1);
    return behind.startsWith(u"//") || behind.isEmpty() || !behind[0].isDigit();
}

QString addressFrom(const QString &encoded)
{
    QString address = percentDecoded(encoded).trimmed();
    if (address.isEmpty()) return {};
    if (!hasScheme(address) && address.contains(u"%3A//", Qt::CaseInsensitive)) {
        // What a bookmarklet escapes once more.
        static const std::pair<QLatin1StringView, QLatin1StringView> escapes[] = {
            {QLatin1StringView("%3A//"), QLatin1StringView("://")}, {QLatin1StringView("%3F"), QLatin1StringView("?")},
            {QLatin1StringView("%3D"), QLatin1StringView("=")},     {QLatin1StringView("%3A"), QLatin1StringView(":")},
            {QLatin1StringView("%23"), QLatin1StringView("#")},
        };
        for (const auto &[escape, sign] : escapes) address.replace(escape, sign, Qt::CaseInsensitive);
    }
    return hasScheme(address) ? address : QStringLiteral("http://") + address;
}

// Of several texts the last one holds.
QString lastText(const QStringList &parts)
{
    QString text;
    for (const QString &part : parts)
        if (const QString decoded = trimmedSlashes(percentDecoded(part)); !decoded.isEmpty()) text = decoded;
    return text;
}

void readSearch(QStringList parts, UrlAction &action)
{
    parts.removeIf([&action](const QString &part) {
        const auto scope = valueOf(part, u"scope");
        if (scope) action.scope = *scope;
        return scope.has_value();
    });
    action.term = lastText(parts);
}

} // namespace

std::optional<UrlAction> parseUrlAction(const QString &url)
{
    static const QString scheme = QStringLiteral("tomelet://");
    const QString text = url.trimmed();
    if (!text.startsWith(scheme, Qt::CaseInsensitive)) return std::nullopt;
    const QString rest = text.mid(scheme.size());
    const qsizetype hostEnd =
        std::find_if(rest.begin(), rest.end(), [](QChar unit) { return QStringView(u"/?#").contains(unit); }) -
        rest.begin();
    UrlAction action;
    action.host = rest.left(hostEnd);
    action.kind = kindOf(action.host);
    if (action.kind == UrlAction::Show) {
        const bool named = action.host == u"show";
        action.item = named ? rest.mid(hostEnd) : rest;
        if (!action.item.startsWith(u'/')) action.item.prepend(u'/');
        return action;
    }
    const QString path = rest.mid(hostEnd + 1);
    QStringList parts = path.split(u'&');
    if (parts.size() > 1) takeTitleAndParent(parts, action);
    switch (action.kind) {
    case UrlAction::Grab: action.address = addressFrom(parts.join(u'&')); break;
    case UrlAction::AddNote: action.text = lastText(parts); break;
    case UrlAction::Search: readSearch(parts, action); break;
    default: break;
    }
    return action;
}

} // namespace tomelet
