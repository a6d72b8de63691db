// The options dialog: all settings on four tabs.
#pragma once

#include "controls/OptionButton.h"
#include "controls/Pictures.h"
#include "controls/TabStrip.h"
#include "modules/Windows.h"
#include "platform/Platform.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

class Program;

class frmOptions : public Form
{
public:
    explicit frmOptions(Program& program);
    ~frmOptions() override;

    TabStrip SSTab1{this, "SSTab1", {"Character", "Reading", "Misc", "Reminders"}};

    Label Label1{this, "Label1", "Characters Location:"};
    TextBox txtCharPath{this, "txtCharPath"};
    CommandButton cmdBrowse{this, "cmdBrowse", "Browse"};
    Label Label4{this, "Label4", "Character Size"};
    ComboBox comCharSize{this, "comCharSize"};
    Label Label12{this, "Label12", "Character animations available"};
    ComboBox comAnimation{this, "comAnimation"};
    CommandButton cmdAnimate{this, "cmdAnimate", "Animate"};
    CheckBox chkSoundEffects{this, "chkSoundEffects", "Enable character sound effects"};
    CheckBox chkBalloon{this, "chkBalloon", "Show Balloon"};
    Frame Frame2{this, "Frame2", "Balloon Settings"};
    Label Label7{this, "Label7", "Font:"};
    FontSample lblFont{this, "lblFont"};
    CommandButton cmdFont{this, "cmdFont", "Font"};
    CheckBox chkSizeToText{this, "chkSizeToText", "Size to text"};
    CheckBox chkAutoHide{this, "chkAutoHide", "Auto Hide"};
    CheckBox chkAutoPace{this, "chkAutoPace", "Auto Pace"};
    Label Label11{this, "Label11", "Total lines"};
    TextBox txtTotalLines{this, "txtTotalLines"};
    Label Label10{this, "Label10", "Characters per line"};
    TextBox txtCharPerLine{this, "txtCharPerLine"};

    Label Label8{this, "Label8", "Speak Time Every"};
    TextBox txtTimeInterval{this, "txtTimeInterval"};
    Label Label9{this, "Label9", "minute(s)"};
    CheckBox chk24Time{this, "chk24Time", "Read time in 24 Hour format"};
    Label Label2{this, "Label2", "Read System Date in"};
    ComboBox comDateFMT{this, "comDateFMT"};
    Label Label3{this, "Label3", "format"};
    CheckBox chkReadOnLeftClick{this, "chkReadOnLeftClick", "Read text box text on character left click"};
    Label Label6{this, "Label6", "Your Name:"};
    TextBox txtUserName{this, "txtUserName"};
    CheckBox chkMyName{this, "chkMyName", "Always read my name before messages and greetings"};
    CheckBox chkMsgRead{this, "chkMsgRead", "Also read application messages when showing"};

    CheckBox chkShowStart{this, "chkShowStart", "Show character at startup"};
    CheckBox chkIntroAtStart{this, "chkIntroAtStart", "Speak character intro at startup"};
    CheckBox chkGreeting{this, "chkGreeting", "Enable startup greeting"};
    Frame Frame1{this, "Frame1", "Greeting"};
    OptionGroup OptGreet{
        this, "OptGreet", {"Time Only", "Date Only", "Other Only", "Date and Time", "Date and Time and Other"}};
    Label Label5{this, "Label5", "Other Greeting:"};
    TextBox txtGreeting{this, "txtGreeting"};
    CheckBox chkCloseInTray{this, "chkCloseInTray", "When closed minimize to system tray"};

    Label Label13{this, "Label13", "Show Reminder as:"};
    ComboBox comRemType{this, "comRemType"};
    CheckBox chkOnTop{this, "chkOnTop", "Always on top"};
    CheckBox chkSpkSentence{this, "chkSpkSentence", "Speak below sentence while showing reminder"};
    TextBox txtRemText{this, "txtRemText"};
    Frame Frame3{this, "Frame3", "Speak While Showing"};
    CheckBox chkSpkTitle{this, "chkSpkTitle", "Title"};
    CheckBox chkSpkDate{this, "chkSpkDate", "Date"};
    CheckBox chkSpkTime{this, "chkSpkTime", "Time"};
    CheckBox chkSpkDesc{this, "chkSpkDesc", "Description"};
    CheckBox chkSpkSnooze{this, "chkSpkSnooze", "Next schedule if snoozed"};
    Frame fraAction{this, "fraAction", "Action"};
    OptionGroup optAction{this, "optAction", {"Scroll", "Fade"}};
    Frame fraGrad{this, "fraGrad", "Gradiant Type"};
    OptionGroup optGradiantType{this, "optGradiantType", {"Corner", "Tube"}};
    Frame fraShape{this, "fraShape", "Shape"};
    OptionGroup optShape{this, "optShape", {"Square", "Round corners"}};
    Frame fraColorOption{this, "fraColorOption", "Color"};
    OptionGroup optColor{this, "optColor", {"Yellow", "Blue", "Red", "Green"}};
    CheckBox chkAutoClose{this, "chkAutoClose", "Auto Close in"};
    TextBox txtAutoClose{this, "txtAutoClose"};
    Label Label14{this, "Label14", "seconds"};
    CommandButton cmdPreview{this, "cmdPreview", "Preview"};

    CommandButton cmdOK{this, "cmdOK", "OK"};
    CommandButton cmdCancel{this, "cmdCancel", "Cancel"};
    CommandButton cmdApply{this, "cmdApply", "Apply"};
    CommandButton cmdDefault{this, "cmdDefault", "Default"};

    /// The colour chosen with optColor, 0x00BBGGRR.
    std::int32_t SelectedAlertColor = 0;

protected:
    void Form_Load() override;
    void Form_QueryUnload(bool& cancel) override;
    void Form_Unload() override;

private:
    static constexpr int CharacterTab = 0;
    static constexpr int RemindersTab = 3;
    Program& program_;
    bool applying_ = false;
    std::vector<std::unique_ptr<AlertWindow>> previews_;

    void NameControls();
    void GiveAccessKeys();
    void Arrange();
    Layout CharacterPage();
    Layout ReadingPage();
    Layout MiscPage();
    Layout RemindersPage();
    void ConnectHandlers();

    /// A setting and the control that shows it.
    struct Option;
    std::vector<Option> Options();
    void ConnectOptions();
    void FillLists();
    void FillAnimations();
    void ShowSettings();
    void ShowFont(const FontSpec& font);
    void SaveOptions();
    void SaveCharacterPath();
    bool Valid();
    /// The number that a field begins with (blanks aside), 32767 at most; 0 if it begins with no digit.
    static std::int16_t NumberIn(const TextBox& box);
    void Play(const std::string& animation);

    void cmdOK_Click();
    void cmdApply_Click();
    void cmdDefault_Click();
    void cmdBrowse_Click();
    void cmdAnimate_Click();
    void cmdFont_Click();
    void cmdPreview_Click();
    void chkBalloon_Click();
    void chkGreeting_Click();
    void chkIntroAtStart_Click();
    void chkShowStart_Click();
    void comRemType_Click();
    void EnableGreeting(bool enabled);
};

} // namespace voxmate
