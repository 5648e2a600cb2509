// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/StyleSheets.h"

#include "conversion/Patterns.h"
#include "foundation/Folder.h"
#include "foundation/Fonts.h"
#include "foundation/Localization.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "foundation/Resources.h"
#include "foundation/SafeWriter.h"
#include "library/Appearance.h"
#include "library/ItemPath.h"
#include "library/Properties.h"

#include <QLocale>

#include <algorithm>
#include <cmath>

namespace tomelet {

namespace {

const QString defaultSheet = QStringLiteral("CSS/Default Theme.css");
const QString stylePattern = QStringLiteral("<style.*?</style>");

QString fileOfSheet(const QString &name)
{
    if (name.startsWith(u"CSS/")) return resourcePath(QStringLiteral("CSS/") + lastPathComponent(name));
    return fullPathOf(u'/' + name);
}

QString readUtf8(const QString &path)
{
    return QString::fromUtf8(readFile(path).value_or(QByteArray()));
}

} // namespace

QString tm_applicableStyleSheet(const QString &path)
{
    QString name = tm_inheritedPropertyForKey(path, QStringLiteral("CSS")).toString();
    if (name.isEmpty()) name = settings().string(QStringLiteral("defaultStyleSheet"));
    if (name.isEmpty()) return defaultSheet;
    const QString file = name.startsWith(u"TMResources") ? fullPathOf(u'/' + name) : resourcePath(name);
    return itemExists(file) ? name : defaultSheet;
}

QStringList availableStyleSheets()
{
    QStringList sheets;
    const auto add = [&sheets](const QString &folder, const QString &prefix) {
        for (const QString &name : namesInFolder(folder))
            if (name.endsWith(u".css")) sheets.append(prefix + name);
    };
    add(resourcePath(QStringLiteral("CSS")), QStringLiteral("CSS/"));
    add(joinPath(tomeletRoot(), QStringLiteral("TMResources/CSS")), QStringLiteral("TMResources/CSS/"));
    return sheets;
}

// -- directives -------------------------------------------------------------------------------------------------------

namespace {

QString resolvedSheetName(QString name, const QStringList &available)
{
    if (!name.endsWith(u".css", Qt::CaseInsensitive)) name += QStringLiteral(".css");
    const QLocale locale;
    const QString lower = locale.toLower(name);
    for (const QString &sheet : available)
        if (locale.toLower(sheet) == lower) return sheet;
    for (const QString &sheet : available)
        if (locale.toLower(lastPathComponent(sheet)) == locale.toLower(lastPathComponent(name))) return sheet;
    return name;
}

// Scripts and links of an included file go behind the sheet; what is inside its style element is what is included.
QString includedText(const QString &content, QString &behind)
{
    for (const auto &pattern : {QStringLiteral("<script.*?</script>"), QStringLiteral("<link .*?>")}) {
        const PatternMatches matches = matchesOfPattern(content, pattern, PatternDotAll);
        for (size_t i = 0; i < matches.size(); ++i) behind += u'\n' + substring(content, matches[i].range()) + u'\n';
    }
    const Range style =
        rangeOfPattern(content, QStringLiteral("<style.*?>(.*?)</style>"), PatternDotAll, wholeRange, 1);
    return style.isFound() ? substring(content, style) : content;
}

} // namespace

QString tm_styleSheetWithResolvedIncludes(const QString &sheet)
{
    static const QString pattern = QStringLiteral(R"x(^\s*?@tm_include:\s*?"(.+?)";)x");
    const QStringList available = availableStyleSheets();
    QStringList seen;
    QString text = sheet;
    for (;;) {
        const PatternMatches found = firstMatchOfPattern(text, pattern, PatternCaseInsensitive | PatternLineAnchored);
        if (found.isEmpty()) return text;
        const Range directive = found[0].range();
        const QString file = fileOfSheet(resolvedSheetName(substring(text, found[0].group(1)), available));
        const QString name = lastPathComponent(file);
        QString included;
        QString behind;
        if (seen.contains(name)) {
            logLine(QStringLiteral("skipping  %1").arg(name));
        } else {
            seen.append(name);
            logLine(QStringLiteral("including %1").arg(name));
            included = includedText(readUtf8(file), behind);
        }
        replaceRange(text, directive, included);
        text += behind;
    }
}

QStringList tm_customClassesInStylesheet(const QString &sheet)
{
    QStringList classes{localized(TOMELET_TEXT("code"))};
    const PatternMatches matches =
        matchesOfPattern(sheet, QStringLiteral("@tm_classes:([^;]+?);"), PatternLineAnchored);
    for (size_t i = 0; i < matches.size(); ++i) {
        for (const QString &piece : substring(sheet, matches[i].group(1)).trimmed().split(u',')) {
            if (piece.trimmed() == u"tm_reset") classes.clear();
            else classes.append(piece.trimmed());
        }
    }
    return classes;
}

// -- values -----------------------------------------------------------------------------------------------------------

namespace {

struct SheetValues
{
    QString face;
    qlonglong size = 14;
    double lineSpacing = 1;
    QString textColor = QStringLiteral("000000");
    QString backgroundColor = QStringLiteral("ffffff");
    QString image;
};

QString hexOf(const QString &colorText, const QString &otherwise)
{
    const auto color = tm_colorFromString(colorText);
    if (!color) return otherwise;
    QString hex;
    for (size_t i = 0; i < 3; ++i) {
        const int value = std::clamp(int((*color)[i] * 255), 0, 255);
        hex += QStringLiteral("%1").arg(value, 2, 16, QLatin1Char('0'));
    }
    return hex;
}

QString imagePath(const QString &name)
{
    if (name.isEmpty() || name.contains(u"Pattern") || name.contains(u"Plain Line Moleskine")) return {};
    if (name.startsWith(u"Icons/")) return resourcePath(name);
    return tm_itemIsChildOfTomelet(name) ? tm_normalizedPath(name).mid(1) : name;
}

SheetValues valuesOf(const QString &path)
{
    SheetValues values;
    values.face = tm_fontFaceAtPath(path);
    if (values.face.isEmpty()) values.face = QStringLiteral("Muli");
    if (const auto size = qlonglong(tm_fontSizeAtPath(path)); size != 0) values.size = size;
    values.lineSpacing = tm_linespacingAtPath(path);
    const ItemColors colors = tm_colorsAtPath(path);
    values.textColor = hexOf(colors.trueText, values.textColor);
    values.backgroundColor = hexOf(colors.trueBackground, values.backgroundColor);
    values.image = imagePath(colors.imageName);
    return values;
}

QString inheritedOrSetting(const QString &path, const QString &key)
{
    const QString value = tm_inheritedPropertyForKey(path, key).toString();
    return value.isEmpty() ? settings().string(key) : value;
}

QString alignment(const QString &value)
{
    if (value.isEmpty()) return QStringLiteral("initial");
    if (value.contains(u"Just")) return QStringLiteral("justify");
    if (value.contains(u"Right")) return QStringLiteral("right");
    return value.contains(u"Left") ? QStringLiteral("left") : value;
}

// A digit and a point take about 0.55 and 0.28 of the size in the faces that documents are set in.
QString indentWidth(qlonglong size)
{
    return QString::number(double(size) * 0.83, 'f', 6);
}

QString pixels(qlonglong size)
{
    return QStringLiteral("%1px").arg(size);
}

const QString serifRules = QStringLiteral(
    "@font-face {\tfont-family: STIXTwoText;\tfont-style: normal;\tfont-weight: normal;\tsrc: local(STIXTwoText); \t}"
    "@font-face {\tfont-family: STIXTwoText;\tfont-style: normal;\tfont-weight: bold;\t\tsrc: local(STIXTwoText_Bold); "
    "\t}"
    "@font-face {\tfont-family: STIXTwoText;\tfont-style: italic;\tfont-weight: normal;\tsrc: "
    "local(STIXTwoText-Italic); \t}"
    "@font-face {\tfont-family: STIXTwoText;\tfont-style: italic;\tfont-weight: bold;\t\tsrc: "
    "local(STIXTwoText-Italic_Bold-Italic); \t}");

QString faceForPages(const QString &face)
{
    if (face.startsWith(u"System Monospaced")) return QStringLiteral("ui-monospace");
    return face.startsWith(u"System Font") ? QStringLiteral("-apple-system") : face;
}

void fillPlaceholders(QString &sheet, const QString &path, const SheetValues &values)
{
    const Settings &stored = settings();
    const qlonglong printSize = stored.integer(QStringLiteral("printFontSize"));
    const bool dimmed = stored.boolean(QStringLiteral("useDimmedTextColorDarkTheme"));
    const QString darkText = dimmed ? QStringLiteral("#aaa") : QStringLiteral("#fff");
    const bool hyphens = inheritedOrSetting(path, QStringLiteral("HyphenateText")) == u"1";
    const qlonglong printed = printSize != 0 ? printSize : values.size;
    const std::pair<QString, QString> table[] = {
        {QStringLiteral("**TomeletFont**"), faceForPages(values.face)},
        {QStringLiteral("**TomeletFontColor**"), u'#' + values.textColor},
        {QStringLiteral("**TomeletListIndentVar**"), indentWidth(values.size)},
        {QStringLiteral("**TomeletListIndentVarPrintFont**"), indentWidth(printed)},
        {QStringLiteral("**TomeletBGColor**"), u'#' + values.backgroundColor},
        {QStringLiteral("**TomeletFontSize**"), pixels(values.size)},
        {QStringLiteral("**TomeletLinespacing**"),
         QString::number(values.lineSpacing + 0.3, 'f', 1) + QStringLiteral("em")},
        {QStringLiteral("**TomeletTextAlign**"), alignment(inheritedOrSetting(path, QStringLiteral("TextAlignment")))},
        {QStringLiteral("**TomeletHyphens**"), hyphens ? QStringLiteral("auto") : QStringLiteral("none")},
        {QStringLiteral("**TomeletPrintFontSize**"), pixels(printed)},
        {QStringLiteral("**TomeletFontColorDarkAppearance**"), darkText},
        {QStringLiteral("**TomeletFontColorBlackAppearance**"), darkText},
    };
    for (const auto &[placeholder, value] : table) sheet.replace(placeholder, value);
}

void localizeHeadings(QString &sheet)
{
    for (const char *heading :
         {TOMELET_TEXT("Footnotes"), TOMELET_TEXT("Citations"), TOMELET_TEXT("Glossary"), TOMELET_TEXT("Mentions")}) {
        const auto line = [](const QString &text) {
            return QString(QStringLiteral("content: \"") + text + QStringLiteral("\";"));
        };
        sheet.replace(line(QString::fromLatin1(heading).toUpper()), line(QLocale().toUpper(localized(heading))));
    }
}

void placeImage(QString &sheet, const QString &image)
{
    static const QString placeholder = QStringLiteral("**TomeletBGImage**");
    if (!image.isEmpty()) {
        sheet.replace(placeholder, image);
        return;
    }
    for (qsizetype at = sheet.indexOf(placeholder); at >= 0; at = sheet.indexOf(placeholder)) {
        const qsizetype begin = sheet.lastIndexOf(u'\n', at) + 1;
        const qsizetype end = sheet.indexOf(u'\n', at);
        sheet.remove(begin, end < 0 ? sheet.size() - begin : end + 1 - begin);
    }
}

void layOnFewLines(QString &sheet)
{
    const Range style = rangeOfPattern(sheet, stylePattern, PatternDotAll);
    if (!style.isFound()) return;
    replaceRange(sheet, style, substring(sheet, style).replace(u'\n', u' ').remove(u'\t'));
}

} // namespace

QString tm_inheritedStyleSheet(const QString &path)
{
    const SheetValues values = valuesOf(path);
    QString sheet = readUtf8(fileOfSheet(tm_applicableStyleSheet(path)));
    if (!rangeOfPattern(sheet, stylePattern, PatternDotAll).isFound())
        sheet = QStringLiteral("<style type=\"text/css\">\n") + sheet + QStringLiteral("</style>");
    if (sheet.contains(u"@tm_include")) sheet = tm_styleSheetWithResolvedIncludes(sheet);
    if (values.face.startsWith(u"STIXTwoText"))
        sheet =
            regexSweep(sheet, QStringLiteral("<style .*?text/css.*?>"), QStringLiteral("$0\n") + serifRules + u'\n');
    fillPlaceholders(sheet, path, values);
    localizeHeadings(sheet);
    placeImage(sheet, values.image);
    sheet = regexSweep(sheet, QStringLiteral("(?s:/\\*--.*?\\*/\\n?)"), {});
    layOnFewLines(sheet);
    return sheet;
}

// -- themes -----------------------------------------------------------------------------------------------------------

static const QStringList themeVariables{QStringLiteral("--theme-color"), QStringLiteral("--checkbox-color"),
                                        QStringLiteral("--checkbox-done-color")};

static QString withThemeVariables(QString page, const QString &color)
{
    for (const QString &variable : themeVariables)
        page = regexSweep(page, variable + QStringLiteral(":\\s*#000000;"),
                          variable + QStringLiteral(": ") + color + u';');
    return page;
}

static QString withoutDarkRules(QString page)
{
    return page.replace(QStringLiteral("prefers-color-scheme: dark"), QStringLiteral("prefers-color-scheme: Xdark"));
}

QString tm_formattedDocAdjustedToColorTheme(const QString &page)
{
    const Settings &values = settings();
    if (values.boolean(QStringLiteral("useSolarizedTheme"))) return tm_formattedDocAdjustedToSolarizedTheme(page);
    const bool dark = values.boolean(QStringLiteral("darkTheme"));
    const bool avoid = values.boolean(QStringLiteral("avoidDarkThemeForDocuments"));
    if (!dark) return page;
    if (avoid) return withoutDarkRules(page);
    static const QString black = QStringLiteral("prefers-color-scheme: tm_black");
    if (!values.boolean(QStringLiteral("useBlackForDarkTheme")) || !page.contains(black)) return page;
    return withoutDarkRules(page).replace(black, QStringLiteral("prefers-color-scheme: dark"));
}

QString tm_formattedDocAdjustedToDarkTheme(const QString &page)
{
    const Settings &values = settings();
    const bool black =
        values.boolean(QStringLiteral("useBlackForDarkTheme")) && !values.boolean(QStringLiteral("useSolarizedTheme"));
    const bool dimmed = values.boolean(QStringLiteral("useDimmedTextColorDarkTheme"));
    QString result = page;
    if (!page.contains(u"prefers-color-scheme:")) {
        const QString rule = QStringLiteral("<style> body {color: %1; background-color: %2;} @media print { body { "
                                            "background: white; color:black; }  </style>\n")
                                 .arg(dimmed ? QStringLiteral("#aaa") : QStringLiteral("#fff"),
                                      black ? QStringLiteral("#000") : QStringLiteral("#1f1e1e"));
        result.replace(QStringLiteral("</head>"), rule + QStringLiteral("</head>"));
    }
    return withThemeVariables(result, black ? QStringLiteral("#aaa") : QStringLiteral("#afafaf"));
}

QString tm_formattedDocAdjustedToSolarizedTheme(const QString &page)
{
    static const QString rule = QStringLiteral(
        ":root {  color-scheme: light dark; }@media screen {  @media (prefers-color-scheme: light) { body { color: "
        "#657b83; background-color: #fdf6e3; }} @media (prefers-color-scheme: dark)  { body { color: #839496; "
        "background-color: #002b36; }}}");
    QString result = page;
    result.replace(QStringLiteral("</style>"), rule + QStringLiteral("</style>"));
    return withThemeVariables(result, QStringLiteral("#839496"));
}

} // namespace tomelet
