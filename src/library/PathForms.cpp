// SPDX-License-Identifier: GPL-3.0-or-later
#include "library/PathForms.h"

#include "foundation/Collation.h"
#include "foundation/Folder.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"

#include <QUrl>

namespace tomelet {

static qsizetype anchorMark(const QString &path)
{
    if (recognisedExtensions().contains(lowerExtension(path))) return -1;
    const qsizetype mark = path.lastIndexOf(u'#');
    return mark > path.lastIndexOf(u'/') ? mark : -1;
}

QString tm_pathAnchor(const QString &path)
{
    const qsizetype mark = anchorMark(path);
    return mark < 0 ? QString() : path.mid(mark + 1);
}

QString tm_pathWithoutAnchor(const QString &path)
{
    const qsizetype mark = anchorMark(path);
    return mark < 0 ? path : path.left(mark);
}

QString tm_pathByAppendingAnchor(const QString &path, const QString &anchor)
{
    return anchor.isEmpty() ? path : path + u'#' + anchor;
}

QString percentEncodedPath(const QString &text)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(text, "!$&'()*+,:=@/"));
}

QString percentDecoded(const QString &text)
{
    static const auto isHex = [](QChar c) { return QStringView(u"0123456789abcdefABCDEF").contains(c); };
    for (qsizetype i = text.indexOf(u'%'); i >= 0; i = text.indexOf(u'%', i + 1))
        if (i + 2 >= text.size() || !isHex(text[i + 1]) || !isHex(text[i + 2])) return text;
    const QByteArray bytes = QByteArray::fromPercentEncoding(text.toUtf8());
    const QString decoded = QString::fromUtf8(bytes);
    return decoded.toUtf8() == bytes ? decoded : text;
}

QString urlScheme(const QString &text)
{
    const qsizetype colon = text.indexOf(u':');
    if (colon < 1 || !text[0].isLetter() || text[0].unicode() > 127) return {};
    for (const QChar unit : QStringView(text).left(colon)) {
        const bool allowed = unit.unicode() < 128 && (unit.isLetterOrNumber() || QStringView(u"+-.").contains(unit));
        if (!allowed) return {};
    }
    // Blanks and control characters make it no URL, so what looks like a scheme is none.
    for (const QChar unit : text)
        if (unit.unicode() <= 0x20) return {};
    return text.left(colon);
}

static QString reencoded(const QString &path)
{
    return percentEncodedPath(percentDecoded(path));
}

static QString reencodedBeforeAnchor(const QString &path)
{
    return tm_pathByAppendingAnchor(reencoded(tm_pathWithoutAnchor(path)), tm_pathAnchor(path));
}

QString tm_pathEscapedForMarkdownLink(const QString &path)
{
    static const QString filePrefix = QStringLiteral("file://");
    QString result = path;
    if (path.startsWith(filePrefix)) result = filePrefix + reencodedBeforeAnchor(path.mid(filePrefix.size()));
    else if (!path.startsWith(u"http") && urlScheme(path).isEmpty()) result = reencodedBeforeAnchor(path);
    return result.replace(u'(', QStringLiteral("%28")).replace(u')', QStringLiteral("%29"));
}

// The target's components as far as both agree are dropped from the front of both lists.
static void dropCommonFront(QStringList &target, QStringList &reference)
{
    const auto same = [](const QString &a, const QString &b) {
        return localizedCompare(a, b) == 0 || localizedCompare(percentDecoded(a), b) == 0;
    };
    while (!target.isEmpty() && !reference.isEmpty() && same(target.first(), reference.first())) {
        target.removeFirst();
        reference.removeFirst();
    }
}

QString tm_makeRelativeToPath(const QString &target, const QString &folder)
{
    if (target.isEmpty()) return {};
    const QString root = tomeletRoot();
    QString wanted = target;
    wanted.remove(QStringLiteral("tomelet://show")).remove(QStringLiteral("tomelet://"));
    wanted = joinPath(QStringLiteral("/"), tm_normalizedPath(wanted, root));

    const bool wasEncoded =
        !itemExists(fullPathOf(wanted, root)) && itemExists(fullPathOf(percentDecoded(wanted), root));
    if (wasEncoded) wanted = percentDecoded(wanted);

    QStringList targetParts = wanted.split(u'/', Qt::SkipEmptyParts);
    QStringList referenceParts = tm_normalizedPath(folder, root).split(u'/', Qt::SkipEmptyParts);
    dropCommonFront(targetParts, referenceParts);
    const QString result = QStringLiteral("../").repeated(referenceParts.size()) + targetParts.join(u'/');
    if (result.isEmpty()) return QStringLiteral("./");
    return wasEncoded ? percentEncodedPath(result) : result;
}

QString tm_escapeIllegalCharacters(const QString &name)
{
    QString escaped;
    for (const QChar unit : name) {
        const QChar safe = QStringView(u"/\\:?*<>\"|&").contains(unit) ? QChar(u'-') : unit;
        if (safe == u'-' && escaped.endsWith(u'-')) continue;
        escaped.append(safe);
    }
    const auto trims = [](QChar unit) { return QStringView(u"-_+#& ").contains(unit); };
    qsizetype begin = 0;
    qsizetype end = escaped.size();
    while (begin < end && trims(escaped[begin])) ++begin;
    while (end > begin && trims(escaped[end - 1])) --end;
    return begin == end ? escaped : escaped.mid(begin, end - begin);
}

QString stemThatFits(const QString &stem, const QString &tail)
{
    // File systems hold names of at most 255 bytes; the property file's ".plist" must fit behind the name too.
    static constexpr qsizetype longestName = 255 - 6;
    const qsizetype bytes = std::max<qsizetype>(0, longestName - tail.toUtf8().size());
    QString cut = stem;
    while (cut.toUtf8().size() > bytes) cut.chop(cut.back().isLowSurrogate() ? 2 : 1);
    return cut;
}

QString safeFileName(const QString &name, qulonglong number)
{
    const QString extension = pathExtension(name);
    const QString ending = extension.isEmpty() ? QString() : u'.' + extension;
    const QString stem = tm_escapeIllegalCharacters(ending.isEmpty() ? name : name.chopped(ending.size()));
    const QString tail = number == 0 ? ending : QStringLiteral(" %1").arg(number) + ending;
    return stemThatFits(stem, tail) + tail;
}

QString tm_uniqueNameForFileatPath(const QString &name, const QString &folder)
{
    QString path = joinPath(folder, safeFileName(name));
    for (qulonglong count = 1; itemExists(path); ++count) path = joinPath(folder, safeFileName(name, count));
    return path;
}

QString tm_stringByEscapingWildcards(const QString &text)
{
    QString escaped;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool pair = text[i].isHighSurrogate() && i + 1 < text.size();
        const char32_t point = pair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i].unicode();
        if (!QChar::isLetter(point)) escaped.append(u'\\');
        escaped.append(text[i]);
        if (pair) escaped.append(text[++i]);
    }
    return escaped;
}

} // namespace tomelet
