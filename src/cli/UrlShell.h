// SPDX-License-Identifier: GPL-3.0-or-later
// URLs of the scheme "tomelet" where there is no window: what would be shown is told.
#pragma once

#include <QString>

#include <optional>

namespace tomelet::cli {

/// What a URL led to; empty texts for what it did not ask for.
struct UrlResult
{
    QString failure;             ///< why nothing came of it
    QString alert;               ///< what a window would say, in one line
    QString shown;               ///< path of the item to show, with its anchor
    QString made;                ///< path of the document that was made
    std::optional<QString> term; ///< of a search
    QString book;                ///< where it is to be searched
};

/// Carries the URL out, with all that it sets off, and waits for what is fetched.
[[nodiscard]] UrlResult carryOut(const QString &url);

} // namespace tomelet::cli
