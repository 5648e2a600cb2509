// SPDX-License-Identifier: GPL-3.0-or-later
// `get`, `set`, `unset`, `pin`, `favorite` and `label`: what is known about an item beyond its bytes.
#include "cli/Invocation.h"
#include "cli/Items.h"
#include "cli/commands/AllCommands.h"
#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Properties.h"

#include <QCommandLineParser>
#include <QJsonObject>

namespace tomelet::cli {

namespace {

// The item named first, when the number of words is right, the notebook is open and the item stands there.
std::optional<int> takeItem(const Invocation &call, QCommandLineParser &parser, qsizetype least, qsizetype most,
                            const char *usage, QString &path)
{
    parser.addPositionalArgument(QStringLiteral("args"), QString(), QString::fromLatin1(usage));
    if (const auto status = parse(call, parser)) return status;
    const QStringList words = parser.positionalArguments();
    if (words.size() < least || words.size() > most)
        return wrongUsage(call, QStringLiteral("%1 %2").arg(call.command, QString::fromLatin1(usage)));
    if (const auto status = openNotebook(call)) return status;
    path = itemPath(words.first());
    if (!itemExists(path)) return fail(QStringLiteral("%1 does not exist").arg(path));
    return std::nullopt;
}

void printValue(const Invocation &call, const QVariant &value)
{
    const bool isTree = value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QVariantMap;
    if (call.json || isTree || !value.isValid()) writeJson(jsonFromVariant(value));
    else writeLine(textFromVariant(value));
}

void printAll(const Invocation &call, const QVariantMap &properties)
{
    if (call.json) return writeJson(jsonFromVariant(properties));
    for (auto it = properties.begin(); it != properties.end(); ++it) {
        const QVariant value = propertyFrom(properties, it.key());
        const QString text = textFromVariant(value);
        writeLine(it.key() + QStringLiteral(" = ") + (text.isEmpty() ? jsonTextFromVariant(value) : text));
    }
}

// A word of the shell: JSON for lists, dictionaries and quoted texts; everything else is text, as properties are.
QVariant valueFrom(const QString &key, const QString &word)
{
    const bool isJson = word.startsWith(u'[') || word.startsWith(u'{') || word.startsWith(u'"');
    return propertyFromText(key, isJson ? variantFromJsonText(word) : QVariant(word));
}

// Writing tells of its failure only by a log line; whether it worked is seen in what is stored.
int finish(bool stored, const QString &path)
{
    drainPendingWork();
    return stored ? Done : fail(QStringLiteral("the properties of %1 could not be stored").arg(path));
}

} // namespace

int runGet(const Invocation &call)
{
    const QCommandLineOption inherited(QStringLiteral("inherited"), QStringLiteral("Look in the books above as well."));
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Prints a property of an item, or all that are stored."));
    parser.addOption(inherited);
    QString path;
    if (const auto status = takeItem(call, parser, 1, 2, "ITEM [KEY]", path)) return *status;
    const QStringList words = parser.positionalArguments();
    if (words.size() == 1) printAll(call, storedProperties(path));
    else
        printValue(call, parser.isSet(inherited) ? tm_inheritedPropertyForKey(path, words[1])
                                                 : tm_propertyForKey(path, words[1]));
    return Done;
}

int runSet(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Stores a property of an item."));
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    QString path;
    if (const auto status = takeItem(call, parser, 3, 3, "ITEM KEY VALUE", path)) return *status;
    const QString key = parser.positionalArguments()[1];
    const QVariant value = valueFrom(key, parser.positionalArguments()[2]);
    tm_setProperty(path, value, key);
    if (tm_propertyForKey(path, key) != propertyFrom({{key, value}}, key))
        return fail(QStringLiteral("the property %1 of %2 could not be stored").arg(key, path));
    return finish(true, path);
}

int runUnset(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Removes a property of an item."));
    QString path;
    if (const auto status = takeItem(call, parser, 2, 2, "ITEM KEY", path)) return *status;
    const QString key = parser.positionalArguments()[1];
    tm_removePropertyForKey(path, key);
    return finish(!storedProperties(path).contains(key), path);
}

int runPin(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Pins an item to the top of its book, or unpins it."));
    QString path;
    if (const auto status = takeItem(call, parser, 1, 1, "ITEM", path)) return *status;
    const bool wanted = !tm_isPinned(path);
    tm_pinToTop(path);
    const int status = finish(tm_isPinned(path) == wanted, path);
    if (status == Done) writeLine(wanted ? QStringLiteral("pinned") : QStringLiteral("not pinned"));
    return status;
}

int runFavorite(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Makes an item a favorite, or no longer one."));
    QString path;
    if (const auto status = takeItem(call, parser, 1, 1, "ITEM", path)) return *status;
    const bool wanted = !tm_isFavorite(path);
    tm_toggleFavorite(path);
    const int status = finish(tm_isFavorite(path) == wanted, path);
    if (status == Done) writeLine(wanted ? QStringLiteral("favorite") : QStringLiteral("not a favorite"));
    return status;
}

int runLabel(const Invocation &call)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Labels an item with a colour; \"Auto\" takes the label off."));
    QString path;
    if (const auto status = takeItem(call, parser, 2, 2, "ITEM COLOR", path)) return *status;
    static const QStringList colors{QStringLiteral("red"),   QStringLiteral("orange"), QStringLiteral("yellow"),
                                    QStringLiteral("green"), QStringLiteral("blue"),   QStringLiteral("purple"),
                                    QStringLiteral("gray"),  QStringLiteral("beige"),  QStringLiteral("default"),
                                    QStringLiteral("Auto")};
    const QString color = parser.positionalArguments()[1];
    if (!colors.contains(color))
        return wrongUsage(call, QStringLiteral("a label is one of %1").arg(colors.join(QStringLiteral(", "))));
    tm_setColorLabel(path, color);
    const QString stored = storedProperties(path).value(QStringLiteral("cellColor")).toString();
    return finish(stored == (color == u"Auto" ? QString() : color), path);
}

} // namespace tomelet::cli
