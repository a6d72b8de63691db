// Files with false content are refused with one sentence that names the file. They never cause a crash, and never take
// more than a moment or more than some memory.
#include "AcsSamples.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>

using namespace voxmate::agent;
using namespace voxmate::agent::test;

namespace
{

using Bytes = std::vector<std::uint8_t>;

constexpr const char* Start = "The character file \"lie.acs\" cannot be used: ";

std::string ErrorOf(const Bytes& bytes)
{
    try {
        AcsFile::Parse(bytes, "lie.acs");
    } catch (const AcsError& error) {
        return error.what();
    }
    return "no error";
}

std::string ErrorOf(const std::function<void(AcsDescription&)>& lie)
{
    AcsDescription d = SmallCharacter();
    lie(d);
    return ErrorOf(WriteAcs(d));
}

std::string Says(const std::string& what)
{
    return Start + what + ".";
}

std::uint32_t Get32(const Bytes& bytes, std::size_t at)
{
    return bytes[at] | std::uint32_t{bytes[at + 1]} << 8 | std::uint32_t{bytes[at + 2]} << 16 |
           std::uint32_t{bytes[at + 3]} << 24;
}

void Put(Bytes& bytes, std::size_t at, std::uint32_t value, std::size_t size)
{
    for (std::size_t i = 0; i < size && at + i < bytes.size(); ++i)
        bytes[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

// Reads a file and uses all of it. Returns true when it was refused at any point.
bool Refused(const Bytes& bytes)
{
    try {
        const auto file = AcsFile::Parse(bytes, "lie.acs");
        for (std::size_t i = 0; i < file->ImageCount(); ++i)
            file->DecodeImage(i);
        for (std::size_t i = 0; i < file->SoundCount(); ++i)
            file->Sound(i);
        // A frame of many megapixels is allowed, but drawing hundreds of them proves nothing more.
        const bool large = std::size_t{file->width} * file->height > 100000;
        for (const Animation& animation : file->animations)
            for (const Frame& frame : animation.frames)
                for (int mouth = -1; mouth < (large ? 0 : MouthCount); ++mouth)
                    ComposeFrame(*file, frame, mouth);
    } catch (const AcsError& error) {
        EXPECT_EQ(std::string(error.what()).rfind(Start, 0), 0u) << error.what();
        EXPECT_EQ(std::string(error.what()).back(), '.');
        return true;
    }
    return false;
}

} // namespace

TEST(AcsLiesTest, AFileCutOffAnywhereIsRefused)
{
    const Bytes whole = WriteAcs(SmallCharacter());
    ASSERT_FALSE(Refused(whole));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_NE(ErrorOf(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))), "no error") << size;
}

TEST(AcsLiesTest, AnyFieldAtAnyExtremeIsRefusedOrHarmless)
{
    const Bytes whole = WriteAcs(SmallCharacter());
    const auto size = static_cast<std::uint32_t>(whole.size());
    const auto start = std::chrono::steady_clock::now();
    int refused = 0;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const std::uint32_t value : {0u, 1u, 0x7Fu, 0x80u, 0xFFu, 0x7FFFu, 0x8000u, 0xFFFFu, size - 1, size,
                                          size + 1, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu, 0xFFFFFFFFu})
            for (const std::size_t width : {1u, 2u, 4u}) {
                Bytes bytes = whole;
                Put(bytes, at, value, width);
                refused += Refused(bytes) ? 1 : 0;
            }
    }
    EXPECT_GT(refused, 1000);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

TEST(AcsLiesTest, AnEmptyOrAnotherFileIsRefused)
{
    EXPECT_EQ(ErrorOf(Bytes{}), Says("it is too short for a character file"));
    EXPECT_EQ(ErrorOf(Bytes(35, 0)), Says("it is too short for a character file"));
    EXPECT_EQ(ErrorOf(Bytes(36, 0)), Says("it is not a character file of version 2"));
}

TEST(AcsLiesTest, AHeaderWithoutACharacterIsRefused)
{
    Bytes bytes = WriteAcs(SmallCharacter());
    Put(bytes, 4, 0, 4);
    Put(bytes, 8, 0, 4);
    EXPECT_EQ(ErrorOf(bytes), Says("it describes no character"));
}

TEST(AcsLiesTest, ALocatorOutsideTheFileIsRefused)
{
    const char* sections[] = {"the character's description", "the animation list", "the image list", "the sound list"};
    for (std::size_t i = 0; i < 4; ++i) {
        const Bytes whole = WriteAcs(SmallCharacter());
        const auto size = static_cast<std::uint32_t>(whole.size());
        const std::size_t at = 4 + 8 * i;
        for (const auto& [offset, length] : std::initializer_list<std::pair<std::uint32_t, std::uint32_t>>{
                 {size, 1},
                 {size + 1, 0},
                 {0xFFFFFFFF, 2},
                 {1, 0xFFFFFFFF},
                 {0xFFFFFFFF, 0xFFFFFFFF},
                 {Get32(whole, at), size - Get32(whole, at) + 1}}) {
            Bytes bytes = whole;
            Put(bytes, at, offset, 4);
            Put(bytes, at + 4, length, 4);
            EXPECT_EQ(ErrorOf(bytes), Says(std::string(sections[i]) + " lies outside the file")) << offset << length;
        }
    }
}

TEST(AcsLiesTest, ASectionShorterThanItsContentIsRefused)
{
    Bytes bytes = WriteAcs(SmallCharacter());
    Put(bytes, 8, 20, 4);
    EXPECT_EQ(ErrorOf(bytes), Says("the character's description is cut off"));
}

TEST(AcsLiesTest, CountsLargerThanTheirListAreRefused)
{
    for (const auto& [locator, text] : std::initializer_list<std::pair<std::size_t, const char*>>{
             {12, "the animation list claims 4294967295 animations, more than it holds"},
             {20, "the image list claims 4294967295 images, more than it holds"},
             {28, "the sound list claims 4294967295 sounds, more than it holds"}}) {
        Bytes bytes = WriteAcs(SmallCharacter());
        Put(bytes, Get32(bytes, locator), 0xFFFFFFFF, 4);
        EXPECT_EQ(ErrorOf(bytes), Says(text));
    }
}

TEST(AcsLiesTest, ListsOfMoreThan65536EntriesAreRefused)
{
    for (const auto& [locator, items] :
         std::initializer_list<std::pair<std::size_t, std::string>>{{12, "the animation list holds 65537 animations"},
                                                                    {20, "the image list holds 65537 images"},
                                                                    {28, "the sound list holds 65537 sounds"}}) {
        for (const std::uint32_t count : {65537u, 65536u}) {
            AcsDescription d = SmallCharacter();
            d.animations.resize(1);
            d.animations[0].frames.clear();
            Bytes bytes = WriteAcs(d);
            Put(bytes, locator, static_cast<std::uint32_t>(bytes.size()), 4);
            Put(bytes, locator + 4, 4 + 12 * count, 4);
            bytes.resize(bytes.size() + 4 + 12 * std::size_t{count});
            Put(bytes, Get32(bytes, locator), count, 4);
            EXPECT_EQ(ErrorOf(bytes), count > 65536 ? Says(items + ", more than 65536") : "no error");
        }
    }
}

TEST(AcsLiesTest, ATextLongerThanItsSectionIsRefused)
{
    Bytes bytes = WriteAcs(SmallCharacter());
    const std::size_t firstName = Get32(bytes, 12) + 4;
    Put(bytes, firstName, 0xFFFFFFFF, 4);
    EXPECT_EQ(ErrorOf(bytes), Says("the animation list holds a text of 4294967295 characters, longer than itself"));
    Put(bytes, firstName, 0x80000000, 4);
    EXPECT_EQ(ErrorOf(bytes), Says("the animation list holds a text of 2147483648 characters, longer than itself"));
}

TEST(AcsLiesTest, FramesOfNoSizeOrTooLargeAreRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.width = 0; }),
              Says("the character's description claims frames of 0 by 5 pixels"));
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.height = 0; }),
              Says("the character's description claims frames of 6 by 0 pixels"));
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.width = d.height = 2048; }), "no error");
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.width = 2049, d.height = 2048; }),
              Says("the character's description claims frames of 2049 by 2048 pixels"));
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.width = d.height = 0xFFFF; }),
              Says("the character's description claims frames of 65535 by 65535 pixels"));
}

TEST(AcsLiesTest, APaletteOfMoreThan256ColoursIsRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.palette.resize(257); }),
              Says("the character's description claims a palette of 257 colours, more than 256"));
}

TEST(AcsLiesTest, AnImageThatDoesNotExistIsRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].frames[0].images[0].image = 4; }),
              Says("the animation \"Wave\" shows image 4, which does not exist"));
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].frames[0].images[0].image = 0xFFFFFFFF; }),
              Says("the animation \"Wave\" shows image 4294967295, which does not exist"));
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].frames[0].overlays[0].image = 0xFFFF; }),
              Says("the animation \"Wave\" shows image 65535, which does not exist"));
}

TEST(AcsLiesTest, ASoundThatDoesNotExistIsRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].frames[0].sound = 1; }),
              Says("the animation \"Wave\" plays sound 1, which does not exist"));
}

TEST(AcsLiesTest, AFrameThatDoesNotExistIsRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].frames[0].exitFrame = 2; }),
              Says("frame 0 of the animation \"Wave\" exits to frame 2, which does not exist"));
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].frames[0].branches[1].frame = 0xFFFF; }),
              Says("frame 0 of the animation \"Wave\" branches to frame 65535, which does not exist"));
}

TEST(AcsLiesTest, ANameInAMessageStaysOnItsLineAndIsCutWhenItIsLong)
{
    const auto named = [](const std::string& name) {
        return ErrorOf([&](AcsDescription& d) {
            d.animations[0].name = name;
            d.animations[0].frames[0].exitFrame = 2;
        });
    };
    EXPECT_EQ(named(std::string("A\nB\0C\u2028D\u202EE", 13)),
              Says("frame 0 of the animation \"A B C D E\" exits to frame 2, which does not exist"));
    std::string sixty;
    for (int i = 0; i < 60; ++i)
        sixty += "ö";
    EXPECT_EQ(named(sixty), Says("frame 0 of the animation \"" + sixty + "\" exits to frame 2, which does not exist"));
    EXPECT_EQ(named(sixty + "ö"),
              Says("frame 0 of the animation \"" + sixty + "…\" exits to frame 2, which does not exist"));
}

TEST(AcsLiesTest, BranchesOfMoreThanAHundredPercentAreRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].frames[0].branches[1].percent = 61; }),
              Says("the animation \"Wave\" has a frame whose branches add up to 101 percent"));
}

TEST(AcsLiesTest, AMouthThatDoesNotExistIsRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].frames[0].overlays[0].mouth = 7; }),
              Says("the animation \"Wave\" has mouth 7, which does not exist"));
}

TEST(AcsLiesTest, ATransitionThatDoesNotExistIsRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.animations[0].transition = static_cast<Transition>(3); }),
              Says("the animation \"Wave\" has transition type 3, which does not exist"));
}

TEST(AcsLiesTest, AnotherMajorVersionIsRefused)
{
    for (const std::uint16_t version : std::initializer_list<std::uint16_t>{0, 1, 3, 0x0102, 0xFFFF})
        EXPECT_EQ(ErrorOf([version](AcsDescription& d) { d.majorVersion = version; }),
                  Says("it is a character file of version " + std::to_string(version) + ", not of version 2"));
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.minorVersion = 0xFFFF; }), "no error");
}

TEST(AcsLiesTest, AnImageOfMoreThanSixteenMillionPixelsIsRefusedAsThat)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) { d.images[1] = Filled(5000, 4000, 1); }),
              Says("image 1 is of 5000 by 4000 pixels, more than 4 million"));
}

TEST(AcsLiesTest, AnImageOfAnotherSizeThanItsBytesIsRefused)
{
    const Bytes whole = WriteAcs(SmallCharacter());
    const std::size_t list = Get32(whole, 20);
    const std::size_t stored = Get32(whole, list + 4 + 12); // image 1 has 3 by 2 pixels, in rows of 4 bytes
    Bytes bytes = whole;
    ASSERT_EQ(bytes[stored + 5], 0);
    Put(bytes, stored + 1, 5, 2);
    EXPECT_EQ(ErrorOf(bytes), Says("image 1 claims 5 by 2 pixels, which is not what it holds"));
    const std::size_t packed = Get32(whole, list + 4 + 3 * 12);
    bytes = whole;
    ASSERT_EQ(bytes[packed + 5], 1);
    Put(bytes, packed + 1, 0xFFFFFFFF, 4);
    EXPECT_EQ(ErrorOf(bytes), Says("image 3 claims 65535 by 65535 pixels, which is not what it holds"));
    bytes = whole;
    Put(bytes, packed + 3, 31, 2);
    const auto file = AcsFile::Parse(bytes, "lie.acs");
    try {
        file->DecodeImage(3);
        FAIL();
    } catch (const AcsError& error) {
        EXPECT_EQ(error.what(), Says("image 3 is damaged, its packed data is shorter than its size"));
    }
    try {
        file->DecodeImage(4);
        FAIL();
    } catch (const AcsError& error) {
        EXPECT_EQ(error.what(), Says("image 4 does not exist"));
    }
}

TEST(AcsLiesTest, AnImageOrARegionPastTheEndOfItsSectionIsRefused)
{
    const Bytes whole = WriteAcs(SmallCharacter());
    const std::size_t image = Get32(whole, Get32(whole, 20) + 4 + 12); // its pixels are 8 bytes, not packed
    for (const std::size_t field : {image + 6, image + 10 + 8, image + 14 + 8}) {
        Bytes bytes = whole;
        Put(bytes, field, 0xFFFFFFFF, 4);
        EXPECT_EQ(ErrorOf(bytes), Says("image 1 is cut off")) << field;
    }
}

TEST(AcsLiesTest, APixelOutsideThePaletteIsRefusedWhenTheImageIsDecoded)
{
    AcsDescription d = SmallCharacter();
    d.images[0].pixels[7] = 4;
    const auto file = AcsFile::Parse(WriteAcs(d), "lie.acs");
    try {
        ComposeFrame(*file, file->animations[0].frames[0], -1);
        FAIL();
    } catch (const AcsError& error) {
        EXPECT_EQ(error.what(), Says("image 0 shows colour 4, which does not exist"));
    }
}

TEST(AcsLiesTest, AFrameOfMoreImagesThanCanBeDrawnIsRefused)
{
    EXPECT_EQ(ErrorOf([](AcsDescription& d) {
                  d.images[0] = Filled(2000, 2000, 1);
                  d.animations[0].frames[0].images.assign(5, {0, 0, 0});
              }),
              Says("the animation \"Wave\" has a frame of too many images to draw"));
}

TEST(AcsLiesTest, AnimationsThatShareTheirBytesTooOftenAreRefusedQuickly)
{
    AcsDescription d = SmallCharacter();
    d.animations.assign(20000, {"A", Transition::None, "", {}});
    d.animations[0].frames.resize(60000);
    Bytes bytes = WriteAcs(d);
    const std::size_t list = Get32(bytes, 12) + 4;
    const std::size_t entry = 4 + 4 + 8; // a name of one letter with its closing zero, and the locator
    for (std::size_t i = 1; i < d.animations.size(); ++i) {
        Put(bytes, list + i * entry + 8, Get32(bytes, list + 8), 4);
        Put(bytes, list + i * entry + 12, Get32(bytes, list + 12), 4);
    }
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(ErrorOf(bytes), Says("its animations overlap one another too often"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(1));
}
