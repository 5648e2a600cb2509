// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/PageBoxes.h"

#include "conversion/Edits.h"
#include "conversion/MarkdownPreparation.h"
#include "conversion/MarkdownToHtml.h"
#include "conversion/Patterns.h"
#include "conversion/TextUtilities.h"
#include "editor/DocumentForms.h"
#include "foundation/NotificationCenter.h"
#include "foundation/Platform.h"
#include "foundation/SafeWriter.h"
#include "library/Appearance.h"

namespace tomelet {

namespace {

// Only the engines know which brackets become boxes. So the source is converted with a number behind each pair of
// brackets, written in units that no text has a use for, and the boxes of the page tell theirs.
constexpr char16_t numberBegin = u'\uF6DE';
constexpr char16_t numberEnd = u'\uF6DF';
constexpr char16_t zero = u'\uF6E0';

QString labelFor(size_t number)
{
    QString label = QString::number(number);
    for (QChar &digit : label) digit = QChar(char16_t(zero + digit.digitValue()));
    return QChar(numberBegin) + label + QChar(numberEnd);
}

size_t numberOf(QString label)
{
    for (QChar &digit : label) digit = QChar(char16_t(u'0' + digit.unicode() - zero));
    return label.toULongLong();
}

// Brackets in front of a link's target are the link's, but for one engine not at the beginning of an item.
PatternMatches bracketsOf(const QString &path, const QString &source)
{
    static const QString noLink = QStringLiteral(R"(\[[ |xX]\](?![(\[:])[ \t]?)");
    static const QString item = QStringLiteral(R"(\[[ |xX]\](?:(?<=[-*+.]\s\[.\])|(?![(\[:]))[ \t]?)");
    const qlonglong engine = isCombinedMarkdown(path) ? settings().integer(QStringLiteral("MarkdownConverter"))
                                                      : tm_markdownConverterAtPath(path);
    return matchesOfPattern(source, engine == DiscountConverter ? item : noLink);
}

QString labelled(const QString &source, const PatternMatches &brackets)
{
    Edits edits;
    for (size_t i = brackets.size(); i-- > 0;) edits.replace({brackets[i].range().end(), 0}, labelFor(i));
    return edits.appliedTo(source);
}

QString pageOf(const QString &path, const QString &source)
{
    return isCombinedMarkdown(path) ? tm_stripMarkdownFromHTML(combinedForm(source))
                                    : markdownPageWithText(path, source);
}

PatternMatches boxesOf(const QString &page)
{
    static const QString item =
        QStringLiteral(R"x(<li\s[^>]*?class="(?:[^"]*\s)?tm_checkbox(_done)?(?:\s[^"]*)?"[^>]*>)x");
    static const QString label = QStringLiteral(R"((?:\s*<p>)*\s*(?:\x{F6DE}([\x{F6E0}-\x{F6E9}]+)\x{F6DF})?)");
    return matchesOfPattern(page, item + label);
}

QString toggled(QString source, qsizetype place)
{
    source[place] = source[place] == u' ' ? u'x' : u' ';
    return source;
}

} // namespace

qsizetype placeOfBox(const QString &path, const QString &source, const PageBox &box)
{
    const PatternMatches brackets = bracketsOf(path, source);
    if (brackets.isEmpty() || source.contains(QChar(numberBegin))) return -1;
    const QString page = pageOf(path, labelled(source, brackets));
    const PatternMatches boxes = boxesOf(page);
    if (qsizetype(boxes.size()) != box.count || box.number < 0 || box.number >= box.count) return -1;
    const PatternMatch found = boxes[size_t(box.number)];
    if (found.group(1).isFound() != box.isDone || !found.group(2).isFound()) return -1;
    const size_t number = numberOf(substring(page, found.group(2)));
    if (number >= brackets.size()) return -1;
    const qsizetype place = brackets[number].range().location + 1;
    return (source[place] == u' ') == box.isDone ? -1 : place;
}

BoxResult toggleBox(const QString &path, const PageBox &box)
{
    const auto bytes = readFile(path);
    if (!bytes) return BoxResult::NotFound;
    const DecodedText decoded = decodeText(*bytes);
    if (encodeText(decoded.text, decoded.encoding, decoded.byteOrderMark) != *bytes) return BoxResult::NotWritten;
    const bool isCombined = isCombinedMarkdown(path);
    const QString source = isCombined ? tm_htmlToPlainText(decoded.text) : decoded.text;
    const qsizetype place = placeOfBox(path, source, box);
    if (place < 0) return BoxResult::NotFound;
    const QString changed = toggled(source, place);
    TextForm form{decoded.encoding, decoded.byteOrderMark};
    if (!writeFile(path, bytesOfText(isCombined ? combinedForm(changed) : changed, form))) return BoxResult::NotWritten;
    notifications().postPath(QStringLiteral("TMLTFileModifiedOnDiskNotification"), path);
    return BoxResult::Toggled;
}

} // namespace tomelet
