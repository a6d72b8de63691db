// The character file: what is written is read back, harmless oddities load, and frames are composed exactly.
#include "AcsSamples.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

using namespace voxmate;
using namespace voxmate::agent;
using namespace voxmate::agent::test;

namespace
{

std::shared_ptr<const AcsFile> ReadBack(const AcsDescription& d)
{
    return AcsFile::Parse(WriteAcs(d), "small.acs");
}

// Writes the small character into a file of its own, and returns the path.
std::string WrittenFile(const std::string& name)
{
    const std::string path = testing::TempDir() + name + std::to_string(std::random_device()()) + ".acs";
    const std::vector<std::uint8_t> bytes = WriteAcs(SmallCharacter());
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return path;
}

} // namespace

TEST(AcsFileReadingTest, GivesBackTheCharacter)
{
    const AcsDescription d = SmallCharacter();
    const auto file = ReadBack(d);
    EXPECT_EQ(file->path, "small.acs");
    EXPECT_EQ(file->majorVersion, 2);
    EXPECT_EQ(file->minorVersion, 1);
    EXPECT_EQ(file->guid, d.guid);
    EXPECT_EQ(file->width, 6);
    EXPECT_EQ(file->height, 5);
    EXPECT_EQ(file->transparentIndex, 0);
    EXPECT_EQ(file->flags, FlagVoice | FlagBalloon | FlagSizeToText | FlagAutoPaceOff | FlagStandardSet);
    EXPECT_EQ(file->animationSetMajor, 2);
    EXPECT_EQ(file->animationSetMinor, 0);
    EXPECT_EQ(file->palette, d.palette);
    EXPECT_EQ(file->trayIcon, d.trayIcon);
    EXPECT_EQ(file->states, d.states);
}

TEST(AcsFileReadingTest, GivesBackTheNamesOfEveryLanguage)
{
    const auto file = ReadBack(SmallCharacter());
    ASSERT_EQ(file->names.size(), 2u);
    EXPECT_EQ(file->names[0].language, 0x0409);
    EXPECT_EQ(file->names[0].name, "Bo");
    EXPECT_EQ(file->names[0].description, "A small one");
    EXPECT_EQ(file->names[0].extra, "hello");
    EXPECT_EQ(file->names[1].language, 0x0407);
    EXPECT_EQ(file->names[1].name, "Bö");
    EXPECT_EQ(file->names[1].description, "Ein Kleiner 🦊");
    EXPECT_EQ(file->names[1].extra, "");
}

TEST(AcsFileReadingTest, GivesBackTheVoice)
{
    const AcsDescription d = SmallCharacter();
    const auto file = ReadBack(d);
    ASSERT_TRUE(file->voice);
    EXPECT_EQ(file->voice->engine, d.voice->engine);
    EXPECT_EQ(file->voice->mode, d.voice->mode);
    EXPECT_EQ(file->voice->speed, 150u);
    EXPECT_EQ(file->voice->pitch, 110);
    EXPECT_TRUE(file->voice->hasDetails);
    EXPECT_EQ(file->voice->language, 0x0409);
    EXPECT_EQ(file->voice->dialect, "Texas");
    EXPECT_EQ(file->voice->gender, 2);
    EXPECT_EQ(file->voice->age, 30);
    EXPECT_EQ(file->voice->style, "Casual");
}

TEST(AcsFileReadingTest, GivesBackAVoiceWithoutDetails)
{
    AcsDescription d = SmallCharacter();
    d.voice->hasDetails = false;
    const auto file = ReadBack(d);
    ASSERT_TRUE(file->voice);
    EXPECT_FALSE(file->voice->hasDetails);
    EXPECT_EQ(file->voice->dialect, "");
    EXPECT_EQ(file->palette, d.palette);
}

TEST(AcsFileReadingTest, GivesBackTheBalloon)
{
    const auto file = ReadBack(SmallCharacter());
    ASSERT_TRUE(file->balloon);
    EXPECT_EQ(file->balloon->lines, 2);
    EXPECT_EQ(file->balloon->charactersPerLine, 32);
    EXPECT_EQ(file->balloon->text, (Colour{1, 2, 3}));
    EXPECT_EQ(file->balloon->background, (Colour{255, 255, 231}));
    EXPECT_EQ(file->balloon->border, (Colour{4, 5, 6}));
    EXPECT_EQ(file->balloon->fontName, "Sans");
    EXPECT_EQ(file->balloon->fontHeight, -13);
    EXPECT_EQ(file->balloon->fontWeight, 400);
    EXPECT_TRUE(file->balloon->italic);
    EXPECT_EQ(file->balloon->unused, 7);
}

TEST(AcsFileReadingTest, GivesBackTheAnimations)
{
    const auto file = ReadBack(SmallCharacter());
    ASSERT_EQ(file->animations.size(), 3u);
    const Animation& wave = file->animations[0];
    EXPECT_EQ(wave.name, "Wave");
    EXPECT_EQ(wave.transition, Transition::ReturnAnimation);
    EXPECT_EQ(wave.returnAnimation, "Back");
    ASSERT_EQ(wave.frames.size(), 2u);
    const Frame& first = wave.frames[0];
    ASSERT_EQ(first.images.size(), 2u);
    EXPECT_EQ(first.images[0].image, 1u);
    EXPECT_EQ(first.images[0].x, 2);
    EXPECT_EQ(first.images[0].y, 1);
    EXPECT_EQ(first.sound, 0);
    EXPECT_EQ(first.duration, 10);
    EXPECT_EQ(first.exitFrame, 1);
    ASSERT_EQ(first.branches.size(), 2u);
    EXPECT_EQ(first.branches[0].frame, 1);
    EXPECT_EQ(first.branches[0].percent, 40);
    ASSERT_EQ(first.overlays.size(), 2u);
    EXPECT_EQ(first.overlays[1].mouth, MouthWide1);
    EXPECT_TRUE(first.overlays[1].replaceFront);
    EXPECT_EQ(first.overlays[1].image, 2);
    EXPECT_EQ(first.overlays[1].x, 4);
    EXPECT_EQ(first.overlays[1].y, 4);
    EXPECT_EQ(first.overlays[1].width, 1);
    EXPECT_EQ(first.overlays[1].height, 1);
    EXPECT_EQ(first.overlays[1].region, (std::vector<std::uint8_t>{7, 7, 7}));
    EXPECT_TRUE(first.HasMouths());
    EXPECT_EQ(wave.frames[1].sound, -1);
    EXPECT_EQ(wave.frames[1].exitFrame, -1);
    EXPECT_EQ(wave.frames[1].images[0].x, -5);
    EXPECT_EQ(wave.frames[1].images[0].y, -3);
    EXPECT_TRUE(file->animations[1].frames.empty());
    EXPECT_EQ(file->animations[2].transition, Transition::ExitBranches);
}

TEST(AcsFileReadingTest, GivesBackImagesPackedAndStored)
{
    for (const bool compress : {true, false}) {
        AcsDescription d = SmallCharacter();
        d.compress = compress;
        const auto file = ReadBack(d);
        ASSERT_EQ(file->ImageCount(), d.images.size());
        for (std::size_t i = 0; i < d.images.size(); ++i) {
            const IndexedImage image = file->DecodeImage(i);
            EXPECT_EQ(image.width, d.images[i].width);
            EXPECT_EQ(image.height, d.images[i].height);
            EXPECT_TRUE(image.pixels == d.images[i].pixels) << i;
        }
    }
}

TEST(AcsFileReadingTest, GivesBackTheSound)
{
    const auto file = ReadBack(SmallCharacter());
    ASSERT_EQ(file->SoundCount(), 1u);
    const auto sound = file->Sound(0);
    EXPECT_EQ(std::vector<std::uint8_t>(sound.begin(), sound.end()), SmallWave());
    EXPECT_THROW(file->Sound(1), AcsError);
}

TEST(AcsFileReadingTest, FindsAnimationsAndStatesWithoutCase)
{
    const auto file = ReadBack(SmallCharacter());
    EXPECT_EQ(file->FindAnimation("WAVE"), &file->animations[0]);
    EXPECT_EQ(file->FindAnimation("Wav"), nullptr);
    EXPECT_EQ(file->FindState("speaking"), &file->states[1].second);
    EXPECT_EQ(file->FindState("Hiding"), nullptr);
}

TEST(AcsFileReadingTest, ReadsTheFileFromItsPath)
{
    const std::string path = WrittenFile("voxmate-ä-");
    const auto file = AcsFile::Open(path);
    EXPECT_EQ(file->path, path);
    EXPECT_EQ(file->animations.size(), 3u);
    std::remove(path.c_str());
    try {
        AcsFile::Open(path);
        FAIL();
    } catch (const AcsError& error) {
        EXPECT_EQ(error.what(), "The character file \"" + path + "\" cannot be used: there is no such file.");
    }
    EXPECT_THROW(AcsFile::Open(testing::TempDir()), AcsError);
}

TEST(AcsFileReadingTest, ReadsImagesAndSoundsFromTheFileThatItOpenedAlsoWhenAnotherHasTakenItsPlace)
{
    const auto expected = ReadBack(SmallCharacter());
    const std::string path = WrittenFile("voxmate-replaced-");
    const auto file = AcsFile::Open(path, Keep::InFile);
    // Where an open file cannot be removed, none can take its place.
    if (std::remove(path.c_str()) == 0)
        std::ofstream(path) << "something else";
    ASSERT_GT(file->ImageCount(), 0u);
    for (std::size_t i = 0; i < file->ImageCount(); ++i)
        EXPECT_EQ(file->DecodeImage(i).pixels, expected->DecodeImage(i).pixels) << i;
    EXPECT_EQ(file->Sound(0), expected->Sound(0));
    std::remove(path.c_str());
}

TEST(AcsFileReadingTest, AFileThatIsKeptInMemoryMayBeOverwritten)
{
    const auto expected = ReadBack(SmallCharacter());
    const std::string path = WrittenFile("voxmate-overwritten-");
    const auto file = AcsFile::Open(path);
    std::filesystem::resize_file(std::filesystem::path(path), 0);
    for (std::size_t i = 0; i < file->ImageCount(); ++i)
        EXPECT_EQ(file->DecodeImage(i).pixels, expected->DecodeImage(i).pixels) << i;
    EXPECT_EQ(file->Sound(0), expected->Sound(0));
    std::remove(path.c_str());
}

TEST(AcsFileReadingTest, AFileThatIsCutShortAfterItWasOpenedIsReadAsFarAsItGoes)
{
    const auto expected = ReadBack(SmallCharacter());
    const std::string path = WrittenFile("voxmate-cut-");
    const auto file = AcsFile::Open(path, Keep::InFile);
    const StoredImage& last = file->Stored(file->ImageCount() - 1);
    std::filesystem::resize_file(std::filesystem::path(path), last.offset + last.size - 1);
    try {
        file->DecodeImage(file->ImageCount() - 1);
        FAIL();
    } catch (const AcsError& error) {
        EXPECT_EQ(error.what(), "The character file \"" + path + "\" cannot be used: it cannot be read any more.");
    }
    EXPECT_EQ(file->DecodeImage(0).pixels, expected->DecodeImage(0).pixels);
    std::filesystem::resize_file(std::filesystem::path(path), 0);
    EXPECT_THROW(file->DecodeImage(0), AcsError);
    EXPECT_THROW(file->Sound(0), AcsError);
    std::remove(path.c_str());
}

TEST(AcsFileReadingTest, LoadsACharacterWithoutVoiceBalloonOrIcon)
{
    AcsDescription d = SmallCharacter();
    d.voice.reset();
    d.balloon.reset();
    d.trayIcon.reset();
    d.names.clear();
    d.states.clear();
    d.sounds.clear();
    d.animations.clear();
    const auto file = ReadBack(d);
    EXPECT_FALSE(file->voice);
    EXPECT_FALSE(file->balloon);
    EXPECT_FALSE(file->trayIcon);
    EXPECT_EQ(file->flags & (FlagVoice | FlagBalloon), 0u);
    EXPECT_EQ(file->palette, d.palette);
}

TEST(AcsFileReadingTest, LoadsAHeaderThatPointsToNothingButACharacter)
{
    std::vector<std::uint8_t> bytes = WriteAcs(SmallCharacter());
    AcsDescription d = SmallCharacter();
    for (std::size_t at = 12; at < 36; ++at)
        bytes[at] = 0;
    const auto file = AcsFile::Parse(bytes, "bare.acs");
    EXPECT_TRUE(file->animations.empty());
    EXPECT_EQ(file->ImageCount(), 0u);
    EXPECT_EQ(file->SoundCount(), 0u);
    EXPECT_EQ(file->names.size(), 2u);
}

TEST(AcsFileReadingTest, LoadsBytesAfterTheEnd)
{
    std::vector<std::uint8_t> bytes = WriteAcs(SmallCharacter());
    bytes.insert(bytes.end(), 1000, 0x42);
    EXPECT_EQ(AcsFile::Parse(bytes, "long.acs")->animations.size(), 3u);
}

TEST(AcsFileReadingTest, LoadsAThousandAndTwoAnimations)
{
    AcsDescription d = SmallCharacter();
    const Animation model = d.animations[0];
    d.animations.clear();
    for (int i = 0; i < 1002; ++i) {
        d.animations.push_back(model);
        d.animations.back().name = "Wave" + std::to_string(i);
    }
    const auto file = ReadBack(d);
    ASSERT_EQ(file->animations.size(), 1002u);
    EXPECT_EQ(file->FindAnimation("wave1001"), &file->animations[1001]);
}

TEST(AcsFileReadingTest, LoadsFramesWithoutDurationThatBranchInACircle)
{
    AcsDescription d = SmallCharacter();
    Frame frame;
    frame.branches = {{0, 100}};
    frame.exitFrame = 0;
    d.animations[0].frames = {frame};
    EXPECT_EQ(ReadBack(d)->animations[0].frames[0].branches[0].percent, 100);
}

TEST(AcsFileReadingTest, KeepsTheNameOfAReturnAnimationThatIsNotThere)
{
    AcsDescription d = SmallCharacter();
    d.animations[0].returnAnimation = "Gone";
    const auto file = ReadBack(d);
    EXPECT_EQ(file->animations[0].transition, Transition::ReturnAnimation);
    EXPECT_EQ(file->animations[0].returnAnimation, "Gone");
}

TEST(AcsFileReadingTest, TakesAnyNegativeExitFrameAsNone)
{
    AcsDescription d = SmallCharacter();
    d.animations[0].frames[0].exitFrame = -2;
    EXPECT_LT(ReadBack(d)->animations[0].frames[0].exitFrame, 0);
}

TEST(AcsFileReadingTest, LoadsImagesOfNoSize)
{
    AcsDescription d = SmallCharacter();
    d.images[2] = Filled(0, 3, 0);
    EXPECT_TRUE(ReadBack(d)->DecodeImage(2).pixels.empty());
}

TEST(AcsFileWritingTest, StoresAnImageThatPackingWouldMakeLarger)
{
    AcsDescription d = SmallCharacter();
    d.compress = false;
    const std::size_t stored = WriteAcs(d).size();
    d.compress = true;
    const std::size_t packed = WriteAcs(d).size();
    d.images[3] = Filled(1, 1, 1);
    const std::size_t tiny = WriteAcs(d).size();
    d.compress = false;
    EXPECT_LT(packed + 1000, stored);
    EXPECT_GE(WriteAcs(d).size(), tiny);
}

TEST(AcsFileWritingTest, RefusesAnImageThatDoesNotHoldItsPixels)
{
    AcsDescription d = SmallCharacter();
    d.images[0].pixels.pop_back();
    EXPECT_THROW(WriteAcs(d), std::length_error);
}

namespace
{

// A frame as text, one letter for each pixel: '.' where nothing is drawn, else the pixel's palette index.
std::string Picture(const AcsFile& file, const Bitmap& bitmap)
{
    std::string text;
    for (int y = 0; y < bitmap.height; ++y) {
        for (int x = 0; x < bitmap.width; ++x) {
            const std::uint32_t pixel = bitmap.pixels[static_cast<std::size_t>(y * bitmap.width + x)];
            char letter = pixel == 0 ? '.' : '?';
            for (std::size_t i = 0; i < file.palette.size(); ++i) {
                const Colour c = file.palette[i];
                if (pixel == (0xFF000000u | std::uint32_t{c.red} << 16 | std::uint32_t{c.green} << 8 | c.blue))
                    letter = static_cast<char>('0' + i);
            }
            text += letter;
        }
        text += '\n';
    }
    return text;
}

std::string Composed(const AcsDescription& d, int mouth = -1)
{
    const auto file = ReadBack(d);
    const Bitmap bitmap = ComposeFrame(*file, file->animations[0].frames[0], mouth);
    EXPECT_EQ(bitmap.pixels.size(), static_cast<std::size_t>(file->width) * file->height);
    return Picture(*file, bitmap);
}

} // namespace

TEST(AcsComposeTest, DrawsTheFirstImageInFrontAndLeavesOutTheTransparentColour)
{
    EXPECT_EQ(Composed(SmallCharacter()), "111111\n"
                                          "112311\n"
                                          "111231\n"
                                          "111111\n"
                                          "111111\n");
}

TEST(AcsComposeTest, LeavesWhatNothingCoversTransparent)
{
    AcsDescription d = SmallCharacter();
    d.animations[0].frames[0].images = {{1, 1, 0}};
    EXPECT_EQ(Composed(d), ".23...\n"
                           ".123..\n"
                           "......\n"
                           "......\n"
                           "......\n");
}

TEST(AcsComposeTest, ClipsAtEveryEdge)
{
    AcsDescription d = SmallCharacter();
    d.animations[0].frames[0].images = {{1, -1, -1}, {1, 4, 4}, {1, 5, -1}, {1, -2, 3},        {1, -3, 0},
                                        {1, 6, 0},   {1, 0, 5}, {1, 0, -2}, {1, 32767, 32767}, {1, -32768, -32768}};
    EXPECT_EQ(Composed(d), "23...1\n"
                           "......\n"
                           "......\n"
                           "......\n"
                           "3...23\n");
}

TEST(AcsComposeTest, DrawsAMouthOverTheFrame)
{
    EXPECT_EQ(Composed(SmallCharacter(), MouthClosed), "111111\n"
                                                       "132311\n"
                                                       "111231\n"
                                                       "111111\n"
                                                       "111111\n");
}

TEST(AcsComposeTest, DrawsAMouthInPlaceOfTheFrontImage)
{
    EXPECT_EQ(Composed(SmallCharacter(), MouthWide1), "111111\n"
                                                      "111111\n"
                                                      "111111\n"
                                                      "111111\n"
                                                      "111131\n");
}

TEST(AcsComposeTest, DrawsTheFrameAloneForAMouthItDoesNotHave)
{
    EXPECT_EQ(Composed(SmallCharacter(), MouthNarrow), Composed(SmallCharacter()));
}

TEST(AcsComposeTest, DrawsAMouthWhereThereIsNoImageToReplace)
{
    AcsDescription d = SmallCharacter();
    d.animations[0].frames[0].images.clear();
    EXPECT_EQ(Composed(d, MouthWide1), "......\n"
                                       "......\n"
                                       "......\n"
                                       "......\n"
                                       "....3.\n");
}
