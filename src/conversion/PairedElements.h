// SPDX-License-Identifier: GPL-3.0-or-later
// Elements whose first match is rewritten again and again: the first opening tag takes the first closing one
// behind it, whatever stands between, and the next opening tag takes the next closing one. What was rewritten
// once is read again by the elements that it belongs to then, but only as far as that can change it: the cost
// grows with the text.
#pragma once

#include <QString>

#include <functional>

namespace tomelet {

/// An opening tag as read: its length, and what takes the place of it and of the closing tag.
struct OpeningTag
{
    enum Length : qsizetype { None = 0, Unfinished = -1 };

    qsizetype length = None;
    QString before = {}, after = {};
};

struct PairedElement
{
    QString opener; // how an opening tag begins
    QString closer; // the closing tag
    /// Reads the tag at the start of the text, which begins with the opener. Unfinished when the text ends
    /// first.
    std::function<OpeningTag(QStringView text)> readTag;
    /// A part of the content anew, for elements that rewrite it: by patterns whose matches outside of tags
    /// are made of blanks and signs alone, so that letters part them. `content` is the whole of it as it was
    /// before.
    std::function<QString(const QString &part, QStringView content)> rewritePart = {};
    QString barrier = {};      // where parts end: a tag that is rewritten together with all up to a later one
    bool trimsContent = false; // white space at both ends of the content goes
    bool dropsEmpty = false;   // without content both tags go and nothing takes their place
};

/// The text when no opening tag with a closing one behind it is left.
[[nodiscard]] QString rewritePairedElements(const QString &text, const PairedElement &element);

} // namespace tomelet
