// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/HighlightRows.h"

namespace tomelet {

namespace {

using enum HighlightColor;
using When = HighlightCondition;

constexpr int lines = PatternLineAnchored;
constexpr int dotAll = PatternDotAll;

constexpr HighlightStyle colored(HighlightColor color)
{
    return {.color = color};
}

constexpr HighlightStyle oblique(HighlightColor color)
{
    return {.color = color, .italic = true};
}

constexpr HighlightStyle struck(HighlightColor color)
{
    return {.color = color, .strikethrough = true};
}

constexpr HighlightStyle hanging(HighlightColor color)
{
    return {.color = color, .hangingIndent = true};
}

// Brackets faded, what stands in them in a colour of its own.
std::vector<HighlightPart> bracketed(HighlightColor inside, size_t group = 1)
{
    return {{0, colored(Faded)}, {group, colored(inside)}};
}

// How strong emphasis is follows from its marks and is filled in for each match.
std::vector<HighlightPart> emphasis()
{
    return {{1, {}}, {2, colored(Faded)}, {4, colored(Faded)}};
}

QString text(const char *pattern)
{
    return QString::fromLatin1(pattern);
}

// clang-format off
// The order is part of the table: later rows are laid over earlier ones.
std::vector<HighlightRow> makeRows()
{
    return {
        {1, text("html tag"), text(R"x((?<!\\)(<{1,}/?\b[^<\n]*?>{1,}))x"),
         dotAll, When::MarkdownOrHtml, text("<"), {}, {{0, colored(HtmlTag)}}},
        {2, text("html comment"), text(R"x(<!--.*?-->)x"),
         dotAll, When::MarkdownOrHtml, text("<!--"), text("-->"), {{0, oblique(Faded)}}},
        {3, text("image tag"), text(R"x((<img) [^>]*?src="(.+?)"[^>]*(>))x"),
         dotAll, When::Html, text("<img "), text(">"), {{0, colored(HtmlTag)}, {2, colored(Label)}}},
        {4, text("link tag"), text(R"x((<a) [^>]*?href="(.+?)"[^>]*(>))x"),
         dotAll, When::Html, text("<a "), text(">"), {{0, colored(HtmlTag)}, {2, colored(Label)}}},
        {5, text("end of link"), text(R"x(</a>)x"),
         dotAll, When::Html, text("</a>"), text("</a>"), {{0, colored(HtmlTag)}}},
        {6, text("outline text"), text(R"x(text="(.+?)")x"),
         dotAll, When::Outline, text("text=\""), text("\""), {{1, colored(Label)}}},
        {7, text("context"), text(R"x((?<!\S)([%1](?![%1])\S+?)(?=,|;|\s|$))x"),
         lines, When::Contexts, {}, {}, {{1, oblique(Attribute)}}},
        {8, text("heading"), text(R"x(^(#+)[ \t]*(.*?)(#*?)$)x"),
         lines, When::Markdown, text("#"), {},
         {{0, {.color = Heading, .bold = true}}, {1, colored(Faded)}, {3, colored(Faded)}}},
        {9, text("underline"), text(R"x(^[-|=]+$)x"),
         lines, When::Markdown, {}, {}, {{0, colored(Heading)}}},
        {10, text("title block"), text(R"x(\A(% ?)([^\n]*?)\n(% ?)[^\n]*?\n(% ?)[^\n]*?\n)x"),
         0, When::Markdown, text("%"), {},
         {{2, colored(Heading)}, {1, colored(Faded)}, {3, colored(Faded)}, {4, colored(Faded)}}},
        {11, text("metadata title"), text("\\A(---\n)?Title:\\s*([^\\n]*?)\\n"),
         PatternCaseInsensitive, When::Markdown, {}, {}, {{2, colored(Heading)}}},
        {12, text("done line"), text(R"x(^\s*-\s+(.*?)\s+@done\s*$)x"),
         lines, When::Markdown, text("@done"), {}, {{0, struck(Faded)}}},
        {13, text("emphasis stars"), text(R"x((?<!\\)((\*{1,3})(\b.*?)(?<!\*)(\2))(?!\*))x"),
         0, When::Markdown, text("*"), {}, emphasis()},
        {14, text("emphasis underscores"), text(R"x((?<!\\)\b((_{1,3})(.*?)(?<!_)(\2))\b)x"),
         0, When::Markdown, text("_"), {}, emphasis()},
        {15, text("struck"), text(R"x(((~{2,})(\b[^~]*?)(\2))(?!~))x"),
         dotAll, When::Markdown, text("~~"), {}, {{1, struck(None)}, {2, colored(Faded)}, {4, colored(Faded)}}},
        {16, text("centred"), text(R"x((->).*?(<-))x"),
         dotAll, When::Markdown, text("->"), text("<-"), {{1, colored(Faded)}, {2, colored(Faded)}}},
        {17, text("transclusion"), text(R"x(\{\{(.*?)\}\})x"),
         dotAll, When::Markdown, text("{{"), text("}}"), bracketed(Label)},
        {18, text("citation line"), text(R"x(^> ?%(.+?)%$)x"),
         lines, When::Markdown, text("%"), {}, bracketed(Label)},
        {19, text("reference text"), text(R"x(\[([^\]]*?)\] *\[)x"),
         lines, When::Markdown, text("["), text("["), bracketed(Base)},
        {20, text("reference label"), text("\\] *\\[([^#\n\\]]*?)\\]"),
         lines, When::Markdown, text("["), text("]"), bracketed(Label)},
        {21, text("shortcut reference"), text(R"x((?<!\] ?)\[([^\[\]]*?)\](?!(( *\[)|\(|\])))x"),
         lines, When::Markdown, text("["), {}, bracketed(Label)},
        {22, text("collapsed reference"), text("\\[([^\\]\n]*?)\\]\\[\\]"),
         lines, When::Markdown, text("][]"), text("][]"), bracketed(Label)},
        {23, text("note mark"), text(R"x((?<!\[)\[[\^>\?]([^\]]+?)\]\s*?(?![\[\(]))x"),
         lines, When::Markdown, text("["), {}, bracketed(Label)},
        {24, text("fnote"), text(R"x(<<fnote "([^"]+?)">>)x"),
         lines, When::Markdown, text("<<fnote"), text(">>"), bracketed(Label)},
        {25, text("wiki link"), text(R"x(\[\[([^\]]*?)\]\])x"),
         0, When::Markdown, text("[["), text("]]"), {{0, colored(Faded)}, {1, {.color = Label, .isLink = true}}}},
        {26, text("link text"), text(R"x(\[?!?\[([^\]]*?)\]\()x"),
         0, When::Markdown, text("]("), text("]("), bracketed(Base)},
        {27, text("link target"), text(R"x(\]\((.*?)\))x"),
         0, When::Markdown, text("]("), text(")"), {{0, colored(Faded)}, {1, {.color = Label, .isLink = true}}}},
        {28, text("definition"), text(R"x(^\s{0,3}\^?\[[\^>\?]?(.+?)\]:\s*)x"),
         lines, When::Markdown, text("]:"), {}, {{0, hanging(Faded)}, {1, colored(Label)}}},
        {29, text("inline footnote"), text(R"x(\^\[(.+?)\])x"),
         0, When::Markdown, text("^["), text("]"), bracketed(Label)},
        {30, text("inline glossary"), text(R"x(\[[\?>]\((.+?)\)(.+?)])x"),
         dotAll, When::Markdown, text("["), text("]"),
         {{0, colored(Faded)}, {1, colored(Label)}, {2, colored(Attribute)}}},
        {31, text("citation key"), text(R"x((\[([^\]]*)\])?\[#(.+?)\])x"),
         dotAll, When::Markdown, text("[#"), text("]"),
         {{0, colored(Faded)}, {2, colored(Attribute)}, {3, colored(Label)}}},
        {32, text("cross reference"), text(R"x(\[>>([^\]]+?)])x"),
         dotAll, When::Markdown, text("[>>"), text("]"), bracketed(Label)},
        {33, text("identifier"), text(R"x(\{\#(.*?)\})x"),
         dotAll, When::Markdown, text("{#"), text("}"), bracketed(Label)},
        {34, text("inline code"), text(R"x(`((?:(?!\n\s*\n)[^`])+?)`)x"),
         dotAll, When::Markdown, text("`"), text("`"), {{0, oblique(Code)}}},
        {35, text("fence line"), text(R"x(^(`{3,})([^`]*?)$)x"),
         lines, When::Markdown, text("```"), {}, {{0, colored(Label)}}},
        {36, text("comment line"), text(R"x(^( *\/\/[ \t]*).*$)x"),
         lines, When::Comments, text("//"), {}, {{0, oblique(Faded)}, {1, {.color = Faded, .italic = true, .hangingIndent = true}}}},
        {37, text("task line"), text(R"x(^([ \t]*%1[ \t]*).*$)x"),
         lines, When::Tasks, {}, {}, {{1, hanging(None)}}},
        {38, text("highlighted"), text("\\W==([^\n=]+?)==\\W"),
         dotAll, When::Markdown, text("=="), {}, bracketed(Attribute)},
        {39, text("fenced block"), text("\n\\s{0,3}([~|`]{3,})[^~`].*?\n\\s{0,3}\\1"),
         dotAll, When::Markdown, {}, {}, {{0, colored(Code)}}},
        {40, text("list prefix"), text(R"x((?:^|\n)([ \t]*(-\s+\[[ |x|X]\])(?:$| |\t)?))x"),
         0, When::Lists, text("-"), {}, {{1, hanging(ListPrefix)}, {2, colored(Attribute)}}},
        {40, text("list prefix"), text(R"x((?:^|\n)( ?: {0,3}(-\s+\[[ |x|X]\])(?:$| |\t)?))x"),
         0, When::Lists, text("-"), {}, {{1, hanging(ListPrefix)}, {2, colored(Attribute)}}},
        {40, text("list prefix"), text(R"x((?:^|\n)( {0,3}> {0,3}(-\s+\[[ |x|X]\])(?:$| |\t)?))x"),
         0, When::Lists, text("-"), {}, {{1, hanging(ListPrefix)}, {2, colored(Attribute)}}},
        {40, text("list prefix"), text(R"x((?:^|\n)([ \t]*(\d+[\.|)])(?: |\t)+))x"),
         0, When::Lists, {}, {}, {{1, hanging(ListPrefix)}}},
        {40, text("list prefix"), text(R"x((?:^|\n)([ \t]*(%1)(?: |\t)+))x"),
         0, When::Lists, {}, {}, {{1, hanging(ListPrefix)}}},
        {41, text("deletion"), text(R"x(\{--.*?--\})x"),
         dotAll, When::Markdown, text("{--"), text("--}"), {{0, colored(Red)}}},
        {42, text("insertion"), text(R"x(\{\+\+.*?\+\+\})x"),
         dotAll, When::Markdown, text("{++"), text("++}"), {{0, colored(Green)}}},
        {43, text("substitution"), text(R"x(\{~~.*?~>.*?~~\})x"),
         dotAll, When::Markdown, text("{~~"), text("~~}"), {{0, colored(Orange)}}},
        {44, text("comment"), text(R"x(\{>>.*?<<\})x"),
         dotAll, When::Markdown, text("{>>"), text("<<}"), {{0, colored(Blue)}}},
        {45, text("highlight"), text(R"x(\{==.*?==\})x"),
         dotAll, When::Markdown, text("{=="), text("==}"), {{0, colored(Purple)}}},
    };
}

// clang-format on

} // namespace

std::span<const HighlightRow> highlightRows()
{
    static const std::vector<HighlightRow> rows = makeRows();
    return rows;
}

QString highlightName(int number)
{
    for (const HighlightRow &row : highlightRows())
        if (row.number == number) return row.name;
    return {};
}

} // namespace tomelet
