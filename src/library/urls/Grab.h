// SPDX-License-Identifier: GPL-3.0-or-later
// A page or file out of the web becomes a document.
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace tomelet {

/// What came back for an address.
struct FetchedPage
{
    QString error; ///< why nothing came; "" for none
    QByteArray body;
    QString mediaType;     ///< "text/html", without parameters; "" when none was told
    QString charset;       ///< as the header tells it; "" for none
    QString suggestedName; ///< the file name that the header suggests; "" for none
    QUrl address;          ///< of the page itself, behind all redirections
};

/// Where a page is to go.
struct GrabOrder
{
    QString address;
    QString title; ///< "" for the name that the page or its address gives
    QString book;  ///< full path
};

/// Writes what was fetched as a new document with its address as the property `URL`; a page gets the name of its title
/// and a base address for its relative links. Gives the path; "" when nothing could be written. Any thread may call it.
[[nodiscard]] QString storeFetchedPage(const FetchedPage &page, const GrabOrder &order);

} // namespace tomelet
