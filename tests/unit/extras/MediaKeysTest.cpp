// Media keys and the desktop's controls for the document that is being read, and the tray icon's tool tip.
#include "ReadingCase.h"

#include <chrono>

namespace voxmate
{

namespace
{

using namespace std::chrono_literals;
using Command = MediaControls::Command;
using readers::Refusal;

class MediaKeysTest : public ReadingCase
{
protected:
    MediaKeysTest()
    {
        // At 156 words a minute of six characters, 936 characters take a minute.
        const std::string text(467, 'x');
        Document("C:\\a.docx", {text + ".", text + "."});
        Document("C:\\b.odt", {"Other."});
    }
    /// The tips that the icon was given.
    Lines Tips() const
    {
        Lines tips;
        for (const auto& [message, data] : fake.windows.trayCalls)
            if (message == NIM_MODIFY)
                tips.emplace_back(data.tip.data());
        return tips;
    }
};

TEST_F(MediaKeysTest, TheDesktopIsToldOfADocumentFromTheFirstOneOnAndAsLongAsThereIsOne)
{
    Begin();
    EXPECT_FALSE(media.shown);
    Open({"C:\\a.docx"});
    EXPECT_EQ(media.shown, (MediaControls::State{"a.docx", 1, true, true, 0us, 60s}));
    EndNext(); // Show
    StartNext();
    EndNext();
    StartNext();
    EXPECT_EQ(media.shown, (MediaControls::State{"a.docx", 1, true, true, 30s, 60s}));
    Item("mnuPause").UserClick();
    EXPECT_EQ(media.shown, (MediaControls::State{"a.docx", 1, false, true, 30s, 60s}));
    Item("mnuPause").UserClick();
    SpeakAll();
    EXPECT_TRUE(media.shown) << "another may follow";
    TimerOf("tmrMedia").Fire();
    EXPECT_FALSE(media.shown);
    EXPECT_FALSE(TimerOf("tmrMedia").Enabled);
    EXPECT_EQ(media.withdrawn, 1);
}

TEST_F(MediaKeysTest, TheNextDocumentOfTheRowIsNoOtherPlayer)
{
    Begin();
    Open({"C:\\a.docx", "C:\\b.odt"});
    EndNext(); // Show
    for (int i = 0; i < 2; ++i) {
        StartNext();
        EndNext();
    }
    Tick();
    EXPECT_EQ(media.shown->Title, "b.odt");
    EXPECT_EQ(media.shown->Number, 2u);
    EXPECT_FALSE(TimerOf("tmrMedia").Enabled);
    EXPECT_EQ(media.withdrawn, 0);
}

TEST_F(MediaKeysTest, ItsKeysPauseGoOnMoveByParagraphsAndStop)
{
    Begin();
    Open({"C:\\a.docx"});
    media.Called(Command::Play);
    EXPECT_TRUE(media.shown->Playing) << "it plays already";
    media.Called(Command::Pause);
    EXPECT_FALSE(media.shown->Playing);
    media.Called(Command::Pause);
    EXPECT_FALSE(media.shown->Playing);
    media.Called(Command::PlayPause);
    EXPECT_TRUE(media.shown->Playing);
    media.Called(Command::Next);
    EXPECT_EQ(media.shown->Position, 30s);
    media.Called(Command::Previous);
    EXPECT_EQ(media.shown->Position, 0s);
    media.Sought(45s);
    EXPECT_EQ(media.shown->Position, 30s) << "the sentence that is heard then";
    media.Sought(29s);
    EXPECT_EQ(media.shown->Position, 0s);
    fake.log.clear();
    media.Called(Command::Stop);
    EXPECT_TRUE(Logged("StopAll Move, Play, Speak"));
    media.Called(Command::Raise);
    EXPECT_TRUE(Logged("Window frmMain activated"));
}

TEST_F(MediaKeysTest, APauseStaysOnTheWayToAnotherPlace)
{
    Begin();
    Open({"C:\\a.docx"});
    media.Called(Command::Pause);
    fake.log.clear();
    media.Called(Command::Next);
    EXPECT_EQ(media.shown, (MediaControls::State{"a.docx", 1, false, true, 30s, 60s}));
    media.Called(Command::Previous);
    EXPECT_EQ(media.shown, (MediaControls::State{"a.docx", 1, false, true, 0s, 60s}));
    media.Sought(45s);
    EXPECT_EQ(media.shown, (MediaControls::State{"a.docx", 1, false, true, 30s, 60s}));
    EXPECT_EQ(Spoken(), Lines{});
    media.Called(Command::Play);
    EXPECT_EQ(Spoken().size(), 1u) << "the second paragraph";
    EXPECT_EQ(media.shown, (MediaControls::State{"a.docx", 1, true, true, 30s, 60s}));
}

TEST_F(MediaKeysTest, WithoutADocumentTheyDoNothing)
{
    Begin();
    for (const Command command :
         {Command::Play, Command::Pause, Command::PlayPause, Command::Stop, Command::Next, Command::Previous})
        media.Called(command);
    media.Sought(1s);
    EXPECT_EQ(fake.log, Lines{});
}

TEST_F(MediaKeysTest, ARecordingHasNeitherPartsNorALength)
{
    Begin();
    File("C:\\song.wav", {Refusal::Sound});
    Open({"C:\\song.wav"});
    EXPECT_EQ(media.shown, (MediaControls::State{"song.wav", 1, true, false, 0us, 0us}));
}

TEST_F(MediaKeysTest, TheTrayIconsTipTellsHowMuchIsLeft)
{
    fake.windows.trayAnswer = true;
    Begin();
    Open({"C:\\a.docx"});
    TimerOf("tmrTip").Fire();
    EXPECT_EQ(Tips(), Lines{"Voxmate - Reading, 1 minute left: a.docx"});
    Item("mnuPause").UserClick();
    TimerOf("tmrTip").Fire();
    EXPECT_EQ(Tips().back(), "Voxmate - Paused, 1 minute left: a.docx");
    Item("mnuPause").UserClick();
    SpeakAll();
    EXPECT_EQ(Tips().back(), "Voxmate") << "as at first";
    EXPECT_FALSE(TimerOf("tmrTip").Enabled);
    EXPECT_EQ(fake.windows.trayCalls.back().second.flags, NIF_TIP);
}

TEST_F(MediaKeysTest, WithoutAnIconNothingIsSetBack)
{
    Begin();
    Open({"C:\\b.odt"});
    TimerOf("tmrTip").Fire();
    SpeakAll();
    EXPECT_EQ(Tips().size(), 1u);
}

TEST_F(MediaKeysTest, ATipThatIsTooLongIsCutAtACharacter)
{
    fake.windows.trayAnswer = true;
    const std::string name = "abcdefghijklmnopqrüst.odt";
    Document("C:\\" + name, {"Text."});
    Begin();
    Open({"C:\\" + name});
    TimerOf("tmrTip").Fire();
    EXPECT_EQ(Tips(), Lines{"Voxmate - Reading, less than a minute left: abcdefghijklmnopqr"});
}

} // namespace

} // namespace voxmate
