// SPDX-License-Identifier: GPL-3.0-or-later
// Screenplays as operations on their text.
#include "cli/op/Registry.h"

#include "screenplay/FNHTMLScript.h"
#include "screenplay/FNPaginator.h"
#include "screenplay/FastFountainParser.h"

namespace tomelet::cli {

namespace {

QVariantMap valuesOf(const FNElement &element)
{
    QVariantMap values{{QStringLiteral("elementType"), element.elementType},
                       {QStringLiteral("elementText"), element.elementText},
                       {QStringLiteral("isCentered"), element.isCentered},
                       {QStringLiteral("isDualDialogue"), element.isDualDialogue},
                       {QStringLiteral("sectionDepth"), element.sectionDepth}};
    if (element.sceneNumber) values.insert(QStringLiteral("sceneNumber"), *element.sceneNumber);
    return values;
}

QVariantList listOf(const QList<FNElement> &elements)
{
    QVariantList list;
    for (const FNElement &element : elements) list.append(valuesOf(element));
    return list;
}

QVariantList listOf(const FNTitlePage &page)
{
    QVariantList list;
    for (const FNTitleEntry &entry : page)
        list.append(QVariantMap{{entry.key, QVariantList(entry.values.begin(), entry.values.end())}});
    return list;
}

QVariantMap parseContents(const QString &text)
{
    const auto parser = FastFountainParser::initWithString(text);
    return {{QStringLiteral("titlePage"), listOf(parser.titlePage)},
            {QStringLiteral("elements"), listOf(parser.elements)}};
}

FNPaginator pagesOf(const QString &text)
{
    FNPaginator pages = FNPaginator::initWithScript(FNScript::initWithString(text));
    pages.paginate();
    return pages;
}

FNElement elementOfType(const QString &type)
{
    return FNElement::elementOfType(type, {});
}

} // namespace

void addScreenplayOperations(Registry &add)
{
    add.text("parseContents", "text", parseContents);
    add.text("stringFromDocument", "text",
             [](const QString &text) { return FNScript::initWithString(text).stringFromDocument(); });
    add.text("stringFromTitlePage", "text",
             [](const QString &text) { return FNScript::initWithString(text).stringFromTitlePage(); });
    add.text("stringFromBody", "text",
             [](const QString &text) { return FNScript::initWithString(text).stringFromBody(); });

    add.text("numberOfPages", "text", [](const QString &text) { return pagesOf(text).numberOfPages(); });
    add.text("pageAtIndex", "text, index",
             [](const QString &text, qsizetype index) { return listOf(pagesOf(text).pageAtIndex(index)); });
    add.text("heightForString", "string, pointSize, maxWidth, lineHeight",
             [](const QString &string, double size, int width, int lineHeight) {
                 return FNPaginator::heightForString(string, {QStringLiteral("Courier"), size}, width, lineHeight);
             });
    add.text("spaceBeforeForElement", "elementType",
             [](const QString &type) { return FNPaginator::spaceBeforeForElement(elementOfType(type)); });
    add.text("leftMarginForElement", "elementType",
             [](const QString &type) { return FNPaginator::leftMarginForElement(elementOfType(type)); });
    add.text("widthForElement", "elementType",
             [](const QString &type) { return FNPaginator::widthForElement(elementOfType(type)); });

    add.text("html", "text",
             [](const QString &text) { return FNHTMLScript::initWithScript(FNScript::initWithString(text)).html(); });
    add.text("bodyForScript", "text", [](const QString &text) {
        return FNHTMLScript::initWithScript(FNScript::initWithString(text)).bodyForScript();
    });
    add.text("htmlClassForType", "elementType", FNHTMLScript::htmlClassForType);
}

} // namespace tomelet::cli
