#include "controls/Form.h"
#include "controls/MonthView.h"
#include "tests/fakes/RecordingPeer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace voxmate
{

namespace
{

class NoPeer : public FormPeer
{
public:
    void Show() override {}
    void Hide() override {}
    void Update(Property) override {}
    void Activate() override {}
    void PopupMenu(Menu&, Control*) override {}
};

class NoHost : public FormHost
{
public:
    int made = 0;
    std::unique_ptr<FormPeer> CreateFormPeer(Form&) override
    {
        ++made;
        return std::make_unique<NoPeer>();
    }
};

class TestForm : public Form
{
public:
    explicit TestForm(FormHost& host) : Form(host, "frmTest") {}
    CommandButton cmdGo{this, "cmdGo", "&Go"};
    HScrollBar scrBar{this, "scrBar", 40, 400};
    CheckBox chkBox{this, "chkBox", "Box"};
    ComboBox comList{this, "comList"};
    Timer tmr{this, "tmr", 10, true};
    Menu mnuTop{this, nullptr, "mnuTop", "&Top"};
    Menu mnuItem{this, &mnuTop, "mnuItem", "&Item"};
    int loads = 0;
    bool keep = false;

protected:
    void Form_Load() override { ++loads; }
    void Form_QueryUnload(bool& cancel) override { cancel = keep; }
};

class ControlsTest : public ::testing::Test
{
protected:
    NoHost host;
    TestForm form{host};
};

TEST_F(ControlsTest, AnAccessKeyIsMarkedInACaptionThatMarksNone)
{
    EXPECT_EQ(MarkAccessKey("Size to text", 'z'), "Si&ze to text");
    EXPECT_EQ(MarkAccessKey("Title", 't'), "&Title");
    EXPECT_EQ(MarkAccessKey("Stop", 'x'), "Stop");
    EXPECT_EQ(MarkAccessKey("&Go", 'o'), "&Go");
    EXPECT_EQ(MarkAccessKey("Go", 0), "Go");
}

TEST_F(ControlsTest, AFieldTellsWhatTheUserChangesApartFromWhatTheProgramChanges)
{
    TextBox box{&form, "txtBox"};
    MonthView month{&form, "mvDate"};
    std::vector<std::string> told;
    box.Change = [&] { told.push_back("Change " + box.Text.get()); };
    box.Edited = [&] { told.push_back("Edited " + box.Text.get()); };
    month.SelChange = [&] { told.push_back("SelChange " + std::to_string(month.Day())); };
    month.Edited = [&] { told.push_back("Edited " + std::to_string(month.Day())); };
    box.Text = "a";
    box.UserEdit("ab");
    month.SetValue({2026, 11, 25});
    month.UserSelect({2026, 11, 26});
    EXPECT_EQ(told, (std::vector<std::string>{"Change a", "Change ab", "Edited ab", "SelChange 25", "SelChange 26",
                                              "Edited 26"}));
}

TEST_F(ControlsTest, SettingAPropertyTellsThePeerOnceAndOnlyWhenItChanges)
{
    fakes::RecordingPeer peer;
    form.cmdGo.SetPeer(&peer);
    form.cmdGo.Caption = "&Stop";
    form.cmdGo.Caption = "&Stop";
    EXPECT_EQ(peer.updates, std::vector<Property>{Property::Caption});
}

TEST_F(ControlsTest, ABarRaisesChangeForTheUserAndForTheCode)
{
    std::vector<int> values;
    form.scrBar.Change = [&] { values.push_back(form.scrBar.Value); };
    form.scrBar.Value = 41;
    form.scrBar.Value = 41;
    form.scrBar.UserScroll(42);
    form.scrBar.UserScroll(42);
    EXPECT_EQ(values, (std::vector<int>{41, 42}));
}

TEST_F(ControlsTest, ACheckBoxRaisesClickForTheUserAndForTheCode)
{
    int clicks = 0;
    form.chkBox.Click = [&] { ++clicks; };
    form.chkBox.Value = 1;
    form.chkBox.UserClick(false);
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(form.chkBox.Value.get(), 0);
}

TEST_F(ControlsTest, AListRaisesClickForTheUserOnly)
{
    int clicks = 0;
    form.comList.Click = [&] { ++clicks; };
    form.comList.AddItem("a");
    form.comList.AddItem("b");
    form.comList.ListIndex = 1;
    EXPECT_EQ(clicks, 0);
    form.comList.UserSelect(0);
    EXPECT_EQ(clicks, 1);
    EXPECT_EQ(form.comList.ListIndex.get(), 0);
}

TEST_F(ControlsTest, ADisabledButtonIsNotClicked)
{
    int clicks = 0;
    form.cmdGo.Click = [&] { ++clicks; };
    form.cmdGo.Enabled = false;
    form.cmdGo.UserClick();
    form.cmdGo.Enabled = true;
    form.cmdGo.UserClick();
    EXPECT_EQ(clicks, 1);
}

TEST_F(ControlsTest, ATickInsideItsOwnHandlerIsDropped)
{
    int ticks = 0;
    form.tmr.Tick = [&] {
        ++ticks;
        form.tmr.Fire();
    };
    form.tmr.Fire();
    EXPECT_EQ(ticks, 1);
    form.tmr.Fire();
    EXPECT_EQ(ticks, 2);
    form.tmr.Enabled = false;
    form.tmr.Fire();
    EXPECT_EQ(ticks, 2);
}

TEST_F(ControlsTest, ATimerTicksAgainAfterItsHandlerThrew)
{
    form.tmr.Tick = [] { throw 1; };
    EXPECT_THROW(form.tmr.Fire(), int);
    EXPECT_THROW(form.tmr.Fire(), int);
}

TEST_F(ControlsTest, AMenuArrayIsLoadedAndUnloadedBehindTheFixedItems)
{
    form.mnuTop.Load("mnuArray", "One");
    form.mnuTop.Load("mnuArray", "Two");
    EXPECT_EQ(form.mnuTop.Items().size(), 3u);
    EXPECT_EQ(form.mnuTop.Items()[2]->Caption.get(), "Two");
    const std::size_t controls = form.Controls().size();
    form.mnuTop.UnloadAll();
    EXPECT_EQ(form.mnuTop.Items(), std::vector<Menu*>{&form.mnuItem});
    EXPECT_EQ(form.Controls().size(), controls - 2);
}

TEST_F(ControlsTest, AFormLoadsOnceAndAgainAfterItWasUnloaded)
{
    form.Show();
    form.Hide();
    form.Show();
    EXPECT_EQ(form.loads, 1);
    EXPECT_EQ(host.made, 1);
    form.Unload();
    form.Show();
    EXPECT_EQ(form.loads, 2);
    EXPECT_EQ(host.made, 2);
}

TEST_F(ControlsTest, ClosingCanBeCancelled)
{
    form.Show();
    form.keep = true;
    form.UserClose();
    EXPECT_TRUE(form.IsShown());
    form.keep = false;
    form.UserClose();
    EXPECT_FALSE(form.IsShown());
}

TEST_F(ControlsTest, ControlsAreFoundByName)
{
    EXPECT_EQ(form.Find("scrBar"), &form.scrBar);
    EXPECT_EQ(form.Find("nothing"), nullptr);
}

} // namespace

} // namespace voxmate
