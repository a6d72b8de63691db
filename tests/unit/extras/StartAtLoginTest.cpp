#include "ExtrasTest.h"

namespace voxmate
{

namespace
{

class StartAtLoginTest : public ExtrasTest
{
protected:
    CommandLine quiet;
    bool splash = false;

    StartAtLoginTest() { quiet.Quiet = true; }
    void BeginQuietly()
    {
        extras.Begin(quiet, [this] { splash = true; });
    }
};

TEST_F(StartAtLoginTest, TheItemSwitchesTheEntryAndShowsWhatOthersDoToIt)
{
    OpenMenu();
    EXPECT_FALSE(Item("mnuAtLogin").Checked);
    EXPECT_FALSE(Item("mnuGreetAtLogin").Enabled);
    Item("mnuAtLogin").UserClick();
    EXPECT_TRUE(login.on);
    EXPECT_TRUE(Item("mnuAtLogin").Checked);
    login.on = false;
    OpenMenu();
    EXPECT_FALSE(Item("mnuAtLogin").Checked);
    login.on = true;
    OpenMenu();
    EXPECT_TRUE(Item("mnuAtLogin").Checked);
    EXPECT_TRUE(Item("mnuGreetAtLogin").Enabled);
    Item("mnuAtLogin").UserClick();
    EXPECT_FALSE(login.on);
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(StartAtLoginTest, AnEntryThatCannotBeWrittenIsToldOf)
{
    Begin();
    login.fails = true;
    Item("mnuAtLogin").UserClick();
    EXPECT_FALSE(Item("mnuAtLogin").Checked);
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: The following file, which starts programs at log-in, cannot be "
                              "changed:\r\nC:\\Autostart\\Voxmate"}));
}

TEST_F(StartAtLoginTest, WhetherToGreetIsRemembered)
{
    login.on = true;
    OpenMenu();
    EXPECT_FALSE(Item("mnuGreetAtLogin").Checked);
    Item("mnuGreetAtLogin").UserClick();
    EXPECT_TRUE(Item("mnuGreetAtLogin").Checked);
    EXPECT_EQ(state.values, (std::map<std::string, std::string>{{"login.greeting", "1"}}));
    Item("mnuGreetAtLogin").UserClick();
    EXPECT_EQ(state.values.at("login.greeting"), "0");
}

TEST_F(StartAtLoginTest, TheQuietStartLoadsEverythingAndShowsNothing)
{
    fake.store.SetDword("GreetingEnabled", 1);
    fake.store.SetDword("IntroAtStart", 1);
    fake.store.SetDword("ShowTipAtStartUp", 1);
    BeginQuietly();
    EXPECT_FALSE(splash);
    EXPECT_EQ(fake.log, (Lines{"Listen", "DoEvents", "Load Alfa C:\\Chars\\Alfa.acs", "DoEvents",
                               "TTSModeID {11111111-0000-8000-8000-000000000001}", "DoEvents", "Shell_NotifyIconA 0",
                               "Window frmMain hidden"}));
    EXPECT_TRUE(StartedUp);
    EXPECT_TRUE(form.RemTimer.Enabled);
    EXPECT_FALSE(form.IsShown());
    // The setting is the user's own again, and has not been written.
    EXPECT_EQ(Settings.ShowCharacterAtStart, 1);
    EXPECT_EQ(fake.store.Dword("ShowCharacterAtStart"), 1);
}

TEST_F(StartAtLoginTest, WhoWantsToBeGreetedIsGreetedAsAtAnyStart)
{
    fake.store.SetDword("GreetingEnabled", 1);
    state.values["login.greeting"] = "1";
    BeginQuietly();
    EXPECT_TRUE(Logged("Show"));
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\Hello Buddy."));
    EXPECT_FALSE(Logged("Window frmMain shown"));
    EXPECT_EQ(fake.log.back(), "Window frmMain hidden");
}

TEST_F(StartAtLoginTest, APanelThatComesLateIsWaitedFor)
{
    fake.windows.notificationArea = false;
    BeginQuietly();
    Timer& looks = TimerOf("tmrTray");
    EXPECT_EQ(looks.Interval, 500);
    for (int i = 0; i < 20; ++i)
        looks.Fire();
    EXPECT_TRUE(fake.windows.trayCalls.empty());
    fake.windows.notificationArea = true;
    looks.Fire();
    EXPECT_EQ(fake.windows.trayCalls.size(), 1u);
    EXPECT_FALSE(looks.Enabled);
}

TEST_F(StartAtLoginTest, WithoutAPanelTheWindowIsMinimisedAfterHalfAMinute)
{
    fake.windows.notificationArea = false;
    BeginQuietly();
    Timer& looks = TimerOf("tmrTray");
    for (int i = 0; i < 58; ++i)
        looks.Fire();
    EXPECT_TRUE(fake.windows.trayCalls.empty());
    looks.Fire();
    // The front end minimises a window that no icon stands for.
    EXPECT_EQ(fake.windows.trayCalls.size(), 1u);
    EXPECT_FALSE(looks.Enabled);
}

TEST_F(StartAtLoginTest, AWindowThatWasCalledForMeanwhileStays)
{
    fake.windows.notificationArea = false;
    BeginQuietly();
    desktop.Called({});
    EXPECT_TRUE(form.IsShown());
    EXPECT_FALSE(TimerOf("tmrTray").Enabled);
    EXPECT_TRUE(fake.windows.trayCalls.empty());
}

TEST_F(StartAtLoginTest, AWindowThatIsCalledForDuringTheQuietStartComesWhenThatHasEnded)
{
    bool called = false;
    fake.windows.whilePending = [this, &called] {
        if (!std::exchange(called, true))
            desktop.Called({});
        EXPECT_FALSE(form.IsShown());
    };
    BeginQuietly();
    EXPECT_TRUE(called);
    TimerOf("tmrWaiting").Fire();
    EXPECT_TRUE(form.IsShown());
}

} // namespace

} // namespace voxmate
