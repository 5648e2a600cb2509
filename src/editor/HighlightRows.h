// SPDX-License-Identifier: GPL-3.0-or-later
// The table of patterns behind the highlighting of plain text.
#pragma once

#include "conversion/Patterns.h"

#include <QString>

#include <span>
#include <vector>

namespace tomelet {

enum class HighlightColor : quint8 {
    None, ///< the colour stays
    Base,
    Faded,
    Label,
    Heading,
    HtmlTag,
    Attribute,
    Code,
    ListPrefix,
    Red,
    Green,
    Orange,
    Blue,
    Purple,
};

struct HighlightStyle
{
    HighlightColor color = HighlightColor::None;
    bool bold = false;
    bool italic = false;
    bool strikethrough = false;
    bool isLink = false;
    bool hangingIndent = false; ///< further lines of the paragraph stand below the end of the range
    friend bool operator==(const HighlightStyle &, const HighlightStyle &) = default;
};

/// What a row does to one group of its match; group 0 is the whole.
struct HighlightPart
{
    size_t group;
    HighlightStyle style;
};

/// On which documents a row runs.
enum class HighlightCondition : quint8 { MarkdownOrHtml, Html, Outline, Contexts, Markdown, Comments, Tasks, Lists };

struct HighlightRow
{
    int number; ///< 1 to 45; list prefixes have several rows of one number
    QString name;
    QString pattern; ///< "%1" stands for what the settings put in
    int options;
    HighlightCondition condition;
    /// A text without this has no match.
    QString needed;
    /// Every match ends with this, so that nothing behind the last one needs a look; "" where that cannot be said.
    QString closer;
    std::vector<HighlightPart> parts;
};

[[nodiscard]] std::span<const HighlightRow> highlightRows();
/// "heading", "wiki link" and so on; "" for a number that is none.
[[nodiscard]] QString highlightName(int number);

} // namespace tomelet
