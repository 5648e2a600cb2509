// SPDX-License-Identifier: GPL-3.0-or-later
// A screenplay as a page of HTML: the title page and the numbered pages, below each other. Texts are written as they
// stand, tags in them included; what is only for the author is left out.
#pragma once

#include "screenplay/FNScript.h"

#include <QString>

namespace tomelet {

class FNHTMLScript
{
public:
    [[nodiscard]] static FNHTMLScript initWithScript(const FNScript &script);

    /// The complete page with the style sheet that ships with the program.
    [[nodiscard]] QString html();
    /// What stands in the page's section; made once.
    [[nodiscard]] const QString &bodyForScript();
    /// "" and a log line when the sheet is missing.
    [[nodiscard]] static QString cssText();
    /// "Scene Heading" gives "scene-heading".
    [[nodiscard]] static QString htmlClassForType(const QString &type);

    FNScript script;
    QString bodyText; ///< null until it is made
};

/// The page of a document: its screenplay before a theme is laid over it.
[[nodiscard]] QString pageOfScreenplay(const QString &path);

} // namespace tomelet
