#include "base/RuntimeError.h"
#include "tests/unit/agent/ServerTest.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace voxmate::agent::test
{
namespace
{

using ServerLoadTest = ServerTest;

TEST_F(ServerLoadTest, ALoadedCharacterIsHiddenAndKnowsItsFile)
{
    AgentCharacter& bo = Load();
    EXPECT_FALSE(bo.Visible());
    EXPECT_FALSE(stage.Window().visible);
    EXPECT_EQ(bo.OriginalWidth(), 40);
    EXPECT_EQ(bo.OriginalHeight(), 60);
    EXPECT_EQ(bo.Width(), 40);
    EXPECT_EQ(bo.Height(), 60);
    EXPECT_EQ(bo.AnimationNames(), (Lines{"RestPose", "Show", "Hide", "Wave", "Point", "PointReturn", "Search", "Bow",
                                          "Look", "Chime", "Nothing"}));
}

TEST_F(ServerLoadTest, ANameCanBeLoadedOnlyOnce)
{
    Load();
    try {
        server.Load("Bo", "Bo.acs");
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 457);
        EXPECT_EQ(error.Description, "The character \"Bo\" is loaded already.");
    }
    EXPECT_THROW(server.Load("bO", "bO.acs"), RuntimeError);
}

TEST_F(ServerLoadTest, NamesOfCharactersCompareWithoutCase)
{
    AgentCharacter& bo = Load("Zoë");
    EXPECT_EQ(&server.Characters("zoë"), &bo);
    server.Unload("ZOë");
    EXPECT_THROW(server.Characters("Zoë"), RuntimeError);
}

TEST_F(ServerLoadTest, AnUnusableFileIsARuntimeErrorThatNamesTheFile)
{
    Server real(stage, voice);
    try {
        real.Load("Bo", "/nowhere/Bo.acs");
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 321);
        EXPECT_NE(error.Description.find("/nowhere/Bo.acs"), std::string::npos) << error.Description;
    }
    EXPECT_THROW(real.Characters("Bo"), RuntimeError);
}

TEST_F(ServerLoadTest, ThereIsNoCharacterThatWasNotLoaded)
{
    try {
        server.Characters("Bo");
        FAIL();
    } catch (const RuntimeError& error) {
        EXPECT_EQ(error.Number, 9);
        EXPECT_EQ(error.Description, "Subscript out of range");
    }
}

TEST_F(ServerLoadTest, UnloadingEndsEverythingWithCompletionEvents)
{
    AgentCharacter& bo = LoadShown();
    const auto speak = Named("speak", bo.Speak("Hello", ""));
    const auto wave = Named("wave", bo.Play("Wave"));
    stage.Settle();
    voice.Begin();
    Log();
    server.Unload("Bo");
    EXPECT_EQ(voice.stops, 1);
    EXPECT_TRUE(stage.Window().destroyed);
    EXPECT_FALSE(stage.BalloonVisible());
    EXPECT_EQ(StatusOf(speak), 3);
    EXPECT_EQ(StatusOf(wave), 3);
    EXPECT_EQ(Log(), Lines{});
    stage.Run(600000);
    EXPECT_EQ(Log(), (Lines{"end speak 3", "end wave 3"}));
    EXPECT_EQ(stage.Waiting(), 0u);
    EXPECT_THROW(server.Characters("Bo"), RuntimeError);
    voice.End(false);
    stage.Settle();
}

TEST_F(ServerLoadTest, UnloadingWhatIsNotLoadedDoesNothing)
{
    server.Unload("Bo");
    stage.Settle();
    EXPECT_EQ(Log(), Lines{});
}

TEST_F(ServerLoadTest, ACharacterMayBeLoadedAgainAfterUnloading)
{
    LoadShown();
    server.Unload("Bo");
    AgentCharacter& bo = LoadShown();
    EXPECT_TRUE(bo.Visible());
    EXPECT_EQ(stage.characters.size(), 2u);
}

TEST_F(ServerLoadTest, ThreeCharactersLoadedAndUnloadedAHundredTimesLeaveNothingBehind)
{
    description.states.push_back({"IdlingLevel1", {"Look"}});
    for (int round = 0; round < 100; ++round) {
        for (const char* name : {"Bo", "Mia", "Al"}) {
            AgentCharacter& character = Load(name);
            character.Show(round % 2 == 0);
            character.Play("Search");
            character.Speak("Hello \\Mrk=1\\you", "");
        }
        stage.Run(round * 10);
        server.Characters("Bo").StopAll("Play");
        stage.Run(500);
        if (voice.speaking)
            voice.Begin();
        ASSERT_EQ(stage.characterWindows, 3);
        ASSERT_LE(stage.balloonWindows, 3);
        ASSERT_LE(stage.Waiting(), 12u) << round;
        for (const char* name : {"Al", "Bo", "Mia"})
            server.Unload(name);
        stage.Settle();
        ASSERT_EQ(stage.characterWindows, 0) << round;
        ASSERT_EQ(stage.balloonWindows, 0) << round;
        ASSERT_EQ(stage.Waiting(), 0u) << round;
        ASSERT_FALSE(voice.speaking) << round;
    }
    EXPECT_GE(voice.started.size(), 100u);
}

TEST_F(ServerLoadTest, AFileIsFoundWhateverTheCaseOfItsExtension)
{
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("voxmate-load-" + std::to_string(std::random_device{}()));
    std::filesystem::create_directory(folder);
    const std::vector<std::uint8_t> bytes = WriteAcs(description);
    std::ofstream(folder / "BO.ACS", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    Server real(stage, voice);
    EXPECT_NO_THROW(real.Load("BO", (folder / "BO.acs").string()));
    EXPECT_THROW(real.Load("bo", (folder / "bo.acs").string()), RuntimeError);
    EXPECT_THROW(real.Load("B", (folder / "B.acs").string()), RuntimeError);
    std::filesystem::remove_all(folder);
}

TEST_F(ServerLoadTest, TheVoiceOfTheFileIsTheModeIdentifierUntilItIsSet)
{
    EXPECT_EQ(Load().TTSModeID(), "");
    description.voice.emplace().mode = {0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                        0x88, 0x99, 0xAA, 0xBB, 0xCC, 0xDD, 0xEE, 0xFF};
    AgentCharacter& voiced = Load("Voiced");
    EXPECT_EQ(voiced.TTSModeID(), "{00112233-4455-6677-8899-AABBCCDDEEFF}");
    voiced.SetTTSModeID("{X}");
    EXPECT_EQ(voiced.TTSModeID(), "{X}");
}

TEST_F(ServerLoadTest, TheAudioStatusIsThatOfTheVoice)
{
    for (const AudioStatus status : {AudioStatus::Available, AudioStatus::NoSupport, AudioStatus::CannotOpen,
                                     AudioStatus::CharacterSpeaking, AudioStatus::Unknown}) {
        voice.status = status;
        EXPECT_EQ(server.AudioOutputStatus(), status);
    }
}

TEST_F(ServerLoadTest, ADamagedPictureIsToldOfLeavesTheLastOneStandingAndTheQueueGoesOn)
{
    description.compress = true;
    // The image claims 2400 pixels, but its packed data decode to fewer.
    description.images[7].pixels.assign(kWidth * kHeight, 7);
    std::vector<std::uint8_t> bytes = WriteAcs(description);
    const std::vector<std::uint8_t> packed = [&] {
        AcsDescription other = description;
        other.images[7].pixels.assign(kWidth * kHeight, 8);
        return WriteAcs(other);
    }();
    ASSERT_EQ(bytes.size(), packed.size());
    // The two files differ in the packed pixels of that image. The end mark, put there, ends the pixels early.
    std::size_t first = 0;
    while (bytes[first] == packed[first])
        ++first;
    for (std::size_t i = 0; i < 4; ++i)
        bytes[first + i] = 0xFF;
    Server damaged(stage, voice, [&](const std::string& path) { return AcsFile::Parse(bytes, path); });
    damaged.Damaged = [this](const std::string&, const std::string& message) { Note(message); };
    damaged.Load("Bo", "Bo.acs");
    AgentCharacter& bo = damaged.Characters("Bo");
    bo.Show(true);
    const auto wave = bo.Play("Wave");
    stage.Run(1000);
    EXPECT_EQ(Pictures(), (Numbers{1, 6, 8}));
    EXPECT_EQ(StatusOf(wave), 0);
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(log[0].find("The character file \"Bo.acs\" cannot be used: image 7 is damaged, its "), 0u) << log[0];
}

} // namespace
} // namespace voxmate::agent::test
