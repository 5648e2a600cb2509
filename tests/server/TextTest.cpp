// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/Text.h"
#include "server/Core/HTTPDate.h"
#include "server/Core/MD5.h"

#include <gtest/gtest.h>

using namespace tomelet::http;

TEST(MD5, knownDigests)
{
    // RFC 1321, A.5, and lengths round the end of a block.
    EXPECT_EQ(md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5Hex("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(md5Hex("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
    EXPECT_EQ(md5Hex(std::string(55, 'a')), "ef1772b6dff9a122358552954ad0df65");
    EXPECT_EQ(md5Hex(std::string(56, 'a')), "3b0c8ac703f828b04c6c197006d17218");
    EXPECT_EQ(md5Hex(std::string(64, 'a')), "014842d480b571495a4a0363793f7367");
}

TEST(Text, numbersAreDigitsAndNothingElse)
{
    EXPECT_EQ(parseDecimal("9223372036854775807"), 9223372036854775807ULL);
    for (const char *bad : {"", "+1", "-1", " 1", "1 ", "0x1", "1,1", "9223372036854775808", "99999999999999999999"})
        EXPECT_EQ(parseDecimal(bad), std::nullopt) << bad;
    EXPECT_EQ(parseHexadecimal("00fF"), 255U);
    for (const char *bad : {"", "0x1", "g", "8000000000000000"}) EXPECT_EQ(parseHexadecimal(bad), std::nullopt) << bad;
}

TEST(Text, onlyWellFormedUTF8IsValid)
{
    for (const char *good :
         {"", "a", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xED\x9F\xBF", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(isValidUTF8(good)) << good;
    for (const char *bad : {"\xC0\xAF", "\xC1\x81", "\xE0\x80\xAF", "\xF0\x80\x80\xAF", "\xED\xA0\x80",
                            "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80", "\x80", "\xC3", "\xE2\x82", "\xFF"})
        EXPECT_FALSE(isValidUTF8(bad)) << bad;
}

TEST(Text, escapesAreInverse)
{
    EXPECT_EQ(percentEscaped("/a b<&>?+#%[é]'~:@=$,;!*()"), "/a%20b%3C%26%3E%3F%2B%23%25%5B%C3%A9%5D'~:@=$,;!*()");
    const std::string odd = "/q\"\\^`{|}\x01\x7F/ü";
    EXPECT_EQ(percentDecoded(percentEscaped(odd)), odd);
    for (const char *bad : {"%", "%4", "%zz", "a%2", "%-1"}) EXPECT_EQ(percentDecoded(bad), std::nullopt) << bad;
    EXPECT_EQ(percentDecoded("+%00"), std::string("+\0", 2));
}

TEST(Text, base64)
{
    EXPECT_EQ(base64Decoded("VG9tZWxldDpzZWNyZXQ="), "Tomelet:secret");
    EXPECT_EQ(base64Decoded("QQ"), "A");
    EXPECT_EQ(base64Decoded("Q Q"), std::nullopt);
}

TEST(Text, datesAreInGMTAndEnglish)
{
    const std::time_t time = 784111777; // RFC 9110, 5.6.7
    EXPECT_EQ(headerDate(time), "Sun, 06 Nov 1994 08:49:37 GMT");
    EXPECT_EQ(modificationDate(time), "Sun, 6 Nov 1994 08:49:37 GMT");
    EXPECT_EQ(creationDate(time), "1994-11-06T08:49:37+00:00");
}
