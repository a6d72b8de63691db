#include "platform/Fingerprint.h"
#include "OwnFolder.h"

namespace voxmate::linux_platform
{

namespace
{

class FingerprintTest : public OwnFolder
{
protected:
    std::string Of(const std::string& content)
    {
        Write(folder / "file", content);
        return Fingerprint((folder / "file").string());
    }
};

TEST_F(FingerprintTest, EqualContentHasEqualDigestsWhateverItsName)
{
    // RFC 1321, A.5.
    EXPECT_EQ(Of("abc"), "900150983cd24fb0d6963f7d28e17f72");
    EXPECT_EQ(Of(""), "d41d8cd98f00b204e9800998ecf8427e");
    std::filesystem::rename(folder / "file", folder / "other");
    EXPECT_EQ(Fingerprint((folder / "other").string()), Of(""));
}

TEST_F(FingerprintTest, OfALargeFileSizeBeginningMiddleAndEndCount)
{
    const std::string content(std::size_t{3} << 20, 'x');
    const std::string digest = Of(content);
    EXPECT_EQ(digest.size(), 32u);
    EXPECT_NE(Of(content + "x"), digest);
    for (const std::size_t at : {std::size_t{0}, content.size() / 2, content.size() - 1}) {
        std::string changed = content;
        changed[at] = 'y';
        EXPECT_NE(Of(changed), digest) << at;
    }
    EXPECT_EQ(Of(content), digest);
}

TEST_F(FingerprintTest, WhatCannotBeReadHasNone)
{
    EXPECT_EQ(Fingerprint((folder / "nothing").string()), "");
    EXPECT_EQ(Fingerprint(folder.string()), "");
    EXPECT_EQ(Fingerprint("/dev/zero"), "");
}

} // namespace

} // namespace voxmate::linux_platform
