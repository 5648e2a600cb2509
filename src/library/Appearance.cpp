// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/Appearance.h"

#include "foundation/Conversions.h"
#include "foundation/Folder.h"
#include "foundation/Fonts.h"
#include "foundation/Platform.h"
#include "library/ItemPath.h"
#include "library/Properties.h"

namespace tomelet {

static const QString fallbackFace = QStringLiteral("Muli");
static const QString faceKey = QStringLiteral("notesFontName");
static const QString sizeKey = QStringLiteral("noteFontSize");

std::optional<Color> tm_colorFromString(const QString &text)
{
    const QStringList parts = text.split(u' ');
    if (parts.size() != 4) return std::nullopt;
    Color color{};
    for (size_t i = 0; i < color.size(); ++i) color[i] = numberFromVariant(parts[qsizetype(i)]);
    return color;
}

static double firstPositive(double a, double b, double otherwise)
{
    if (a > 0) return a;
    return b > 0 ? b : otherwise;
}

double tm_fontSizeAtPath(const QString &path)
{
    return firstPositive(numberFromVariant(tm_inheritedPropertyForKey(path, sizeKey)), settings().number(sizeKey), 14);
}

QString tm_fontFaceAtPath(const QString &path)
{
    const QString root = tomeletRoot();
    for (const auto &log : {QStringLiteral("Dropbox Log.txt"), QStringLiteral("TMMacLog.txt")})
        if (path == joinPath(root, log)) return QStringLiteral("Courier New");
    for (const QString &face : {tm_inheritedPropertyForKey(path, faceKey).toString(), settings().string(faceKey)})
        if (fontIsInstalled(face)) return face;
    return fallbackFace;
}

Font tm_fontForPath(const QString &path)
{
    const double size = tm_fontSizeAtPath(path);
    for (const QString &face : {tm_fontFaceAtPath(path), settings().string(faceKey), fallbackFace})
        if (fontIsInstalled(face)) return {face, size};
    return {systemFontFace(), size};
}

double tm_linespacingAtPath(const QString &path)
{
    const QString key = QStringLiteral("lineSpacing");
    return firstPositive(numberFromVariant(tm_inheritedPropertyForKey(path, key)), settings().number(key), 1.0);
}

qlonglong tm_markdownConverterAtPath(const QString &path)
{
    return integerFromVariant(tm_inheritedPropertyForKey(path, QStringLiteral("MarkdownConverter")));
}

// Colour and image climb together, so that a book's image is never laid over an ancestor's colour.
static std::pair<QString, QString> backgroundAtPath(const QString &path)
{
    const QString colorKey = QStringLiteral("BackgroundColor");
    const QString imageKey = QStringLiteral("BackgroundImage");
    const QString root = tomeletRoot();
    QString at = tm_itemIsChildOfTomelet(path, root) ? path : root;
    for (;;) {
        const QString color = tm_propertyForKey(at, colorKey).toString();
        const QString image = tm_propertyForKey(at, imageKey).toString();
        if (!color.isEmpty() || !image.isEmpty()) return {color, image};
        if (at.isEmpty() || at == u"/" || at.compare(root, Qt::CaseInsensitive) == 0) break;
        at = parentPath(at);
    }
    return {settings().string(colorKey), settings().string(imageKey)};
}

ItemColors tm_colorsAtPath(const QString &path)
{
    const QString textKey = QStringLiteral("TextColor");
    QString text = tm_inheritedPropertyForKey(path, textKey).toString();
    if (text.isEmpty()) text = settings().string(textKey);
    if (text.isEmpty()) text = QStringLiteral("0 0 0 1");
    auto [background, image] = backgroundAtPath(path);
    if (!image.isEmpty() && !image.contains(u"TMResources")) image = lastPathComponent(image);
    if (background.isEmpty()) background = QStringLiteral("1 1 1 1");

    if (!settings().boolean(QStringLiteral("useSolarizedTheme"))) return {text, image, background, text, background};
    if (settings().boolean(QStringLiteral("darkTheme")))
        return {QStringLiteral("0.5137 0.5803 0.5882 1"), {}, QStringLiteral("0.0 0.1686 0.2118 1"), text, background};
    return {QStringLiteral("0.396 0.4824 0.5137 1"), {}, QStringLiteral("0.9921 0.9647 0.8901 1"), text, background};
}

} // namespace tomelet
