// A form with one control of each kind.
#pragma once

#include "controls/Form.h"

namespace voxmate::qt
{

class TestForm : public Form
{
public:
    explicit TestForm(WindowSystem& windows) : Form(windows, "frmTest")
    {
        Caption = "Test";
        Status = &stsBar;
        MenuBar = {&mnuFile};
        txtText.MultiLine = true;
        txtText.AccessibleName = "Text to read";
        cmdSpeak.Picture = "speak";
        cmdSpeak.ToolTipText = "Speak it";
        cmdOk.Shortcut = "Ctrl+P";
        lblPitch.Buddy = &scrPitch;
        scrPitch.LargeChange = 20;
        Arrangement =
            Column({Item(txtText), Row({Item(cmdOk), Item(cmdSpeak), Item(txtName)}),
                    Framed(Frame1, Grid(2, {Item(lblPitch), Item(scrPitch), Item(chkWhisper), Item(comEngine)}))});
    }

    Timer tmrClock{this, "tmrClock", 1, false};
    TextBox txtText{this, "txtText"};
    CommandButton cmdSpeak{this, "cmdSpeak"};
    CommandButton cmdOk{this, "cmdOk", "&OK"};
    TextBox txtName{this, "txtName"};
    Frame Frame1{this, "Frame1", "Voice"};
    Label lblPitch{this, "lblPitch", "&Pitch"};
    HScrollBar scrPitch{this, "scrPitch", 40, 400};
    CheckBox chkWhisper{this, "chkWhisper", "&Whisper"};
    ComboBox comEngine{this, "comEngine"};
    StatusBar stsBar{this, "stsBar", {{"", 0, "Activity"}, {"", 8, "Clock"}}};
    Menu mnuFile{this, nullptr, "mnuFile", "&File"};
    Menu mnuChar{this, &mnuFile, "mnuChar", "&Characters"};
    Menu mnuRule{this, &mnuFile, "mnuRule", "-"};
    Menu mnuExit{this, &mnuFile, "mnuExit", "E&xit"};
};

} // namespace voxmate::qt
