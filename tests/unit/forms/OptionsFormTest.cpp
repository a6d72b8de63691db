// What the options dialog shows and what it saves.
#include "tests/unit/forms/OptionsForm.h"

#include <algorithm>
#include <map>

namespace voxmate
{

namespace
{

std::string CaptionOf(const Control* control)
{
    if (const auto* label = dynamic_cast<const Label*>(control))
        return label->Caption;
    if (const auto* button = dynamic_cast<const CommandButton*>(control))
        return button->Caption;
    if (const auto* box = dynamic_cast<const CheckBox*>(control))
        return box->Caption;
    if (const auto* frame = dynamic_cast<const Frame*>(control))
        return frame->Caption;
    if (const auto* option = dynamic_cast<const OptionButton*>(control))
        return option->Caption;
    return "(none)";
}

TEST_F(OptionsFormTest, HasItsCaptionFontAndFourTabsTheFirstOfThemOnTop)
{
    form.SSTab1.Tab = 2;
    Open();
    EXPECT_EQ(form.Caption, "Voxmate Options");
    EXPECT_EQ(form.FontName, "Tahoma");
    EXPECT_EQ(form.SSTab1.Captions(), (Lines{"Character", "Reading", "Misc", "Reminders"}));
    EXPECT_EQ(form.SSTab1.Tab, 0);
    EXPECT_TRUE(form.cmdOK.IsDefault);
    EXPECT_TRUE(form.cmdCancel.IsCancel);
    EXPECT_FALSE(form.cmdApply.Enabled);
}

TEST_F(OptionsFormTest, EveryControlHasItsNameAndCaption)
{
    const std::map<std::string, std::string> captions{
        {"cmdOK", "OK"},
        {"cmdCancel", "Cancel"},
        {"cmdApply", "Apply"},
        {"cmdDefault", "Default"},
        {"Label1", "Characters Location:"},
        {"cmdBrowse", "Browse"},
        {"Label4", "Character Size"},
        {"chkSoundEffects", "Enable character sound effects"},
        {"Label12", "Character animations available"},
        {"cmdAnimate", "Animate"},
        {"chkBalloon", "Show Balloon"},
        {"Frame2", "Balloon Settings"},
        {"Label7", "Font:"},
        {"lblFont", "MS Sans Serif"},
        {"cmdFont", "Font"},
        {"chkSizeToText", "Size to text"},
        {"Label11", "Total lines"},
        {"Label10", "Characters per line"},
        {"chkAutoHide", "Auto Hide"},
        {"chkAutoPace", "Auto Pace"},
        {"Label8", "Speak Time Every"},
        {"Label9", "minute(s)"},
        {"chk24Time", "Read time in 24 Hour format"},
        {"Label2", "Read System Date in"},
        {"Label3", "format"},
        {"chkReadOnLeftClick", "Read text box text on character left click"},
        {"Label6", "Your Name:"},
        {"chkMyName", "Always read my name before messages and greetings"},
        {"chkMsgRead", "Also read application messages when showing"},
        {"chkShowStart", "Show character at startup"},
        {"chkIntroAtStart", "Speak character intro at startup"},
        {"chkGreeting", "Enable startup greeting"},
        {"Frame1", "Greeting"},
        {"OptGreet(0)", "Time Only"},
        {"OptGreet(1)", "Date Only"},
        {"OptGreet(2)", "Other Only"},
        {"OptGreet(3)", "Date and Time"},
        {"OptGreet(4)", "Date and Time and Other"},
        {"Label5", "Other Greeting:"},
        {"chkCloseInTray", "When closed minimize to system tray"},
        {"Label13", "Show Reminder as:"},
        {"chkOnTop", "Always on top"},
        {"chkSpkSentence", "Speak below sentence while showing reminder"},
        {"Frame3", "Speak While Showing"},
        {"chkSpkTitle", "Title"},
        {"chkSpkDate", "Date"},
        {"chkSpkTime", "Time"},
        {"chkSpkDesc", "Description"},
        {"chkSpkSnooze", "Next schedule if snoozed"},
        {"fraAction", "Action"},
        {"optAction(0)", "Scroll"},
        {"optAction(1)", "Fade"},
        {"fraGrad", "Gradiant Type"},
        {"optGradiantType(0)", "Corner"},
        {"optGradiantType(1)", "Tube"},
        {"fraShape", "Shape"},
        {"optShape(0)", "Square"},
        {"optShape(1)", "Round corners"},
        {"fraColorOption", "Color"},
        {"optColor(0)", "Yellow"},
        {"optColor(1)", "Blue"},
        {"optColor(2)", "Red"},
        {"optColor(3)", "Green"},
        {"chkAutoClose", "Auto Close in"},
        {"Label14", "seconds"},
        {"cmdPreview", "Preview"},
    };
    Open();
    for (const auto& [name, caption] : captions) {
        const Control* control = form.Find(name);
        ASSERT_NE(control, nullptr) << name;
        EXPECT_EQ(CaptionOf(control), caption) << name;
    }
    const std::vector<std::string> without{"SSTab1",        "txtCharPath",    "comCharSize",     "comAnimation",
                                           "txtTotalLines", "txtCharPerLine", "txtTimeInterval", "comDateFMT",
                                           "txtUserName",   "txtGreeting",    "comRemType",      "txtRemText",
                                           "txtAutoClose"};
    for (const std::string& name : without) {
        const Control* control = form.Find(name);
        ASSERT_NE(control, nullptr) << name;
        EXPECT_FALSE(control->AccessibleName.empty()) << name;
    }
    EXPECT_EQ(form.Controls().size(), captions.size() + without.size());
}

TEST_F(OptionsFormTest, TheListsHoldTheirEntriesAndTheFieldsTheirLengths)
{
    Open();
    form.Unload();
    Open();
    EXPECT_EQ(form.comCharSize.Items(), (Lines{"Small", "Normal", "Big"}));
    EXPECT_EQ(form.comDateFMT.Items(), (Lines{"31-DECEMBER-25", "31-DECEMBER-2025", "31-DECEMBER", "DECEMBER-31-25",
                                              "DECEMBER-31-2025", "DECEMBER-31"}));
    EXPECT_EQ(form.comRemType.Items(), (Lines{"Alert Window", "Normal Window"}));
    EXPECT_EQ(form.txtCharPerLine.MaxLength, 2u);
    EXPECT_EQ(form.txtTotalLines.MaxLength, 2u);
    EXPECT_EQ(form.txtAutoClose.MaxLength, 2u);
    EXPECT_EQ(form.txtTimeInterval.MaxLength, 3u);
}

TEST_F(OptionsFormTest, TheCharactersAnimationsAreListedUpToTheFirstEmptyName)
{
    Open();
    EXPECT_EQ(form.comAnimation.Items(), (Lines{"RestPose", "Show", "Hide", "Greet"}));
    EXPECT_EQ(form.comAnimation.ListIndex, 0);
    form.Unload();
    AnimationNames.fill("Wave");
    form.Show();
    EXPECT_EQ(form.comAnimation.Items().size(), 1000u);
    form.Unload();
    AnimationNames.fill({});
    form.Show();
    EXPECT_TRUE(form.comAnimation.Items().empty());
    EXPECT_EQ(form.comAnimation.ListIndex, -1);
}

/// A setting, and how its control is read and changed.
struct Row {
    std::string setting;
    int other;                                  ///< a value that is not the default
    std::function<int(frmOptions&)> shown;      ///< what the control shows, as a value of the setting
    std::function<void(frmOptions&, int)> user; ///< the user puts that value into the control
};

Row BoxRow(const char* setting, CheckBox frmOptions::*box, int other)
{
    return {setting, other, [box](frmOptions& form) { return (form.*box).Value.get(); },
            [box](frmOptions& form, int value) { (form.*box).UserClick(value == 1); }};
}

Row NumberRow(const char* setting, TextBox frmOptions::*box, int other)
{
    return {setting, other, [box](frmOptions& form) { return std::stoi((form.*box).Text.get()); },
            [box](frmOptions& form, int value) { (form.*box).UserEdit(std::to_string(value)); }};
}

Row ListRow(const char* setting, ComboBox frmOptions::*box, int other, int first = 0)
{
    return {setting, other, [box, first](frmOptions& form) { return (form.*box).ListIndex + first; },
            [box, first](frmOptions& form, int value) { (form.*box).UserSelect(value - first); }};
}

Row GroupRow(const char* setting, OptionGroup frmOptions::*group, int other)
{
    return {setting, other, [group](frmOptions& form) { return (form.*group).Selected(); },
            [group](frmOptions& form, int value) { (form.*group)(value).UserClick(); }};
}

std::vector<Row> NumberRows()
{
    using F = frmOptions;
    return {
        ListRow("CharacterSize", &F::comCharSize, 2),
        BoxRow("EnableSoundEffects", &F::chkSoundEffects, 0),
        BoxRow("ShowBalloon", &F::chkBalloon, 0),
        BoxRow("SizeBallonToText", &F::chkSizeToText, 1),
        NumberRow("BalloonTotalLines", &F::txtTotalLines, 5),
        NumberRow("BalloonCharactersPerLine", &F::txtCharPerLine, 45),
        BoxRow("BalloonAutoHide", &F::chkAutoHide, 0),
        BoxRow("BalloonAutoPace", &F::chkAutoPace, 0),
        NumberRow("SpeakTimeInterval", &F::txtTimeInterval, 120),
        BoxRow("TimeIn24Hour", &F::chk24Time, 1),
        ListRow("DateFormat", &F::comDateFMT, 6, 1),
        BoxRow("ReadTextBoxTextAtLeftClick", &F::chkReadOnLeftClick, 0),
        BoxRow("ReadNameWithMessages", &F::chkMyName, 0),
        BoxRow("ReadMessages", &F::chkMsgRead, 0),
        BoxRow("ShowCharacterAtStart", &F::chkShowStart, 0),
        BoxRow("GreetingEnabled", &F::chkGreeting, 0),
        GroupRow("GreetingType", &F::OptGreet, 4),
        BoxRow("CloseToTray", &F::chkCloseInTray, 1),
        ListRow("ReminderType", &F::comRemType, 1),
        BoxRow("ReminderOnTop", &F::chkOnTop, 0),
        BoxRow("ReminderSentenceSpeak", &F::chkSpkSentence, 0),
        BoxRow("ReminderTitleSpeak", &F::chkSpkTitle, 0),
        BoxRow("ReminderDateSpeak", &F::chkSpkDate, 0),
        BoxRow("ReminderTimeSpeak", &F::chkSpkTime, 0),
        BoxRow("ReminderDescSpeak", &F::chkSpkDesc, 0),
        BoxRow("ReminderNextSchSpeak", &F::chkSpkSnooze, 0),
        GroupRow("RemAlertAction", &F::optAction, 1),
        GroupRow("RemAlertGradient", &F::optGradiantType, 0),
        GroupRow("RemAlertShape", &F::optShape, 0),
        GroupRow("RemAlertColor", &F::optColor, 1),
        BoxRow("RemAlertClose", &F::chkAutoClose, 1),
        NumberRow("RemAlertCloseTime", &F::txtAutoClose, 17),
    };
}

const SettingRow& Catalogue(const std::string& setting)
{
    for (const SettingRow& row : SettingsCatalogue()) {
        if (row.name == setting)
            return row;
    }
    throw std::logic_error(setting);
}

std::int16_t& Field(SettingsRecord& settings, const std::string& setting)
{
    return settings.*std::get<std::int16_t SettingsRecord::*>(Catalogue(setting).field);
}

TEST_F(OptionsFormTest, EveryNumberAndSwitchIsShownAsItIsSet)
{
    Open();
    for (const Row& row : NumberRows())
        EXPECT_EQ(row.shown(form), Catalogue(row.setting).defaultNumber) << row.setting;
    EXPECT_EQ(form.chkIntroAtStart.Value, 0);
    form.Unload();
    for (const Row& row : NumberRows())
        Field(Settings, row.setting) = static_cast<std::int16_t>(row.other);
    Open();
    for (const Row& row : NumberRows())
        EXPECT_EQ(row.shown(form), row.other) << row.setting;
    EXPECT_FALSE(form.cmdApply.Enabled);
    form.Unload();
    Settings.ShowCharacterAtStart = 1;
    Settings.IntroAtStart = 1;
    Open();
    EXPECT_EQ(form.chkIntroAtStart.Value, 1);
    EXPECT_EQ(form.chkGreeting.Value, 0);
}

TEST_F(OptionsFormTest, EveryNumberAndSwitchThatTheUserChangesIsSavedAndKeptAndBackTheNextTime)
{
    for (const Row& row : NumberRows()) {
        const std::int16_t before = Field(Settings, row.setting);
        Open();
        row.user(form, row.other);
        EXPECT_TRUE(form.cmdApply.Enabled) << row.setting;
        form.cmdApply.UserClick();
        EXPECT_FALSE(form.cmdApply.Enabled) << row.setting;
        EXPECT_EQ(fake.store.Dword(row.setting), row.other) << row.setting;
        EXPECT_EQ(Field(Settings, row.setting), row.other) << row.setting;
        form.Unload();
        LoadSettings();
        EXPECT_EQ(Field(Settings, row.setting), row.other) << row.setting;
        Open();
        EXPECT_EQ(row.shown(form), row.other) << row.setting;
        row.user(form, before);
        form.cmdOK.UserClick();
        EXPECT_EQ(Field(Settings, row.setting), before) << row.setting;
        // Some switches untick others: each row begins from the defaults.
        Settings.ShowCharacterAtStart = 1;
        Settings.GreetingEnabled = 1;
    }
}

TEST_F(OptionsFormTest, TheIntroductionIsSavedInPlaceOfTheGreeting)
{
    Open();
    form.chkIntroAtStart.UserClick(true);
    form.cmdApply.UserClick();
    EXPECT_EQ(fake.store.Dword("IntroAtStart"), 1);
    EXPECT_EQ(Settings.IntroAtStart, 1);
    EXPECT_EQ(fake.store.Dword("GreetingEnabled"), 0);
    EXPECT_EQ(Settings.GreetingEnabled, 0);
}

TEST_F(OptionsFormTest, EveryTextIsShownAndSaved)
{
    struct {
        const char* setting;
        TextBox& box;
        std::string SettingsRecord::*field;
        const char* shown;
    } rows[] = {{"UserName", form.txtUserName, &SettingsRecord::UserName, "Buddy"},
                {"OtherGreeting", form.txtGreeting, &SettingsRecord::OtherGreeting, "Welcome to Voxmate"},
                {"ReminderSentence", form.txtRemText, &SettingsRecord::ReminderSentence, "You have a reminder"}};
    for (auto& row : rows) {
        Open();
        EXPECT_EQ(row.box.Text.get(), row.shown);
        EXPECT_FALSE(form.cmdApply.Enabled);
        row.box.UserEdit("Some \xC3\xA9tude");
        EXPECT_TRUE(form.cmdApply.Enabled);
        form.cmdOK.UserClick();
        EXPECT_EQ(fake.store.At(row.setting), (fakes::FakeSettingsStore::Value{REG_SZ, "Some \xC3\xA9tude"}));
        EXPECT_EQ(Settings.*row.field, "Some \xC3\xA9tude");
    }
}

TEST_F(OptionsFormTest, EveryWriteComesInItsOrderAndOfItsType)
{
    Open();
    form.chkOnTop.UserClick(false);
    fake.store.logCalls = true;
    form.cmdApply.UserClick();
    EXPECT_EQ(Logged("RegSetValueExA "), (Lines{"BalloonFontName 0 1 13 bytes",
                                                "BalloonFontSize 0 4 4 bytes",
                                                "CharacterPath 0 1 9 bytes", // by the search
                                                "CharacterPath 0 1 9 bytes",
                                                "CharacterSize 0 4 4 bytes",
                                                "CloseToTray 0 4 4 bytes",
                                                "DateFormat 0 4 4 bytes",
                                                "EnableSoundEffects 0 4 4 bytes",
                                                "GreetingType 0 4 4 bytes",
                                                "GreetingEnabled 0 4 4 bytes",
                                                "IntroAtStart 0 4 4 bytes",
                                                "OtherGreeting 0 1 18 bytes",
                                                "ReadMessages 0 4 4 bytes",
                                                "ReadNameWithMessages 0 4 4 bytes",
                                                "ReadTextBoxTextAtLeftClick 0 4 4 bytes",
                                                "ShowBalloon 0 4 4 bytes",
                                                "SizeBallonToText 0 4 4 bytes",
                                                "BalloonAutoHide 0 4 4 bytes",
                                                "BalloonAutoPace 0 4 4 bytes",
                                                "BalloonCharactersPerLine 0 4 4 bytes",
                                                "BalloonTotalLines 0 4 4 bytes",
                                                "ShowCharacterAtStart 0 4 4 bytes",
                                                "TimeIn24Hour 0 4 4 bytes",
                                                "UserName 0 1 5 bytes",
                                                "SpeakTimeInterval 0 4 4 bytes",
                                                "ReminderOnTop 0 4 4 bytes",
                                                "ReminderSentenceSpeak 0 4 4 bytes",
                                                "ReminderSentence 0 1 19 bytes",
                                                "ReminderTitleSpeak 0 4 4 bytes",
                                                "ReminderDateSpeak 0 4 4 bytes",
                                                "ReminderTimeSpeak 0 4 4 bytes",
                                                "ReminderDescSpeak 0 4 4 bytes",
                                                "ReminderNextSchSpeak 0 4 4 bytes",
                                                "ReminderType 0 4 4 bytes",
                                                "RemAlertAction 0 4 4 bytes",
                                                "RemAlertGradient 0 4 4 bytes",
                                                "RemAlertShape 0 4 4 bytes",
                                                "RemAlertColor 0 4 4 bytes",
                                                "RemAlertClose 0 4 4 bytes",
                                                "RemAlertCloseTime 0 4 4 bytes"}));
    EXPECT_EQ(fake.log.back(), "Play DoMagic2");
}

TEST_F(OptionsFormTest, WhatIsAppliedShowsOnTheCharacterAtOnce)
{
    Open();
    form.comCharSize.UserSelect(2);
    form.chkBalloon.UserClick(false);
    form.txtCharPerLine.UserEdit("40");
    form.chkSoundEffects.UserClick(false);
    form.cmdApply.UserClick();
    EXPECT_EQ(Alfa().width, 256);
    EXPECT_EQ(Alfa().height, 320);
    EXPECT_EQ(Alfa().styles.back(), 2u << 24 | 40u << 16 | BalloonAutoHide | BalloonAutoPace);
    EXPECT_EQ(fake.agent.soundEffects, false);
    EXPECT_EQ(fake.log, (Lines{"Play DoMagic2"}));
}

TEST_F(OptionsFormTest, CancelSavesNothingAndOkWithoutAChangeNeither)
{
    const auto before = fake.store.keys;
    Open();
    form.txtUserName.UserEdit("Somebody");
    form.cmdCancel.UserClick();
    EXPECT_FALSE(form.IsLoaded());
    Open();
    EXPECT_EQ(form.txtUserName.Text.get(), "Buddy");
    fake.store.logCalls = true;
    form.cmdOK.UserClick();
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(fake.log, (Lines{"Window frmOptions hidden"}));
    EXPECT_EQ(fake.store.keys, before);
    EXPECT_EQ(Settings.UserName, "Buddy");
}

TEST_F(OptionsFormTest, WithoutACharacterTheSettingsAreSavedAllTheSame)
{
    Character = nullptr;
    Open();
    form.chk24Time.UserClick(true);
    form.cmdAnimate.UserClick();
    form.cmdApply.UserClick();
    EXPECT_EQ(fake.store.Dword("TimeIn24Hour"), 1);
    EXPECT_EQ(form.cmdAnimate.Caption.get(), "Animate");
}

} // namespace

} // namespace voxmate
