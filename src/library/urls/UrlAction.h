// SPDX-License-Identifier: GPL-3.0-or-later
// URLs of the scheme "tomelet", read as what they ask for. Nothing is done here and no file is looked at.
//
//   tomelet://show/Book/Note.md#Part        show an item; so does tomelet://Book/Note.md
//   tomelet://grab/ADDRESS                  fetch a web page into the notebook
//   tomelet://addnote/TEXT                  make a text document
//   tomelet://search/TERM&scope=/Book       search
//
// grab and addnote take "&title=" and "&parent=". URLs are cut by hand: URL classes lower-case the host, which is a
// book's name here, and refuse blanks in it. Values are percent-decoded after the cutting, and "+" is no blank.
#pragma once

#include <QString>

#include <optional>

namespace tomelet {

struct UrlAction
{
    enum Kind {
        Show,
        Grab,
        AddNote,
        Search,
        Unsupported, ///< of other devices: wifi_sharing, webdav_sync, addnewsketch
        LogOnly,     ///< append, addnewdoc, addnewtask: known, and nothing happens
    };
    Kind kind = Show;
    QString host;    ///< what stands in front of the first "/", as it is written
    QString address; ///< Grab: with a scheme; "" for none
    QString text;    ///< AddNote
    QString term;    ///< Search
    QString scope;   ///< Search: a book below the root, "" for all
    QString title;
    QString parent; ///< a book below the root as it was given, which may be anything
    QString item;   ///< Show: path below the root with its anchor, still encoded; begins with "/"
};

/// What the URL asks for; nothing for another scheme.
[[nodiscard]] std::optional<UrlAction> parseUrlAction(const QString &url);

} // namespace tomelet
