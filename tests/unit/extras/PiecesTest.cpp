// Pieces of text that are read: of the text box, and of other programs by keys of the whole desktop.
#include "ExtrasTest.h"

namespace voxmate
{

namespace
{

using Outcome = GlobalKeys::Outcome;

class PiecesTest : public ExtrasTest
{
protected:
    void Begin()
    {
        ExtrasTest::Begin();
        form.txtText.GetExcerpt = [this](TextBox::Excerpt excerpt) {
            return excerpt == TextBox::Excerpt::Selection ? selection_ : behind_;
        };
    }
    std::string Caption(const char* item) { return Item(item).Caption; }

    std::string selection_;
    std::string behind_;
};

TEST_F(PiecesTest, TheSelectionIsReadAndWhatFollowsTheCursor)
{
    Begin();
    selection_ = "two\nthree";
    behind_ = "two\nthree four";
    Item("mnuReadSelection").UserClick();
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\two\nthree"));
    Item("mnuReadFromCursor").UserClick();
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\two\nthree four"));
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(PiecesTest, WhereThereIsNothingItSaysSo)
{
    Begin();
    behind_ = " \n";
    Item("mnuReadSelection").UserClick();
    Item("mnuReadFromCursor").UserClick();
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - Read: There is nothing selected in the textbox.",
                              "Voxmate - Read: There is nothing to read behind the cursor."}));
}

TEST_F(PiecesTest, TheTextBoxsOwnMenuHasTheSameItems)
{
    EXPECT_EQ(form.txtText.MoreItems, (std::vector<Menu*>{&Item("mnuReadSelection"), &Item("mnuReadFromCursor")}));
}

TEST_F(PiecesTest, NoKeyIsHeldUntilTheUserSwitchesThatOn)
{
    Begin();
    EXPECT_EQ(keys.held, Lines{});
    OpenMenu();
    EXPECT_FALSE(Item("mnuSelectionKey").Checked);
    Item("mnuSelectionKey").UserClick();
    EXPECT_EQ(keys.held, Lines{"read-selection Ctrl+Alt+S"});
    Item("mnuClipboardKey").UserClick();
    EXPECT_EQ(keys.held, (Lines{"read-selection Ctrl+Alt+S", "read-clipboard Ctrl+Alt+C"}));
    Item("mnuSelectionKey").UserClick();
    EXPECT_EQ(keys.held, Lines{"read-clipboard Ctrl+Alt+C"});
    EXPECT_FALSE(Item("mnuSelectionKey").Checked);
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(PiecesTest, WhatIsSwitchedOnIsHeldFromTheStartOn)
{
    state.values["keys.read-selection"] = "1";
    Begin();
    EXPECT_EQ(keys.held, Lines{"read-selection Ctrl+Alt+S"});
    keys.Answered("read-selection", Outcome::Taken, "");
    EXPECT_EQ(Boxes(), Lines{}) << "it may be free the next time";
    EXPECT_EQ(state.values["keys.read-selection"], "1");
}

TEST_F(PiecesTest, TheKeyReadsWhatIsSelectedInAnyProgram)
{
    Begin();
    keys.selected = "From elsewhere";
    keys.Pressed("read-selection");
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\From elsewhere"));
    keys.selected = "";
    fake.log.clear();
    keys.Pressed("read-selection");
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\There is nothing selected."));
    EXPECT_EQ(Boxes(), Lines{}) << "a box would take the keyboard";
    fake.windows.clipboard = "Copied";
    keys.Pressed("read-clipboard");
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\Copied"));
}

TEST_F(PiecesTest, AKeyThatAnotherProgramHoldsIsToldOfAndSwitchedOff)
{
    Begin();
    Item("mnuSelectionKey").UserClick();
    keys.Answered("read-selection", Outcome::Taken, "Ctrl+Alt+S");
    EXPECT_EQ(Boxes(), Lines{"Voxmate - Keys: Another program holds the key Ctrl+Alt+S."});
    EXPECT_FALSE(Item("mnuSelectionKey").Checked);
    EXPECT_EQ(keys.held, Lines{});
    Item("mnuSelectionKey").UserClick();
    keys.Answered("read-selection", Outcome::None, "");
    EXPECT_EQ(Boxes().back(), "Voxmate - Keys: This desktop lets no program have keys in the windows of others.");
}

TEST_F(PiecesTest, AKeyThatTheUserHasRefusedIsSwitchedOffWithoutAWord)
{
    Begin();
    Item("mnuSelectionKey").UserClick();
    keys.Answered("read-selection", Outcome::Refused, "");
    EXPECT_FALSE(Item("mnuSelectionKey").Checked);
    EXPECT_EQ(keys.held, Lines{});
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(PiecesTest, TheItemShowsTheKeyThatTheDesktopHasChosen)
{
    Begin();
    Item("mnuSelectionKey").UserClick();
    keys.Answered("read-selection", Outcome::Held, "Meta+F7");
    EXPECT_EQ(Caption("mnuSelectionKey"), "Read the Selection of &Any Program (Meta+F7)");
    EXPECT_TRUE(Item("mnuSelectionKey").Checked);
}

} // namespace

} // namespace voxmate
