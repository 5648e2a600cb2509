// SPDX-License-Identifier: GPL-3.0-or-later
#include "editor/PageParts.h"

#include <gtest/gtest.h>

using namespace tomelet;

TEST(PageParts, theTextIsSetApartAsThePageIs)
{
    const PagePart lineEnd{QStringLiteral("\n"), QStringLiteral("\n"), 0};
    const auto block = [](const char *text, int breaks) {
        const QString name = QString::fromUtf8(text);
        return PagePart{QString(u"<p>" + name + u"</p>"), name, breaks};
    };
    const PagePart bold{QStringLiteral("<b>b</b>"), QStringLiteral("b"), 0};
    const QList<PagePart> parts{lineEnd,
                                block("", 2),
                                block("one", 2),
                                lineEnd,
                                block("two", 2),
                                block("row", 1),
                                lineEnd,
                                block("row", 1),
                                block(" ", 2),
                                bold,
                                bold};
    EXPECT_EQ(textOfParts(parts), QStringLiteral("one\n\ntwo\n\nrow\nrow\nbb"));
    EXPECT_EQ(htmlOfParts(parts.sliced(1, 3)), QStringLiteral("<p></p><p>one</p>\n"));
    EXPECT_EQ(textOfParts({}), QString());
}
