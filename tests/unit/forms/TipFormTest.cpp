#include "forms/frmTip.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/ProgramTest.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

using Lines = std::vector<std::string>;

/// A main window whose tip window is the real one.
class WindowWithTip : public fakes::FakeMainWindow
{
public:
    WindowWithTip(fakes::Log& log, frmTip& tipForm) : FakeMainWindow(log), tipForm_(tipForm) {}
    TipWindow& Tip() override { return tipForm_; }

private:
    frmTip& tipForm_;
};

class TipFormTest : public ProgramTest
{
protected:
    frmTip form{program};
    WindowWithTip window{fake.log, form};

    TipFormTest()
    {
        program.Main = &window;
        fake.StoreDefaults();
        LoadSettings();
        Settings.AutoReadTip = 0;
        Settings.ShowCharacterAtStart = 0;
        LoadCharacter("Alfa", true);
        fake.log.clear();
    }
    void File(const std::string& text) { fake.files.texts["C:\\Voxmate\\VoxmateTips.txt"] = text; }
    void Open()
    {
        form.ShowTip();
        ShowTipOfTheDay(false);
    }
};

TEST_F(TipFormTest, EveryControlHasItsNameAndCaption)
{
    EXPECT_EQ(form.Caption, "Tip of the Day");
    EXPECT_EQ(form.chkAutoRead.Caption.get(), "&Auto Read Tip");
    EXPECT_EQ(form.cmdReadTip.Caption.get(), "&Read Tip");
    EXPECT_EQ(form.chkLoadTipsAtStartup.Caption.get(), "&Show Tips at Startup");
    EXPECT_EQ(form.cmdNextTip.Caption.get(), "&Next Tip");
    EXPECT_EQ(form.Label1.Caption.get(), "Did you know...");
    EXPECT_EQ(form.cmdOK.Caption.get(), "OK");
    for (const char* name : {"Picture1", "lblTipText", "chkAutoRead", "cmdReadTip", "chkLoadTipsAtStartup",
                             "cmdNextTip", "Label1", "cmdOK"})
        EXPECT_NE(form.Find(name), nullptr) << name;
    EXPECT_TRUE(form.cmdOK.IsDefault);
    EXPECT_TRUE(form.cmdOK.IsCancel);
}

TEST_F(TipFormTest, OpensOnOneOfTheFilesTipsAndStaysSilent)
{
    File("one\ntwo\nthree\n");
    for (int time = 1; time <= 2; ++time) {
        Open();
        EXPECT_TRUE(form.IsShown());
        const std::string text = form.lblTipText.Caption;
        EXPECT_TRUE(text == "one" || text == "two" || text == "three") << text;
        EXPECT_EQ(Tips.size(), 3u * static_cast<std::size_t>(time));
        form.cmdOK.UserClick();
        EXPECT_FALSE(form.IsLoaded());
    }
    EXPECT_EQ(fake.log,
              (Lines{"Window frmTip shown", "Window frmTip hidden", "Window frmTip shown", "Window frmTip hidden"}));
}

TEST_F(TipFormTest, AnEmptyLineIsATipThatShowsNothing)
{
    File("\n");
    Open();
    EXPECT_EQ(form.lblTipText.Caption.get(), "");
}

TEST_F(TipFormTest, AFileOfNoBytesLeavesTheTextItOpensWith)
{
    File("");
    Open();
    EXPECT_EQ(form.lblTipText.Caption.get(), "There is no tip for today.");
    form.cmdNextTip.UserClick();
    EXPECT_EQ(form.lblTipText.Caption.get(), "There is no tip for today.");
}

TEST_F(TipFormTest, AMissingFileIsExplainedAndNextTipLeavesThat)
{
    Open();
    const std::string text = form.lblTipText.Caption;
    EXPECT_TRUE(text.starts_with("VoxmateTips.txt file was not found? \r\n\r\n")) << text;
    form.cmdNextTip.UserClick();
    EXPECT_EQ(form.lblTipText.Caption.get(), text);
    EXPECT_EQ(CurrentTip, 1);
}

TEST_F(TipFormTest, NextTipGoesThroughAllOfThem)
{
    File("one\ntwo\nthree\n");
    Open();
    std::set<std::string> seen;
    for (int i = 0; i < 100; ++i) {
        form.cmdNextTip.UserClick();
        seen.insert(form.lblTipText.Caption);
    }
    EXPECT_EQ(seen, (std::set<std::string>{"one", "two", "three"}));
    EXPECT_EQ(Tips.size(), 3u);
}

TEST_F(TipFormTest, NextTipReadsAloudOnlyWhenThatIsSetAndReadTipAlways)
{
    File("the tip\n");
    Open();
    fake.log.clear();
    form.cmdNextTip.UserClick();
    EXPECT_EQ(fake.log, Lines{});
    const Lines spoken{"Show", "DoEvents", "Play Suggest", "Speak \\Pit=50\\ \\Spd=156\\the tip", "Play RestPose"};
    form.cmdReadTip.UserClick();
    EXPECT_EQ(fake.log, spoken);
    fake.log.clear();
    form.chkAutoRead.UserClick(true);
    form.cmdNextTip.UserClick();
    EXPECT_EQ(fake.log, spoken);
}

TEST_F(TipFormTest, TheCheckBoxesShowTheSettingsAndWriteThemAtOnce)
{
    File("tip\n");
    Open();
    EXPECT_EQ(form.chkLoadTipsAtStartup.Value, 1);
    EXPECT_EQ(form.chkAutoRead.Value, 0);
    form.chkLoadTipsAtStartup.UserClick(false);
    EXPECT_EQ(fake.store.Dword("ShowTipAtStartUp"), 0);
    EXPECT_EQ(Settings.ShowTipAtStartUp, 0);
    form.chkAutoRead.UserClick(true);
    EXPECT_EQ(fake.store.Dword("AutoReadTip"), 1);
    EXPECT_EQ(Settings.AutoReadTip, 1);
    form.chkAutoRead.UserClick(false);
    EXPECT_EQ(fake.store.Dword("AutoReadTip"), 0);
    form.cmdOK.UserClick();
    Open();
    EXPECT_EQ(form.chkLoadTipsAtStartup.Value, 0);
    form.chkLoadTipsAtStartup.UserClick(true);
    EXPECT_EQ(fake.store.Dword("ShowTipAtStartUp"), 1);
}

} // namespace

} // namespace voxmate
