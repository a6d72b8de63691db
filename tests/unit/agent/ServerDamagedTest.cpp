#include "tests/unit/agent/ServerTest.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace voxmate::agent::test
{
namespace
{

/// Characters with pictures that cannot be decoded, because they show a colour that the palette does not have.
class DamagedPicturesTest : public ServerTest
{
protected:
    DamagedPicturesTest()
    {
        server.Damaged = [this](const std::string& character, const std::string& message) {
            Note("damaged " + character + ": " + message);
        };
    }
    void Damage(std::initializer_list<std::size_t> images)
    {
        for (const std::size_t image : images)
            description.images[image].pixels.back() = 200;
    }
    static std::string Told(const std::string& name, int image)
    {
        return "damaged " + name + ": The character file \"" + name + ".acs\" cannot be used: image " +
               std::to_string(image) + " shows colour 200, which does not exist.";
    }
};

TEST_F(DamagedPicturesTest, AreToldOnceALoadWithTheMessageThatNamesTheFile)
{
    Damage({8, 7});
    AgentCharacter& bo = Load();
    EXPECT_EQ(Log(), Lines{});
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{Told("Bo", 7)}));
    bo.Show(true);
    bo.Play("Wave");
    bo.Play("Wave");
    stage.Run(2000);
    for (const std::string& line : Log())
        EXPECT_EQ(line.find("damaged"), std::string::npos) << line;
    server.Unload("Bo");
    Load();
    stage.Settle();
    EXPECT_EQ(Log(), (Lines{Told("Bo", 7)}));
}

TEST_F(DamagedPicturesTest, AFileThatIsCutShortLeavesTheCharacterInItsPictureAndWithoutItsSounds)
{
    const std::string path = testing::TempDir() + "voxmate-cut-" + std::to_string(std::random_device()()) + ".acs";
    const std::vector<std::uint8_t> bytes = WriteAcs(description);
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    Server reading(stage, voice, [&path](const std::string&) { return AcsFile::Open(path, Keep::InFile); });
    reading.Load("Bo", path);
    AgentCharacter& bo = reading.Characters("Bo");
    bo.Show(true);
    stage.Run(1000);
    const AgentRequestPtr heard = bo.Play("Chime");
    stage.Run(5000);
    EXPECT_EQ(heard->Status(), RequestStatus::Complete);
    EXPECT_EQ(stage.sounds.size(), 1u);
    std::filesystem::resize_file(path, 0);
    const AgentRequestPtr silent = bo.Play("Chime");
    stage.Run(5000);
    EXPECT_EQ(silent->Status(), RequestStatus::Complete);
    EXPECT_EQ(stage.sounds.size(), 1u);
    EXPECT_TRUE(stage.Window().visible);
    reading.Unload("Bo");
    std::filesystem::remove(path);
}

TEST_F(DamagedPicturesTest, ASoundFileIsNotToldOf)
{
    Load();
    stage.Run(1000);
    EXPECT_EQ(stage.worksDone, 1);
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(DamagedPicturesTest, AreLookedForBesideWhatTheCharacterDoes)
{
    Damage({7});
    stage.workTime = 5000;
    AgentCharacter& bo = Load();
    Named("show", bo.Show(true));
    Named("wave", bo.Play("Wave"));
    stage.Run(1000);
    EXPECT_EQ(stage.worksDone, 0);
    EXPECT_EQ(Log(), (Lines{"start show", "shown Bo 4", "end show 0", "start wave", "end wave 0"}));
    EXPECT_EQ(Pictures(), (Numbers{1, 6, 8}));
    stage.Run(4000);
    EXPECT_EQ(Log(), (Lines{Told("Bo", 7)}));
}

TEST_F(DamagedPicturesTest, OfACharacterThatHasGoneAreNotToldOf)
{
    Damage({7});
    stage.workTime = 100;
    Load();
    server.Unload("Bo");
    stage.Run(1000);
    EXPECT_EQ(stage.worksDone, 0);
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(DamagedPicturesTest, AMouthIsLeftOut)
{
    Damage({kMouths + 2});
    AgentCharacter& bo = LoadShown();
    Pictures();
    bo.Speak("Hello", "");
    stage.Settle();
    voice.Begin();
    voice.Mouth(1);
    voice.Mouth(2);
    voice.Mouth(3);
    voice.End();
    EXPECT_EQ(Pictures(), (Numbers{50, 51, 1, 53, 1}));
}

TEST_F(DamagedPicturesTest, AnotherPoseToSpeakInStandsInForTheNeutralOne)
{
    Damage({1});
    AgentCharacter& bo = LoadShown();
    EXPECT_EQ(Pictures(), (Numbers{10}));
    bo.Play("Bow");
    bo.Speak("Hello", "");
    stage.Run(100);
    voice.Begin();
    voice.Mouth(2);
    voice.End();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{16, 10, 50, 52, 10}));
}

TEST_F(DamagedPicturesTest, WithoutASoundPoseToSpeakInAnySoundPictureStandsIn)
{
    Damage({1, 2, 10});
    LoadShown();
    EXPECT_EQ(Pictures(), (Numbers{3}));
}

TEST_F(DamagedPicturesTest, WhatIsOnTheScreenAlreadyIsSeenAsSoonAsItIsKnownWhatCanBe)
{
    Damage({1, 2, 3});
    stage.workTime = 1000;
    AgentCharacter& bo = Load();
    bo.Show(false);
    stage.Run(999);
    EXPECT_TRUE(stage.Window().visible);
    EXPECT_EQ(Pictures(), Numbers{});
    stage.Run(1);
    EXPECT_EQ(Pictures(), (Numbers{10}));
}

TEST_F(DamagedPicturesTest, AShowingThatCannotBeDrawnShowsTheNeutralPose)
{
    Damage({2, 3});
    Load().Show(false);
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{1}));
}

TEST_F(DamagedPicturesTest, ACharacterWithoutAnySoundPictureSpeaksAllTheSame)
{
    for (auto& image : description.images)
        image.pixels.back() = 200;
    AgentCharacter& bo = Load();
    Named("show", bo.Show(false));
    Named("wave", bo.Play("Wave"));
    Named("speak", bo.Speak("Hello", ""));
    stage.Run(1000);
    EXPECT_EQ(voice.started.size(), 1u);
    voice.SpeakAll();
    stage.Run(1000);
    EXPECT_EQ(Pictures(), Numbers{});
    EXPECT_EQ(Log(), (Lines{Told("Bo", 0), "start show", "shown Bo 4", "end show 0", "start wave", "end wave 0",
                            "start speak", "end speak 0"}));
}

TEST_F(DamagedPicturesTest, TheSizeChangesEvenIfTheFrameOnShowCannotBeDrawn)
{
    Damage({7});
    AgentCharacter& bo = LoadShown();
    bo.Play("Wave");
    stage.Run(150);
    Pictures();
    bo.SetWidth(80);
    EXPECT_EQ(stage.Window().size, (Size{80, 60}));
    EXPECT_EQ(Pictures(), (Numbers{6}));
}

} // namespace
} // namespace voxmate::agent::test
