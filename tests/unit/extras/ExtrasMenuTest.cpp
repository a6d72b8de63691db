#include "extras/ExtrasMenu.h"

#include "forms/frmMain.h"
#include "tests/fakes/ProgramTest.h"

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

using Lines = std::vector<std::string>;

class ExtrasMenuTest : public ProgramTest
{
protected:
    frmMain form{program};
    ExtrasMenu menu{form};

    Menu& Top() { return *form.MenuBar.back(); }
    Lines Captions()
    {
        Lines captions;
        for (const Menu* item : Top().Items())
            captions.push_back(item->Caption);
        return captions;
    }
};

TEST_F(ExtrasMenuTest, ItStandsBehindTheFormsOwnMenus)
{
    Lines captions;
    for (const Menu* each : form.MenuBar)
        captions.push_back(each->Caption);
    EXPECT_EQ(captions, (Lines{"&File", "&Speak", "&Reminders", "&Help", "E&xtras"}));
    EXPECT_EQ(form.Find("mnuExtras"), &Top());
}

TEST_F(ExtrasMenuTest, ItemsStandInTheOrderInWhichTheyWereAdded)
{
    Lines clicked;
    menu.BeginGroup();
    menu.Add("mnuOne", "&One", [&clicked] { clicked.push_back("one"); });
    menu.Add("mnuTwo", "&Two", [&clicked] { clicked.push_back("two"); });
    menu.BeginGroup();
    menu.BeginGroup();
    menu.Add("mnuThree", "T&hree", [&clicked] { clicked.push_back("three"); });
    EXPECT_EQ(Captions(), (Lines{"&One", "&Two", "-", "T&hree"}));
    for (Menu* item : Top().Items())
        item->UserClick();
    EXPECT_EQ(clicked, (Lines{"one", "two", "three"}));
}

TEST_F(ExtrasMenuTest, ASwitchIsLookedAtEachTimeTheMenuOpens)
{
    bool on = false;
    Menu& item = menu.AddSwitch(
        "mnuSwitch", "&Switch", [&on] { return on; }, [&on](bool to) { on = to; });
    EXPECT_TRUE(item.Checkable);
    Top().UserClick();
    EXPECT_FALSE(item.Checked);
    on = true;
    EXPECT_FALSE(item.Checked);
    Top().UserClick();
    EXPECT_TRUE(item.Checked);
}

TEST_F(ExtrasMenuTest, AClickTurnsASwitchFromTheStateThatIsOnShow)
{
    bool on = false;
    bool obeys = true;
    Lines turned;
    Menu& item = menu.AddSwitch(
        "mnuSwitch", "&Switch", [&on] { return on; },
        [&](bool to) {
            turned.push_back(to ? "on" : "off");
            if (obeys)
                on = to;
        });
    item.UserClick();
    EXPECT_TRUE(item.Checked);
    item.UserClick();
    EXPECT_FALSE(item.Checked);
    // It is off on show, and another program has switched it on meanwhile.
    on = true;
    item.UserClick();
    EXPECT_TRUE(item.Checked);
    // It cannot be switched.
    obeys = false;
    item.UserClick();
    EXPECT_TRUE(item.Checked);
    EXPECT_EQ(turned, (Lines{"on", "off", "on", "off"}));
}

TEST_F(ExtrasMenuTest, UnitsAreToldThatTheMenuOpens)
{
    int opened = 0;
    menu.WhenOpened([&opened] { ++opened; });
    Top().UserClick();
    Top().UserClick();
    EXPECT_EQ(opened, 2);
}

TEST_F(ExtrasMenuTest, AMenuCanStandInAnotherOne)
{
    bool on = true;
    menu.Add("mnuOne", "&One", {});
    menu.BeginGroup();
    ExtrasMenu inner(menu, "mnuInner", "&Inner");
    menu.Add("mnuTwo", "&Two", {});
    Menu& item = inner.AddSwitch(
        "mnuSwitch", "&Switch", [&on] { return on; }, [](bool) {});
    EXPECT_EQ(Captions(), (Lines{"&One", "-", "&Inner", "&Two"}));
    EXPECT_EQ(Top().Items()[2]->Items(), std::vector<Menu*>{&item});
    Top().UserClick();
    EXPECT_TRUE(item.Checked);
    on = false;
    Top().Items()[2]->UserClick();
    EXPECT_FALSE(item.Checked);
}

} // namespace

} // namespace voxmate
