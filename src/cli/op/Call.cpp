// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/op/Call.h"

#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/op/Registry.h"
#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "foundation/SafeWriter.h"
#include "library/Root.h"

#include <exception>

namespace tomelet::cli {

QVariant withIsoDates(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString: {
        const QString text = value.toString();
        const bool looksLikeDate = text.size() >= 19 && text[4] == u'-' && text[7] == u'-' && text[10] == u'T';
        const QDateTime date = looksLikeDate ? dateFromIso(text) : QDateTime();
        return date.isValid() ? QVariant(date) : value;
    }
    case QMetaType::QVariantList: {
        QVariantList list = value.toList();
        for (QVariant &entry : list) entry = withIsoDates(entry);
        return list;
    }
    case QMetaType::QVariantMap: {
        QVariantMap map = value.toMap();
        for (QVariant &entry : map) entry = withIsoDates(entry);
        return map;
    }
    default: return value;
    }
}

namespace {

std::optional<QString> receiverText(const QString &word)
{
    if (word == u"-") return QString::fromUtf8(readStandardInput());
    if (!word.startsWith(u'@')) return word;
    const auto bytes = readFile(word.mid(1));
    if (!bytes) return std::nullopt;
    return QString::fromUtf8(*bytes);
}

QVariant receiverValue(const QVariant &given, Receiver kind)
{
    switch (kind) {
    case Receiver::Path: {
        // An empty text is no item here; only commands take it for the root.
        const QString text = textFromVariant(given);
        return text.isEmpty() ? text : itemPath(text);
    }
    case Receiver::Value:
        return withIsoDates(given.typeId() == QMetaType::QString ? variantFromJsonText(given.toString()) : given);
    case Receiver::Text:
    case Receiver::None: return given;
    }
    return given;
}

// Without a notebook a relative path would be one of the working folder, and a lost root would be made anew.
bool hasNoPlace(const QString &path)
{
    const QString root = tomeletRoot();
    if (path.isEmpty()) return false;
    return !path.startsWith(u'/') || (!root.isEmpty() && path.startsWith(root) && !isFolder(root));
}

// Where a parameter names a place in the library, it may be given like an item.
bool namesAPlace(const QString &parameter)
{
    return parameter == u"target" || parameter == u"folder";
}

} // namespace

CallResult callOperation(const QString &name, QVariantList arguments, bool fromShell)
{
    const Operation *operation = registry().find(name, arguments.size());
    if (!operation)
        return {CallResult::UnknownName,
                QStringLiteral("there is no operation \"%1\"; the nearest are %2")
                    .arg(name, registry().nearest(name).join(QStringLiteral(", "))),
                {},
                false};
    if (arguments.size() != operation->parameters.size())
        return {CallResult::WrongArguments,
                QStringLiteral("%1 takes: %2").arg(name, operation->parameters.join(QStringLiteral(", "))),
                {},
                false};

    if (operation->receiver != Receiver::None) {
        QVariant receiver = arguments[0];
        if (fromShell) {
            const auto text = receiverText(receiver.toString());
            if (!text)
                return {CallResult::Failure,
                        QStringLiteral("%1 cannot be read").arg(receiver.toString().mid(1)),
                        {},
                        false};
            receiver = *text;
        }
        arguments[0] = receiverValue(receiver, operation->receiver);
        if (operation->receiver == Receiver::Path && hasNoPlace(arguments[0].toString()))
            return {CallResult::Failure,
                    QStringLiteral("there is no notebook for %1").arg(textFromVariant(receiver)),
                    {},
                    false};
    }
    for (qsizetype i = 1; i < arguments.size(); ++i)
        if (namesAPlace(operation->parameters[i]) && !textFromVariant(arguments[i]).isEmpty())
            arguments[i] = itemPath(textFromVariant(arguments[i]));
    try {
        return {CallResult::Ok, {}, operation->call(arguments), operation->hasResult};
    } catch (const std::exception &error) {
        return {CallResult::Failure, QString::fromUtf8(error.what()), {}, false};
    }
}

} // namespace tomelet::cli
