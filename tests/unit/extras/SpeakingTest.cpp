// The keys that speak and silence, and the main window's first focus, size and place.
#include "ExtrasTest.h"

namespace voxmate
{

namespace
{

class SpeakingTest : public ExtrasTest
{
protected:
    void SetStatus(RequestStatus status) { LastSpoken().status = status; }
};

TEST_F(SpeakingTest, TheMenusItemsStandInTheirOrderWithTheirKeys)
{
    const auto itemsOf = [this](const char* menu) {
        Lines items;
        for (const Menu* item : Item(menu).Items())
            items.push_back(item->Caption.get() + (item->Shortcut.empty() ? "" : " " + item->Shortcut));
        return items;
    };
    EXPECT_EQ(itemsOf("mnuExtras"), (Lines{"&Speak the Text Ctrl+Enter",
                                           "S&top Everything Esc",
                                           "&Pieces of Text",
                                           "&Document",
                                           "-",
                                           "Sa&ve as Sound... Ctrl+S",
                                           "-",
                                           "Pron&unciation...",
                                           "Say Lin&ks and Codes in Short",
                                           "Voice &for Each Language",
                                           "-",
                                           "&Character Stands Aside",
                                           "Character &Breathes",
                                           "-",
                                           "Start at &Log-in",
                                           "&Greet Me at Log-in",
                                           "-",
                                           "Save as Cal&endar File...",
                                           "Missed Re&minders...",
                                           "&Alerts",
                                           "-",
                                           "&Help on Extras"}));
    EXPECT_EQ(itemsOf("mnuAlerts"),
              (Lines{"Desktop &Notification with Each", "&Wait during Full Screen and Do Not Disturb"}));
    EXPECT_EQ(itemsOf("mnuPieces"), (Lines{"R&ead the Selection Ctrl+R", "Read fro&m the Cursor Ctrl+Shift+R",
                                           "Read the Selection of &Any Program (Ctrl+Alt+S)",
                                           "Read the Clipboard from An&y Program (Ctrl+Alt+C)"}));
    EXPECT_EQ(
        itemsOf("mnuDocument"),
        (Lines{"&Pause or Go On Ctrl+P", "&Back a Sentence Alt+Left", "&Forward a Sentence Alt+Right",
               "Back a Pa&ragraph Alt+Up", "For&ward a Paragraph Alt+Down", "From the Begi&nning Alt+Home", "-",
               "Rea&ding Window Ctrl+D", "Open &It with Each Document", "-", "F&orget Where Documents Were Left"}));
    Begin();
    Item("mnuExtrasHelp").UserClick();
    EXPECT_EQ(fake.process.commands, (Lines{"explorer.exe file:///C:/WINDOWS/web/extras.html style 3"}));
}

TEST_F(SpeakingTest, TheItemsDoWhatTheButtonsDo)
{
    Begin();
    form.txtText.Text = "Hello";
    Item("mnuSpeakText").UserClick();
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\Hello"));
    fake.log.clear();
    Item("mnuStopAll").UserClick();
    EXPECT_EQ(fake.log, (Lines{"StopAll Move, Play, Speak", "Play RestPose"}));
}

TEST_F(SpeakingTest, EscapeStopsEverythingWhileSomethingIsSpokenOrWaitsForIt)
{
    Begin();
    EXPECT_FALSE(extras.Escape());
    form.txtText.Text = "Hello";
    form.cmdSpeak.UserClick();
    for (const auto status : {RequestStatus::Pending, RequestStatus::InProgress}) {
        SetStatus(status);
        const std::uint32_t stops = StopCount;
        EXPECT_TRUE(extras.Escape());
        EXPECT_EQ(StopCount, stops + 1);
    }
    fake.log.clear();
    for (const auto status : {RequestStatus::Complete, RequestStatus::Failed, RequestStatus::Interrupted}) {
        SetStatus(status);
        EXPECT_FALSE(extras.Escape());
    }
    EXPECT_TRUE(fake.log.empty());
}

TEST_F(SpeakingTest, EscapeStopsAWaveFile)
{
    Begin();
    fake.files.texts["C:\\a.wav"] = "";
    fake.windows.filesToOpen = {"C:\\a.wav"};
    form.mnuPlayWav.UserClick();
    EXPECT_TRUE(extras.Escape());
    dynamic_cast<fakes::FakeRequest&>(*CurrentRequest).status = RequestStatus::Interrupted;
    EXPECT_FALSE(extras.Escape());
}

TEST_F(SpeakingTest, EscapeStopsADocumentThatIsStillBeingOpened)
{
    Begin();
    fake.windows.filesToOpen = {"C:\\letter.doc"};
    fake.files.texts["C:\\letter.doc"] = "a document";
    fake.word.documents["C:\\letter.doc"] = "hello";
    int taken = 0;
    fake.word.whileOpening = [&] { taken += extras.Escape() ? 1 : 0; };
    // In the file dialog Escape closes that.
    fake.windows.whileOpenDialogIsUp = [this] { EXPECT_FALSE(extras.Escape()); };
    form.cmdWord.UserClick();
    EXPECT_EQ(taken, 1);
    EXPECT_TRUE(Logged("Word Quit"));
    EXPECT_FALSE(Logged("Speak \\Pit=50\\ \\Spd=156\\hello"));
    EXPECT_FALSE(extras.Escape());
}

TEST_F(SpeakingTest, EscapeStopsBetweenTheFirstPartsOfADocument)
{
    Begin();
    fake.windows.filesToOpen = {"C:\\letter.doc"};
    fake.files.texts["C:\\letter.doc"] = "a document";
    fake.word.documents["C:\\letter.doc"] = std::string(1000, 'x') + " " + std::string(1000, 'y');
    fake.windows.whilePending = [this] { EXPECT_TRUE(extras.Escape()); };
    form.cmdWord.UserClick();
    for (const std::string& call : fake.log)
        EXPECT_FALSE(call.starts_with("Speak ")) << call;
}

TEST_F(SpeakingTest, TheWindowBeginsInTheTextBoxWhichTakesTheRoomOfALargerWindow)
{
    EXPECT_EQ(form.FirstFocus, &form.txtText);
    EXPECT_EQ(form.Border, BorderStyle::Sizable);
    std::vector<int> rows;
    for (const Layout& row : form.Arrangement.children)
        rows.push_back(row.stretch);
    EXPECT_EQ(rows, (std::vector<int>{0, 1, 0}));
}

TEST_F(SpeakingTest, SizeAndPlaceAreKept)
{
    EXPECT_EQ(form.Geometry, "");
    form.UserGeometry("there");
    form.UserGeometry("elsewhere");
    EXPECT_EQ(state.values, (std::map<std::string, std::string>{{"main.geometry", "elsewhere"}}));
    frmMain next(program);
    Extras more(program, next,
                {state, login, desktop, media, keys, nullptr, nullptr, nullptr, places, wording, nullptr, sounds.Host(),
                 presence, notifications, quiet, characterQuiet, power});
    EXPECT_EQ(next.Geometry, "elsewhere");
}

} // namespace

} // namespace voxmate
