#include "platform/linux/word/Md5.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

std::string Digest(std::string_view bytes)
{
    std::string digits;
    for (const unsigned byte : voxmate::linux_platform::Md5(bytes)) {
        digits += "0123456789abcdef"[byte >> 4];
        digits += "0123456789abcdef"[byte & 15];
    }
    return digits;
}

} // namespace

// The test suite of RFC 1321, A.5.
TEST(Md5, GivesTheDigestsOfItsStandard)
{
    EXPECT_EQ(Digest(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(Digest("a"), "0cc175b9c0f1b6a831c399e269772661");
    EXPECT_EQ(Digest("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
    EXPECT_EQ(Digest("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789"),
              "d174ab98d277d9f5a5611c2c9f419d9f");
    EXPECT_EQ(Digest("12345678901234567890123456789012345678901234567890123456789012345678901234567890"),
              "57edf4a22be3c955ac49da2e2107b67a");
}
