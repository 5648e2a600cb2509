// SPDX-License-Identifier: GPL-3.0-or-later
#include "foundation/TextCodec.h"

#include <gtest/gtest.h>

using namespace tomelet;
using namespace Qt::StringLiterals;

// A text whose last byte begins a longer sequence of UTF-8 must not lose it.
TEST(TextCodec, sequencesCutOffAtTheEndAreNoUtf8)
{
    EXPECT_FALSE(decodeTextAs("caf\xe9", TextEncoding::Utf8).has_value());
    EXPECT_FALSE(decodeTextAs("a\xf0\x9f\x98", TextEncoding::Utf8).has_value());
    EXPECT_EQ(decodeTextAs("caf\xc3\xa9", TextEncoding::Utf8), u"café"_s);
    EXPECT_EQ(decodeText("caf\x8e").text, u"café"_s);
    EXPECT_EQ(decodeText("x\r\ncaf\xe9").text, u"x\r\ncafé"_s);
    EXPECT_EQ(decodeText("x\r\ncaf\xe9").encoding, TextEncoding::Windows1252);
    EXPECT_EQ(decodeText("caf\xe5").encoding, TextEncoding::MacRoman);
}
