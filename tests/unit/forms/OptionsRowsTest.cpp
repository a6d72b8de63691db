// Where the options dialog's controls stand, and every entry, button and end of a range that they can be set to.
#include "base/RuntimeError.h"
#include "tests/unit/forms/OptionsForm.h"

#include <set>

namespace voxmate
{

namespace
{

using Names = std::set<std::string>;

class OptionsRowsTest : public OptionsFormTest
{
};

/// The controls within a part of the arrangement, those of its frames included.
Names ControlsIn(const Layout& part)
{
    Names names;
    if (part.control)
        names.insert(part.control->Name);
    for (const Layout& child : part.children)
        names.merge(ControlsIn(child));
    return names;
}

/// The part of the arrangement that belongs to a control; nullptr where there is none.
const Layout* PartOf(const Layout& whole, const Control& control)
{
    if (whole.control == &control)
        return &whole;
    for (const Layout& child : whole.children) {
        if (const Layout* part = PartOf(child, control))
            return part;
    }
    return nullptr;
}

TEST_F(OptionsRowsTest, EveryControlStandsOnItsTab)
{
    const Layout* tabs = PartOf(form.Arrangement, form.SSTab1);
    ASSERT_NE(tabs, nullptr);
    ASSERT_EQ(tabs->children.size(), 4u);
    EXPECT_EQ(ControlsIn(tabs->children[0]),
              (Names{"Label1",       "txtCharPath",    "cmdBrowse",     "Label4",          "comCharSize",   "Label12",
                     "comAnimation", "cmdAnimate",     "chkBalloon",    "chkSoundEffects", "Frame2",        "Label7",
                     "lblFont",      "cmdFont",        "chkSizeToText", "Label11",         "txtTotalLines", "Label10",
                     "chkAutoHide",  "txtCharPerLine", "chkAutoPace"}));
    EXPECT_EQ(ControlsIn(tabs->children[1]),
              (Names{"Label8", "txtTimeInterval", "Label9", "chk24Time", "Label2", "comDateFMT", "Label3",
                     "chkReadOnLeftClick", "Label6", "txtUserName", "chkMyName", "chkMsgRead"}));
    EXPECT_EQ(ControlsIn(tabs->children[2]),
              (Names{"chkShowStart", "chkIntroAtStart", "chkGreeting", "Frame1", "OptGreet(0)", "OptGreet(1)",
                     "OptGreet(2)", "OptGreet(3)", "OptGreet(4)", "Label5", "txtGreeting", "chkCloseInTray"}));
    EXPECT_EQ(ControlsIn(tabs->children[3]), (Names{"Label13",
                                                    "comRemType",
                                                    "chkOnTop",
                                                    "chkSpkSentence",
                                                    "txtRemText",
                                                    "Frame3",
                                                    "chkSpkTitle",
                                                    "chkSpkDate",
                                                    "chkSpkTime",
                                                    "chkSpkDesc",
                                                    "chkSpkSnooze",
                                                    "fraAction",
                                                    "optAction(0)",
                                                    "optAction(1)",
                                                    "fraGrad",
                                                    "fraShape",
                                                    "optShape(0)",
                                                    "optGradiantType(0)",
                                                    "optGradiantType(1)",
                                                    "optShape(1)",
                                                    "optColor(0)",
                                                    "optColor(1)",
                                                    "optColor(2)",
                                                    "optColor(3)",
                                                    "fraColorOption",
                                                    "chkAutoClose",
                                                    "txtAutoClose",
                                                    "Label14",
                                                    "cmdPreview"}));
    Names below = ControlsIn(form.Arrangement);
    for (const std::string& name : ControlsIn(*tabs))
        below.erase(name);
    EXPECT_EQ(below, (Names{"cmdOK", "cmdCancel", "cmdApply", "cmdDefault"}));
}

TEST_F(OptionsRowsTest, EveryFrameHoldsItsControls)
{
    const auto held = [this](const Frame& frame) {
        const Layout* part = PartOf(form.Arrangement, frame);
        Names names = part ? ControlsIn(*part) : Names{};
        names.erase(frame.Name);
        return names;
    };
    EXPECT_EQ(held(form.Frame2), (Names{"Label7", "lblFont", "cmdFont", "chkSizeToText", "Label11", "txtTotalLines",
                                        "Label10", "txtCharPerLine", "chkAutoHide", "chkAutoPace"}));
    EXPECT_EQ(held(form.Frame1), (Names{"OptGreet(0)", "OptGreet(1)", "OptGreet(2)", "OptGreet(3)", "OptGreet(4)",
                                        "Label5", "txtGreeting"}));
    EXPECT_EQ(held(form.Frame3), (Names{"chkSpkTitle", "chkSpkDate", "chkSpkTime", "chkSpkDesc", "chkSpkSnooze"}));
    EXPECT_EQ(held(form.fraAction), (Names{"optAction(0)", "optAction(1)"}));
    EXPECT_EQ(held(form.fraGrad), (Names{"optGradiantType(0)", "optGradiantType(1)"}));
    EXPECT_EQ(held(form.fraShape), (Names{"optShape(0)", "optShape(1)"}));
    EXPECT_EQ(held(form.fraColorOption), (Names{"optColor(0)", "optColor(1)", "optColor(2)", "optColor(3)"}));
}

TEST_F(OptionsRowsTest, TheFontAndTheFolderAreShownAsTheyAreSet)
{
    Settings.BalloonFontName = "Vera Serif";
    Settings.BalloonFontSize = 17;
    Settings.CharacterPath = "D:\\Cast\\";
    Open();
    EXPECT_EQ(form.lblFont.Caption.get(), "Vera Serif");
    EXPECT_EQ(form.lblFont.Font.get(), (FontSpec{"Vera Serif", 17}));
    EXPECT_EQ(form.txtCharPath.Text.get(), "D:\\Cast\\");
}

TEST_F(OptionsRowsTest, EveryEntryOfAListIsSavedAsItsNumber)
{
    const struct {
        const char* setting;
        ComboBox& box;
        int first;
    } rows[] = {{"CharacterSize", form.comCharSize, 0},
                {"DateFormat", form.comDateFMT, 1},
                {"ReminderType", form.comRemType, 0}};
    for (const auto& row : rows) {
        Open();
        const auto count = static_cast<int>(row.box.Items().size());
        for (int i = 0; i < count; ++i) {
            row.box.UserSelect((i + row.box.ListIndex + 1) % count);
            const int chosen = row.box.ListIndex;
            form.cmdApply.UserClick();
            EXPECT_EQ(fake.store.Dword(row.setting), chosen + row.first) << row.setting;
        }
        form.Unload();
    }
}

TEST_F(OptionsRowsTest, EveryButtonOfAGroupIsSavedAsItsNumber)
{
    const struct {
        const char* setting;
        OptionGroup& group;
        int count;
    } rows[] = {{"GreetingType", form.OptGreet, 5},
                {"RemAlertAction", form.optAction, 2},
                {"RemAlertGradient", form.optGradiantType, 2},
                {"RemAlertShape", form.optShape, 2},
                {"RemAlertColor", form.optColor, 4}};
    for (const auto& row : rows) {
        Open();
        ASSERT_EQ(row.group.Count(), row.count) << row.setting;
        for (int i = 0; i < row.count; ++i) {
            row.group(i).UserClick();
            form.cmdApply.UserClick();
            EXPECT_EQ(fake.store.Dword(row.setting), i) << row.setting;
        }
        form.Unload();
    }
}

TEST_F(OptionsRowsTest, TheEndsOfTheRangesAreAllowed)
{
    const struct {
        const char* setting;
        TextBox& box;
        int least, most;
    } rows[] = {{"BalloonCharactersPerLine", form.txtCharPerLine, 8, 255},
                {"BalloonTotalLines", form.txtTotalLines, 1, 128},
                {"RemAlertCloseTime", form.txtAutoClose, 4, 20}};
    for (const auto& row : rows) {
        Open();
        for (const int right : {row.least, row.most}) {
            row.box.UserEdit(std::to_string(right));
            form.cmdApply.UserClick();
            EXPECT_TRUE(fake.windows.boxes.empty()) << row.setting << right;
            EXPECT_EQ(fake.store.Dword(row.setting), right) << row.setting;
        }
        for (const int wrong : {row.least - 1, row.most + 1}) {
            row.box.UserEdit(std::to_string(wrong));
            form.cmdApply.UserClick();
            EXPECT_EQ(fake.windows.boxes.size(), 1u) << row.setting << wrong;
            EXPECT_EQ(fake.store.Dword(row.setting), row.most) << row.setting;
            fake.windows.boxes.clear();
        }
        form.Unload();
    }
}

TEST_F(OptionsRowsTest, ACharacterThatCannotPlayTheLastGestureIsNoError)
{
    struct Plain : fakes::FakeCharacter {
        using FakeCharacter::FakeCharacter;
        AgentRequestPtr Play(const std::string& animation) override
        {
            FakeCharacter::Play(animation);
            throw ObjectNotSet();
        }
    } plain(fake.log, "Plain");
    Character = &plain;
    Open();
    form.chk24Time.UserClick(true);
    form.cmdApply.UserClick();
    EXPECT_EQ(fake.log, (Lines{"Play DoMagic2"}));
    EXPECT_EQ(fake.store.Dword("TimeIn24Hour"), 1);
    EXPECT_FALSE(form.cmdApply.Enabled);
    Character = nullptr;
}

TEST_F(OptionsRowsTest, APreviewFillsAnEmptyTimeAlsoWhereItDoesNotCount)
{
    Open();
    form.txtAutoClose.UserEdit("");
    form.cmdPreview.UserClick();
    EXPECT_EQ(form.txtAutoClose.Text.get(), "4");
    EXPECT_EQ(fake.log, (Lines{"Alert 9999 preview 0 s scroll fit round 13172680 tube: Test reminder window.\r\n"}));
}

} // namespace

} // namespace voxmate
