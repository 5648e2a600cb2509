// SPDX-License-Identifier: GPL-3.0-or-later
#include "conversion/MarkdownToHtml.h"

#include "conversion/Discount.h"
#include "conversion/Edits.h"
#include "conversion/HtmlToMarkdown.h"
#include "conversion/MarkdownPreparation.h"
#include "conversion/PageReferences.h"
#include "conversion/Patterns.h"
#include "conversion/StyleSheets.h"
#include "conversion/TextUtilities.h"
#include "foundation/Folder.h"
#include "foundation/Platform.h"
#include "library/Appearance.h"
#include "library/Extensions.h"
#include "library/ItemPath.h"
#include "library/Organiser.h"
#include "library/Properties.h"
#include "library/SetUp.h"
#include "library/TextFile.h"

#include <QHash>
#include <QSet>

namespace tomelet {

namespace {

/// What one conversion knows of its document.
struct Conversion
{
    QString receiver; ///< item path or text
    bool isFile = false;
    QString text;
    int converter = DiscountConverter;
    bool wantsTOC = false;
    QString plainRepresentation;
};

bool isOn(const char *key)
{
    return settings().boolean(QString::fromLatin1(key));
}

Conversion conversionOfFile(const QString &path, const QString &text)
{
    Conversion work;
    work.receiver = path;
    work.isFile = true;
    work.text = text;
    work.wantsTOC = isNonEmptyProperty(tm_propertyForKey(path, QStringLiteral("TOC")));
    work.converter = int(tm_markdownConverterAtPath(path));
    // The sign for the preparation that the style brings a renderer of formulas.
    if (tm_inheritedStyleSheet(path).contains(u"mathjax", Qt::CaseInsensitive)) work.text += mathMark;
    return work;
}

Conversion begin(const QString &receiver)
{
    if (receiver.startsWith(u'/') && !receiver.contains(u'\n') && itemExists(receiver)) {
        const auto decoded = readTextFile(receiver);
        return conversionOfFile(receiver, decoded ? decoded->text : QString());
    }
    Conversion work;
    work.receiver = work.text = receiver;
    work.converter = int(settings().integer(QStringLiteral("MarkdownConverter")));
    return work;
}

void keepPlainRepresentation(Conversion &work)
{
    if (work.text.startsWith(plainRepresentationMark)) {
        work.text = tm_htmlToPlainText(work.text);
        work.plainRepresentation = work.text;
    } else if (isOn("createCombinedMarkdown") || pathExtension(work.receiver).startsWith(u"htm")) {
        work.plainRepresentation = work.text;
    }
}

// -- before the engine ------------------------------------------------------------------------------------------------

void nameParentLinks(Conversion &work)
{
    if (!work.isFile) return;
    const QString folder = parentPath(work.receiver);
    work.text = regexSweep(work.text, QStringLiteral(R"(\[..\]\(..(/?)\))"),
                           u'[' + lastPathComponent(parentPath(folder)) + QStringLiteral("](..$1)"));
    work.text = regexSweep(work.text, QStringLiteral(R"(\[.\]\(.(/?)\))"),
                           u'[' + lastPathComponent(folder) + QStringLiteral("](.$1)"));
}

// The first line of a document that is named after it becomes its heading.
void promoteTitle(Conversion &work)
{
    if (!builtInPlainTextExtensions().contains(lowerExtension(work.receiver))) return;
    const QString name = lastPathComponent(pathWithoutExtension(work.receiver));
    if (!tm_stringMatchesFirstLineOfText(name, work.text)) return;
    for (const auto beginning : {u"Title:", u"title:"})
        if (work.text.startsWith(QStringView(beginning))) return;
    if (work.text.startsWith(u'%') || work.text.startsWith(u'#') || work.text.startsWith(u"---")) return;
    if (rangeOfPattern(work.text, QStringLiteral("^\\s*\\n")).isFound()) return;
    const qsizetype newline = work.text.indexOf(u'\n');
    if (newline >= 0 && newline <= 99) work.text.prepend(QStringLiteral("# "));
}

void addDiagramScript(Conversion &work)
{
    if (!work.text.contains(u"```mermaid")) return;
    const bool dark = isOn("darkTheme") && !isOn("avoidDarkThemeForDocuments");
    work.text += QStringLiteral("\n\n<script src='https://cdn.jsdelivr.net/npm/mermaid/dist/mermaid.min.js'></script>\n"
                                "<script>mermaid.initialize({\tstartOnLoad:true,\ttheme:'%1',   look: "
                                "'handDrawn',});</script>")
                     .arg(dark ? QStringLiteral("dark") : QStringLiteral("default"));
}

// -- the engine -------------------------------------------------------------------------------------------------------

QString withCheckBoxes(const QString &html)
{
    const PatternMatches matches =
        matchesOfPattern(html, QStringLiteral(R"((<li>)((<p>)*)(\[[ |x|X]\]\s?))"), PatternDotAll);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;) {
        const bool open = substring(html, matches[i].group(4)).contains(u"[ ]");
        edits.replace(matches[i].group(4), {});
        edits.replace(matches[i].group(1), open ? QStringLiteral("<li class=\"tm_checkbox\">")
                                                : QStringLiteral("<li class=\"tm_checkbox_done\">"));
    }
    return edits.appliedTo(html);
}

QString engineOutput(const Conversion &work)
{
    if (work.converter == DiscountConverter) return tm_markdownWithPandoc(work.text, true, work.wantsTOC);
    if (work.converter == OwnConverter) return withCheckBoxes(tm_ownMarkdownWithPath(work.text, work.receiver));
    return {};
}

// -- behind the engine ------------------------------------------------------------------------------------------------

// A nested ordered list closes its parent item and stands beside it: the style sheets are written for that.
QString withOrderedListsBeside(const QString &html)
{
    if (!html.contains(u"<ol>")) return html;
    const PatternMatches matches =
        matchesOfPattern(html, QStringLiteral(R"(<li>((?!<\/li>).)*?(<ol>))"), PatternDotAll);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;) edits.replace(matches[i].group(2), QStringLiteral("</li><ol>"));
    return edits.appliedTo(html);
}

QString backlinkList(const QString &path)
{
    const QString root = tomeletRoot();
    QStringList lines;
    QStringList seen;
    for (const QString &link : tm_propertyForKey(path, QStringLiteral("Backlinks")).toStringList()) {
        if (seen.contains(link) || !itemExists(fullPathOf(link, root))) continue;
        seen.append(link);
        lines.append(QStringLiteral("<li><a href=\"%1\">%2</a></li>").arg(link, lastPathComponent(link)));
    }
    if (lines.isEmpty()) return {};
    return QStringLiteral("<hr class=\"tm_backlinks\">\n<ul>\n") + lines.join(u'\n') + QStringLiteral("\n</ul>\n");
}

QString withUniqueIdentifiers(const QString &html)
{
    const PatternMatches matches = matchesOfPattern(html, QStringLiteral(R"x(<[^>]*? id="(.*?)")x"), PatternDotAll);
    QSet<QString> seen;
    QHash<QString, int> lastSuffix;
    std::vector<std::pair<Range, QString>> changes;
    for (size_t i = 0; i < matches.size(); ++i) {
        const QString id = substring(html, matches[i].group(1));
        if (id.isEmpty()) continue;
        QString unique = id;
        // Suffixes up to the last one given are taken: counting on keeps many equal headings cheap.
        for (int &suffix = lastSuffix[id]; seen.contains(unique);) unique = id + u'-' + QString::number(++suffix);
        seen.insert(unique);
        if (unique != id) changes.emplace_back(matches[i].group(1), unique);
    }
    Edits edits;
    for (size_t i = changes.size(); i-- > 0;) edits.replace(changes[i].first, changes[i].second);
    return edits.appliedTo(html);
}

QString withHeadingLinks(const QString &html)
{
    const PatternMatches matches =
        matchesOfPattern(html, QStringLiteral(R"x(^<h[1-6] id="(.+?)">(.+?)</h[1-6]>$)x"), PatternLineAnchored);
    Edits edits;
    for (size_t i = matches.size(); i-- > 0;) {
        const QString heading = substring(html, matches[i].group(2));
        if (heading.contains(u"<a ")) continue;
        edits.replace(matches[i].group(2), QStringLiteral("<a href=\"#") + substring(html, matches[i].group(1)) +
                                               QStringLiteral("\">") + heading + QStringLiteral("</a>"));
    }
    return edits.appliedTo(html);
}

QString repaired(const Conversion &work, QString html)
{
    html = regexSweep(html, QStringLiteral(R"(\left\s*\{(.*?)right\s*\})"), QStringLiteral(R"(\left\\{$1right\\})"));
    html = withOrderedListsBeside(html);
    if (work.isFile) {
        if (isOn("manageLinks") && isOn("appendBacklinksToText")) html += backlinkList(work.receiver);
        html = tm_makeTMLinksRelativeTo(html, parentPath(work.receiver));
    }
    html = withUniqueIdentifiers(html);
    if (isOn("addLinksToHeadings")) html = withHeadingLinks(html);
    return tm_removeParagraphsNestedInCustomClasses(html);
}

QString pageOf(Conversion work)
{
    keepPlainRepresentation(work);
    work.text = tm_stringPreparedForConversionWith(work.text, work.converter);
    nameParentLinks(work);
    promoteTitle(work);
    work.text = regexSweep(work.text, QStringLiteral(R"((?<!`)\[>>([^\]].+?)\])"), {});
    addDiagramScript(work);
    const QString body = repaired(work, engineOutput(work));
    const QString page = tm_createFormattedDocWithBody(work.receiver, body);
    if (work.plainRepresentation.isEmpty()) return page;
    QString kept = work.plainRepresentation;
    kept.replace(QStringLiteral("-->"), QStringLiteral("\\-\\-\\>"));
    return plainRepresentationMark + kept + QStringLiteral(" \n-->\n\n") + page;
}

} // namespace

QString tm_markdownToHTML(const QString &pathOrText)
{
    return pageOf(begin(pathOrText));
}

QString markdownPageWithText(const QString &path, const QString &text)
{
    return pageOf(conversionOfFile(path, text));
}

// -- the frame --------------------------------------------------------------------------------------------------------

static QString titleOf(const QString &pathOrText, const QString &body)
{
    const Range heading = rangeOfPattern(body, QStringLiteral("<h1.*?>(.+?)</h1>"), PatternLineAnchored, wholeRange, 1);
    return heading.isFound() ? substring(body, heading) : lastPathComponent(pathWithoutExtension(pathOrText));
}

QString tm_createFormattedDocWithBody(const QString &pathOrText, const QString &body)
{
    QString html = body;
    if (isOn("contextsEnabled") && isOn("extractContextsAutomatically") && hasMarkdownExtension(pathOrText))
        html = organiser().withContextsMarked(pathOrText, html);
    html = tm_makeReferencesAbsoluteToTMRoot(html, pathOrText);
    return pageFrame(pathOrText, titleOf(pathOrText, html), html);
}

QString pageFrame(const QString &path, const QString &title, const QString &body)
{
    // The language is left open: browsers and screen readers do better by the text itself than by a wrong guess.
    return QStringLiteral("<!DOCTYPE html>\n"
                          "<html xmlns=\"http://www.w3.org/1999/xhtml\" >\n"
                          "<head>\n"
                          "  <!-- Generator: Tomelet for Mac ") +
           shortVersion + QStringLiteral(" -->\n  <title>") + title +
           QStringLiteral("</title>\n"
                          "  <meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\">\n") +
           tm_inheritedStyleSheet(path) + QStringLiteral("\n</head>\n<body>\n") + body +
           QStringLiteral("\n</body>\n</html>");
}

} // namespace tomelet
