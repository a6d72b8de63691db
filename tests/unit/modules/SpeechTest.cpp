#include "ModuleTest.h"

namespace voxmate
{

namespace
{

class SpeechTest : public ModuleTest
{
};

TEST_F(SpeechTest, OneTextIsShowPlaySpeakRest)
{
    WithCharacter();
    SpeakText("Hello there", "Greet");
    EXPECT_EQ(fake.log,
              (Lines{"Show", "DoEvents", "Play Greet", "Speak \\Pit=50\\ \\Spd=156\\Hello there", "Play RestPose"}));
}

TEST_F(SpeechTest, AnEmptyAnimationPlaysNothingBeforeTheSpeechAndTheRestPoseStillFollows)
{
    WithCharacter();
    SpeakText("Hello there", "");
    SpeakText("Hello there", "  ");
    const Lines once{"Show", "DoEvents", "Speak \\Pit=50\\ \\Spd=156\\Hello there", "Play RestPose"};
    EXPECT_EQ(Lines(fake.log.begin(), fake.log.begin() + 4), once);
    EXPECT_EQ(Lines(fake.log.begin() + 4, fake.log.end()), once);
}

TEST_F(SpeechTest, ATextOfOnlyBlanksIsNotSpokenAndDoesNotShowTheCharacter)
{
    WithCharacter();
    SpeakText("   ", "Greet");
    SpeakText("", "Announce");
    EXPECT_TRUE(fake.log.empty());
}

TEST_F(SpeechTest, BlanksRoundTheTextGoAndLineEndsStay)
{
    WithCharacter();
    SpeakText("  \r\nHello\t ", "");
    EXPECT_EQ(fake.log.at(2), "Speak \\Pit=50\\ \\Spd=156\\\r\nHello\t");
}

TEST_F(SpeechTest, ABackslashIsDoubled)
{
    WithCharacter();
    SpeakText("a\\b", "");
    EXPECT_EQ(fake.log.at(2), "Speak \\Pit=50\\ \\Spd=156\\a\\\\b");
}

TEST_F(SpeechTest, TheWalkOverBackslashesEndsAtTheLengthBeforeEscaping)
{
    EXPECT_EQ(EscapeMarkup("a\\b"), "a\\\\b");
    // "x" and two backslashes: the walk ends at position 3, which the first escape has already filled.
    EXPECT_EQ(EscapeMarkup("x\\\\"), "x\\\\\\");
    EXPECT_EQ(EscapeMarkup("\\\\"), "\\\\\\");
    EXPECT_EQ(EscapeMarkup("\\\\\\\\"), "\\\\\\\\\\\\");
    EXPECT_EQ(EscapeMarkup("\\"), "\\\\");
    EXPECT_EQ(EscapeMarkup(""), "");
    // Characters count, not bytes.
    EXPECT_EQ(EscapeMarkup("\xC3\xA9\\\\"), "\xC3\xA9\\\\\\");
}

TEST_F(SpeechTest, WhisperGoesInFrontOfPitchAndSpeed)
{
    WithCharacter();
    Settings.Whisper = True;
    Settings.Pitch = 40;
    Settings.Speed = 400;
    SpeakText("Hush", "");
    EXPECT_EQ(fake.log.at(2), "Speak \\Chr=\"WHISPER\"\\ \\Pit=40\\ \\Spd=400\\Hush");
}

TEST_F(SpeechTest, OnlyTrueTurnsWhisperOn)
{
    WithCharacter();
    Settings.Whisper = 1;
    SpeakText("Hush", "");
    EXPECT_EQ(fake.log.at(2), "Speak \\Pit=50\\ \\Spd=156\\Hush");
}

TEST_F(SpeechTest, NoAudioSupportIsSaidInABoxAtEachCallAndNothingIsSpoken)
{
    WithCharacter();
    fake.agent.status = AudioStatus::NoSupport;
    Boolean busyMeanwhile = False;
    fake.windows.whileBoxIsUp = [&](const auto&) { busyMeanwhile = IsBusy; };
    SpeakText("Hello", "Greet");
    SpeakText("", "");
    EXPECT_EQ(fake.log, (Lines{"MsgBox Voxmate - Audio Output Problem", "MsgBox Voxmate - Audio Output Problem"}));
    EXPECT_EQ(fake.windows.boxes[0].text, "There is no support for audio output.");
    EXPECT_EQ(fake.windows.boxes[0].style, 16);
    EXPECT_EQ(busyMeanwhile, True);
    EXPECT_EQ(IsBusy, False);
}

TEST_F(SpeechTest, AnUnknownAudioProblemIsSaidInABox)
{
    WithCharacter();
    fake.agent.status = AudioStatus::Unknown;
    SpeakText("Hello", "");
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "There was some other (unknown) problem in attempting to access the audio output channel.");
    EXPECT_EQ(fake.windows.boxes[0].style, 16);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Audio Output Problem");
    EXPECT_EQ(fake.log.size(), 1u);
}

TEST_F(SpeechTest, EveryOtherAudioStatusSpeaks)
{
    WithCharacter();
    for (const AudioStatus status : {AudioStatus::Available, AudioStatus::CannotOpen, AudioStatus::UserSpeaking,
                                     AudioStatus::CharacterSpeaking, AudioStatus::Waiting}) {
        fake.log.clear();
        fake.agent.status = status;
        SpeakText("Hello", "");
        EXPECT_EQ(fake.log.size(), 4u) << static_cast<int>(status);
    }
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(SpeechTest, TheLastSpeakAndPlayRequestsAreKept)
{
    fakes::FakeCharacter& character = WithCharacter();
    SpeakText("Hello", "");
    const AgentRequestPtr rest = character.last;
    EXPECT_NE(LastSpeakRequest, nullptr);
    EXPECT_EQ(LastPlayRequest, nullptr);
    SpeakText("Hello", "Greet");
    EXPECT_NE(LastPlayRequest, nullptr);
    EXPECT_NE(LastPlayRequest, LastSpeakRequest);
    EXPECT_NE(LastPlayRequest, rest);
}

TEST_F(SpeechTest, EnginesAreListedWithTheirIdentifiersInBraces)
{
    WithCharacter();
    Settings.LastSpeechEngine = "Second Voice";
    LoadSpeechEngines();
    EXPECT_EQ(window.engines, (Lines{"First Voice", "Second Voice"}));
    EXPECT_EQ(EngineNames[1], "First Voice");
    EXPECT_EQ(EngineIds[1], "{11111111-0000-8000-8000-000000000001}");
    EXPECT_EQ(EngineIds[2], "{22222222-0000-8000-8000-000000000002}");
    EXPECT_EQ(window.selectedEngine, 1);
    EXPECT_EQ(fake.Loaded("Alfa").ttsModeId, "{22222222-0000-8000-8000-000000000002}");
    EXPECT_EQ(fake.store.At("LastSpeechEngine").data, "First Voice");
    EXPECT_EQ(CurrentRoutineId, 1);
    EXPECT_EQ(Settings.SettingsErrorList, "");
}

TEST_F(SpeechTest, OfTwoEnginesWithTheNameUsedLastTheLaterIsSelected)
{
    WithCharacter();
    fake.speech.engines = {{"Twin", "A"}, {"Other", "B"}, {"Twin", "C"}, {"twin", "D"}};
    Settings.LastSpeechEngine = "Twin";
    LoadSpeechEngines();
    EXPECT_EQ(window.selectedEngine, 2);
    EXPECT_EQ(fake.Loaded("Alfa").ttsModeId, "{C}");
}

TEST_F(SpeechTest, AnEngineThatIsGoneGivesTheFirstStoresItAndReportsItOnce)
{
    WithCharacter();
    Settings.LastSpeechEngine = "Gone";
    LoadSpeechEngines();
    EXPECT_EQ(window.selectedEngine, 0);
    EXPECT_EQ(fake.store.At("LastSpeechEngine").data, "First Voice");
    EXPECT_EQ(Settings.SettingsErrorList, "Voice Type Last Used\r\n");
}

TEST_F(SpeechTest, AnEngineThatIsReportedAlreadyIsNotReportedAgain)
{
    WithCharacter();
    Settings.LastSpeechEngine = "";
    Settings.SettingsErrorList = "Pitch\r\nVOICE type last USED\r\n";
    LoadSpeechEngines();
    EXPECT_EQ(Settings.SettingsErrorList, "Pitch\r\nVOICE type last USED\r\n");
}

TEST_F(SpeechTest, AtMostAHundredEnginesAreHandled)
{
    WithCharacter();
    fake.speech.engines.clear();
    for (int i = 1; i <= 130; ++i)
        fake.speech.engines.emplace_back("Voice " + std::to_string(i), std::to_string(i));
    Settings.LastSpeechEngine = "Voice 101";
    LoadSpeechEngines();
    EXPECT_EQ(window.engines.size(), 100u);
    EXPECT_EQ(EngineIds[100], "{100}");
    EXPECT_EQ(window.selectedEngine, 0);
}

TEST_F(SpeechTest, WithoutAnEngineTheBoxExplainsAndOnNoTheProgramEnds)
{
    WithCharacter();
    WindowsDir = "C:\\WINDOWS";
    fake.speech.engines.clear();
    EXPECT_TRUE(fake.Ends([this] { LoadSpeechEngines(); }));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "No speech engine is loaded on this machine. Please load a speech engine and then try again.\r\n"
              "Voxmate will end now.\r\n"
              "Please goto following MS Agents' download page and install atleast one Speech Engine.\r\n"
              "file:///C:/WINDOWS/web/voices.html\r\n"
              "Do you want to goto download site now ?");
    EXPECT_EQ(fake.windows.boxes[0].style, 16 + 4);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Unhandled Error");
    EXPECT_EQ(fake.log, (Lines{"MsgBox Voxmate - Unhandled Error", "EndProgram"}));
}

TEST_F(SpeechTest, WithoutAnEngineOnYesThePageIsOpenedAndTheProgramEnds)
{
    WithCharacter();
    WindowsDir = "C:\\WINDOWS";
    fake.speech.engines.clear();
    fake.windows.answers = {vbYes};
    EXPECT_TRUE(fake.Ends([this] { LoadSpeechEngines(); }));
    EXPECT_EQ(fake.process.commands, (Lines{"explorer.exe file:///C:/WINDOWS/web/voices.html style 3"}));
    EXPECT_EQ(fake.log.back(), "EndProgram");
    EXPECT_EQ(ShellTaskId, 4711);
}

TEST_F(SpeechTest, ChoosingAnEngineGivesItToTheCharacterAndStoresItsName)
{
    WithCharacter();
    LoadSpeechEngines();
    ChooseSpeechEngine(2);
    EXPECT_EQ(fake.Loaded("Alfa").ttsModeId, "{22222222-0000-8000-8000-000000000002}");
    EXPECT_EQ(fake.store.At("LastSpeechEngine").data, "Second Voice");
}

TEST_F(SpeechTest, APagesAddressHoldsNoBlankOrOtherReservedCharacter)
{
    WindowsDir = "/home/zo\xC3\xAB/My Projects & more/share/voxmate";
    EXPECT_EQ(HelpPage("voices"), "file:///home/zo%C3%AB/My%20Projects%20%26%20more/share/voxmate/web/voices.html");
}

TEST_F(SpeechTest, APageThatCannotBeOpenedGoesToTheClipboard)
{
    fake.process.shellFails = true;
    fake.windows.clipboard = "before";
    OpenUrl("file:///C:/page.html");
    EXPECT_EQ(fake.windows.clipboard, "file:///C:/page.html");
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].text,
              "Voxmate is unable to open the following URL:\r\nfile:///C:/page.html\r\n\r\n"
              "This URL has been copied to your Clipboard.\r\n"
              "Open Internet Explorer and paste in the Address Bar and click 'GO' or press 'Enter'");
    EXPECT_EQ(fake.windows.boxes[0].style, 48);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - URL Open Error");
}

} // namespace

} // namespace voxmate
