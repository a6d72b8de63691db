// Messages that come while another message is being spoken: each box shows its own text, and the program stays busy
// until the last one is closed.
#include "ModuleTest.h"

namespace voxmate
{

namespace
{

class AnnounceTest : public ModuleTest
{
protected:
    const std::string other =
        "Please make sure following file is available to load this charater:\r\nC:\\Chars\\Nobody.acs";

    AnnounceTest() { WithCharacter(); }

    /// Runs something that shows a box with this text, while another message comes.
    template <class Body>
    void ExpectOwnText(const std::string& text, Body body)
    {
        fake.windows.boxes.clear();
        fake.LetAnotherMessageCome();
        fake.windows.whileBoxIsUp = [this](const auto& box) {
            EXPECT_EQ(MessageText, box.text);
            EXPECT_EQ(IsBusy, True) << box.text;
        };
        body();
        ASSERT_EQ(fake.windows.boxes.size(), 2U);
        EXPECT_EQ(fake.windows.boxes[0].text, other);
        EXPECT_EQ(fake.windows.boxes[1].text, text);
        EXPECT_EQ(IsBusy, False);
    }
};

TEST_F(AnnounceTest, ACharacterThatIsMissing)
{
    ExpectOwnText("Please make sure following file is available to load this charater:\r\nC:\\Chars\\Somebody.acs",
                  [this] { LoadCharacter("Somebody", false); });
}

TEST_F(AnnounceTest, SettingsInError)
{
    Settings.SettingsErrorList = "Pitch\r\n";
    ExpectOwnText("Following option(s) not found (or inavlid values found) in your system registry:\r\n\r\n"
                  "Pitch\r\n\r\nDefault value(s) will be used for all these option(s)",
                  [this] { ReportSettingsInError(); });
}

TEST_F(AnnounceTest, AFileThatIsGoneAndOneOfTheWrongType)
{
    fake.windows.filesToOpen = {"C:\\gone.txt"};
    ExpectOwnText("File not found:\r\nC:\\gone.txt", [this] { OpenAndReadText(); });
    fake.windows.filesToOpen = {"C:\\notes.text"};
    fake.files.texts["C:\\notes.text"] = "Notes";
    ExpectOwnText("The below document you are trying to open is not a TEXT document:\r\nC:\\notes.text",
                  [this] { OpenAndReadText(); });
}

TEST_F(AnnounceTest, WithoutSoundTheProgramStaysBusyBehindTheBoxThatSaysSo)
{
    fake.agent.status = AudioStatus::NoSupport;
    std::vector<Boolean> busy;
    fake.windows.whileBoxIsUp = [&](const auto&) { busy.push_back(IsBusy); };
    LoadCharacter("Nobody", false);
    EXPECT_EQ(busy, (std::vector<Boolean>{True, True}));
    EXPECT_EQ(IsBusy, False);
}

} // namespace

} // namespace voxmate
