// SPDX-License-Identifier: GPL-3.0-or-later
#include "import/Opml.h"

#include "tests/support/TextCase.h"

#include <gtest/gtest.h>

using namespace tomelet;
using namespace Qt::StringLiterals;

TEST(Opml, outlinesAsLists)
{
    const auto body = [](const QString &outlines) {
        return QString(u"<opml><body>"_s + outlines + u"</body></opml>"_s);
    };
    test::check(tm_OPMLToHTML,
                {{"title and levels",
                  u"<OPML><head><Title>A &amp; <![CDATA[B]]></Title></head><Body><Outline text=\"a\"><outline "
                  u"text=\"b\"/></Outline>"
                  "<outline text=\"c\"/></Body></OPML>"_s,
                  u"<h1>A & B</h1>\n\n<ul>\n\n<li>a</li>\n<ul>\n<li>b</li>\n</ul>\n\n<li>c</li>\n</ul>\n"_s},
                 {"an address before a page", body(u"<outline text=\"a\" htmlUrl=\"h\" url=\"u\"/>"_s),
                  u"\n<ul>\n\n<li><a href=\"u\">a</a></li>\n</ul>\n"_s},
                 {"page and description", body(u"<outline text=\"a\" htmlUrl=\"h\" description=\"d\"/>"_s),
                  u"\n<ul>\n\n<li><a href=\"h\">a</a><br>d</li>\n</ul>\n"_s},
                 {"lists close one by one",
                  body(u"<outline text=\"a\"><outline text=\"b\"><outline text=\"c\"/></outline></outline>"_s),
                  u"\n<ul>\n\n<li>a</li>\n<ul>\n<li>b</li>\n<ul>\n<li>c</li>\n</ul>\n\n</ul>\n\n</ul>\n"_s},
                 {"no text", body(u"<outline/>"_s), u"\n<ul>\n\n<li></li>\n</ul>\n"_s},
                 {"cut off", u"<opml><body><outline text=\"a\"><outl"_s, u"\n<ul>\n\n<li>a</li>"_s},
                 {"no outline", u"words"_s, QString()},
                 {"nothing", QString(), QString()}});
}
