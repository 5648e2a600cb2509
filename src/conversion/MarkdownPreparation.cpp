// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/MarkdownPreparation.h"

#include "conversion/CodeRanges.h"
#include "conversion/Edits.h"
#include "conversion/Patterns.h"
#include "conversion/TextUtilities.h"
#include "conversion/WikiLinks.h"
#include "foundation/Log.h"
#include "foundation/Platform.h"
#include "library/PathForms.h"

#include <algorithm>
#include <functional>

namespace tomelet {

namespace {

using Change = std::pair<Range, QString>;

/// A text on its way through the steps, with what is known of its code.
class Preparation
{
public:
    explicit Preparation(QString source)
        : text(std::move(source))
    {}

    /// Rewrites each match outside code, from the last to the first, as `change` tells: a range of the text and what
    /// takes its place, or a range that is not found to leave the match alone.
    void rewriteOutsideCode(const QString &pattern, int options,
                            const std::function<Change(const PatternMatch &)> &change)
    {
        const PatternMatches matches = matchesOfPattern(text, pattern, options);
        if (matches.isEmpty()) return;
        Edits edits;
        // The text with the changes made so far; matches in front of them lie where they lay.
        QString current = text;
        bool currentIsStale = false;
        for (size_t i = matches.size(); i-- > 0;) {
            if (!m_code.isValid() && currentIsStale) {
                current = edits.appliedTo(text);
                currentIsStale = false;
            }
            if (m_code.contains(current, matches[i].range())) continue;
            const auto [range, replacement] = change(matches[i]);
            if (!range.isFound()) continue;
            const QStringView old = QStringView(text).sliced(range.location, range.length);
            if (old == replacement) continue;
            edits.replace(range, replacement);
            currentIsStale = true;
            if (old.size() != replacement.size()) m_code.noteChange(old, replacement);
            m_changed = true;
        }
        takeOver(edits);
    }

    /// The same without a look at what is code.
    void rewrite(const QString &pattern, int options, const std::function<Change(const PatternMatch &)> &change)
    {
        const PatternMatches matches = matchesOfPattern(text, pattern, options);
        Edits edits;
        for (size_t i = matches.size(); i-- > 0;) {
            const auto [range, replacement] = change(matches[i]);
            if (range.isFound()) edits.replace(range, replacement);
        }
        m_changed = m_changed || !edits.isEmpty();
        takeOver(edits);
    }

    void set(const QString &changed)
    {
        text = changed;
        m_code.invalidate();
    }

    [[nodiscard]] QString group(const PatternMatch &match, size_t number) const
    {
        return substring(text, match.group(number));
    }

    QString text;

private:
    void takeOver(const Edits &edits)
    {
        if (!edits.isEmpty()) text = edits.appliedTo(text);
        // Ranges behind a change have moved, so the next step finds them anew.
        if (m_changed) m_code.invalidate();
        m_changed = false;
    }

    CodeRanges m_code;
    bool m_changed = false;
};

constexpr Range leaveAlone{};

// -- common steps -----------------------------------------------------------------------------------------------------

QString withMathSpaced(QString formula)
{
    return formula.replace(u'_', QStringLiteral(" _ ")).replace(u'^', QStringLiteral(" ^ "));
}

void spaceInlineMath(Preparation &work, int converter)
{
    const bool discount = converter == DiscountConverter;
    work.rewriteOutsideCode(QStringLiteral(R"(\s(\$)([^\$]+?)(\$))"), PatternLineAnchored,
                            [&](const PatternMatch &match) -> Change {
                                const Range from = match.group(1);
                                const Range whole{from.location, match.group(3).end() - from.location};
                                const QString formula = withMathSpaced(work.group(match, 2));
                                if (!discount) return {whole, u'$' + formula + u'$'};
                                return {whole, QStringLiteral("\\(") + formula + QStringLiteral("\\)")};
                            });
    work.set(QString(work.text).remove(mathMark));
    logLine(QStringLiteral("assuming MathJax"));
}

void commonSteps(Preparation &work, int converter)
{
    const Settings &values = settings();
    const bool hasMath = work.text.contains(u"mathjax", Qt::CaseInsensitive);
    if (values.boolean(QStringLiteral("ignoreCommentsForWordCount"))) work.set(tm_stringByRemovingComments(work.text));
    if (!values.boolean(QStringLiteral("useMarkdownStrictly"))) work.set(tm_makeEveryNewlineaLinebreak(work.text));
    if (work.text.contains(u"[[")) work.set(tm_makeWikiLinksMarkdownLinks(work.text));

    work.rewriteOutsideCode(QStringLiteral(R"((\^\[).+?\])"), PatternDotAll, [](const PatternMatch &match) -> Change {
        return {match.group(1), QStringLiteral("[^ ")};
    });
    if (hasMath) spaceInlineMath(work, converter);
    work.rewriteOutsideCode(
        QStringLiteral("(?<![\\w{])(==([^\n=]+?)==)\\W"), PatternDotAll, [&](const PatternMatch &match) -> Change {
            return {match.group(1), QStringLiteral("<mark>") + work.group(match, 2) + QStringLiteral("</mark>")};
        });
    work.rewriteOutsideCode(QStringLiteral(R"x(<<fnote "([^"]+?)">>)x"), PatternDotAll,
                            [&](const PatternMatch &match) -> Change {
                                return {match.range(), QStringLiteral("[^ ") + work.group(match, 1) + u']'};
                            });
    work.rewriteOutsideCode(QStringLiteral(R"(^\{\{pagebreak\}\}\s*$)"), PatternCaseInsensitive | PatternLineAnchored,
                            [](const PatternMatch &match) -> Change {
                                return {match.range(), QStringLiteral(">%pagebreak%\n")};
                            });
}

// -- the discount engine ----------------------------------------------------------------------------------------------

// From the match's end on until its brackets balance; the last character of the text is never taken.
QString balancedNote(const QString &text, Range match)
{
    QString note = text.mid(match.location, match.length);
    if (!QStringView(note).sliced(1).contains(u'[')) return note;
    int depth = 1;
    for (qsizetype at = match.end(); depth > 0 && at + 1 < text.size(); ++at) {
        note.append(text[at]);
        if (text[at] == u']') --depth;
        if (text[at] == u'[') ++depth;
    }
    return note;
}

QString noteLabel(const QString &note)
{
    QString inner = note.mid(1, note.size() - 2);
    inner.replace(u'[', u'-').replace(u']', u'-');
    return note.first(1) + inner + note.last(1);
}

QString noteText(const QString &note)
{
    qsizetype begin = 0;
    qsizetype end = note.size();
    while (begin < end && QStringView(u"[]^").contains(note[begin])) ++begin;
    while (end > begin && QStringView(u"[]^").contains(note[end - 1])) --end;
    return note.mid(begin, end - begin);
}

bool holdsMarkOfCode(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c == u'`' || c == u'~' || c == u'|'; });
}

void inlineNotesToReferences(Preparation &work)
{
    QString text = work.text;
    CodeRanges code;
    const PatternMatches matches = matchesOfPattern(text, QStringLiteral(R"(\[\^ ?[^\]]+?\](?!:))"), PatternDotAll);
    for (size_t i = matches.size(); i-- > 0;) {
        const Range match = matches[i].range();
        if (code.contains(text, match)) continue;
        const QString note = balancedNote(text, match);
        if (text.contains(note + u':')) continue;
        const Range grown{match.location, note.size()};
        if (code.overlaps(text, grown)) continue;
        const QString label = noteLabel(note);
        const QString definition = u'\n' + label + QStringLiteral(": ") + noteText(note);
        // At the end of the text, only marks of code make code in front of it, and a mark there that is followed now.
        if (holdsMarkOfCode(definition) || holdsMarkOfCode(QStringView(text).last(1))) code.invalidate();
        code.noteChange(note, label);
        text.append(definition);
        replaceRange(text, grown, label);
    }
    work.set(text);
}

void discountSteps(Preparation &work)
{
    inlineNotesToReferences(work);
    if (!settings().boolean(QStringLiteral("useMMDCompatibleAnchors")))
        work.rewrite(QStringLiteral(R"(^#+ ?(.+?)(\[).+?(\])([\s#]*)$)"), PatternLineAnchored,
                     [&](const PatternMatch &match) -> Change {
                         const Range from = match.group(1);
                         const Range whole{from.location, match.group(4).end() - from.location};
                         const qsizetype inner = match.group(2).end();
                         return {whole, u'[' + work.group(match, 1) + QStringLiteral("](id:") +
                                            work.text.mid(inner, match.group(3).location - inner) + u')'};
                     });
    work.set(regexSweep(work.text, QStringLiteral(R"((- \[.\])\s+?)"), QStringLiteral("$1 ")));
}

// -- the notebook's own engine ----------------------------------------------------------------------------------------

QString trimmedTarget(const QString &target, qsizetype prefix)
{
    qsizetype begin = prefix;
    qsizetype end = target.size();
    while (begin < end && (target[begin] == u' ' || target[begin] == u'\t')) ++begin;
    while (end > begin && (target[end - 1] == u' ' || target[end - 1] == u'\t')) --end;
    return target.mid(begin, end - begin);
}

Change linkChange(const PatternMatch &match, const QString &label, const QString &target)
{
    static const struct
    {
        QString prefix, open, close;
    } forms[] = {
        {QStringLiteral("class:"), QStringLiteral("<span class=\""), QStringLiteral("</span>")},
        {QStringLiteral("id:"), QStringLiteral("<span id=\""), QStringLiteral("</span>")},
        {QStringLiteral("abbr:"), QStringLiteral("<abbr title=\""), QStringLiteral("</abbr>")},
    };
    for (const auto &form : forms)
        if (target.startsWith(form.prefix))
            return {match.range(),
                    form.open + trimmedTarget(target, form.prefix.size()) + QStringLiteral("\">") + label + form.close};
    return {match.group(2), tm_pathEscapedForMarkdownLink(target)};
}

QString divOf(const QString &className, const QString &body)
{
    const QString inner = regexSweep(body, QStringLiteral("\n> ?"), QStringLiteral("\n"));
    return QStringLiteral("<div class=\"") + className + QStringLiteral("\">\n\n") + inner +
           QStringLiteral("\n\n</div>\n\n");
}

void ownSteps(Preparation &work)
{
    if (work.text.contains(u"\n[![]"))
        work.set(QString(work.text).replace(QStringLiteral("\n[![]"), QStringLiteral("\n\n[![]")));
    work.rewriteOutsideCode(QStringLiteral(R"(\[([^\]]*)\]\((.*?)\))"), 0, [&](const PatternMatch &match) -> Change {
        return linkChange(match, work.group(match, 1), work.group(match, 2));
    });
    work.rewrite(QStringLiteral(R"(^\s*\{\{TOC:(.{1,3})\}\}.*?$)"), PatternLineAnchored,
                 [&](const PatternMatch &match) -> Change {
                     const QString range = work.group(match, 1);
                     if (!range.endsWith(u'-')) return {leaveAlone, {}};
                     return {match.group(1), range + u'9'};
                 });
    work.rewrite(QStringLiteral(R"(^> ?%([^%]+?)%(.*?)((\n\s*?\n)|\z))"), PatternDotAll | PatternLineAnchored,
                 [&](const PatternMatch &match) -> Change {
                     return {match.range(), divOf(work.group(match, 1), work.group(match, 2))};
                 });
}

} // namespace

QString tm_stringPreparedForConversionWith(const QString &text, int converter)
{
    Preparation work(text);
    commonSteps(work, converter);
    if (converter == DiscountConverter) discountSteps(work);
    else if (converter == OwnConverter) ownSteps(work);
    return work.text;
}

// -- line breaks ------------------------------------------------------------------------------------------------------

static bool isRule(QStringView line)
{
    return line.size() >= 3 && std::all_of(line.begin(), line.end(), [](QChar c) { return c == u'-'; });
}

static bool breaksByItself(QStringView line)
{
    return line.isEmpty() || line.startsWith(u">%") || line.startsWith(u"> %") || isRule(line) ||
           line.endsWith(u"<-") || line.endsWith(u'#') || line.endsWith(u'=') || line.endsWith(u"  ");
}

QString tm_makeEveryNewlineaLinebreak(const QString &text)
{
    QString unified = text;
    unified.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    QString result;
    result.reserve(unified.size() + unified.size() / 20 + 1);
    bool inFence = false;
    for (const QStringView line : QStringView(unified).split(u'\n')) {
        bool plain = breaksByItself(line) || inFence;
        if (line.startsWith(u"```") || line.startsWith(u"~~~")) {
            // The closing line gets the blanks, so that the engine keeps it apart from what follows.
            inFence = !inFence;
            plain = inFence;
        }
        result.append(line).append(plain ? QStringView(u"\n") : QStringView(u"  \n"));
    }
    return result;
}

} // namespace tomelet
