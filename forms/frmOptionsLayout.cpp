// The arrangement of the options dialog, and what a screen reader says for controls without a caption.
#include "forms/frmOptions.h"
#include "modules/Settings.h"

namespace voxmate
{

void frmOptions::NameControls()
{
    SSTab1.AccessibleName = "Options";
    txtCharPath.AccessibleName = "Characters Location";
    comCharSize.AccessibleName = "Character Size";
    comAnimation.AccessibleName = "Character animations available";
    txtTotalLines.AccessibleName = "Total lines";
    txtCharPerLine.AccessibleName = "Characters per line";
    txtTimeInterval.AccessibleName = "Speak Time Every, in minutes";
    // The seconds until the next announcement are counted in 16 bits.
    txtTimeInterval.ToolTipText =
        "1 to 546 minutes; 0 means never. From 547 on Voxmate ends with run-time error 6 within a "
        "second, and again after each start.";
    comDateFMT.AccessibleName = "Format of the system date";
    txtUserName.AccessibleName = "Your Name";
    txtGreeting.AccessibleName = "Other Greeting";
    comRemType.AccessibleName = "Show Reminder as";
    txtRemText.AccessibleName = "Sentence to speak";
    txtAutoClose.AccessibleName = "Auto close time in seconds";

    Label1.Buddy = &txtCharPath;
    Label4.Buddy = &comCharSize;
    Label12.Buddy = &comAnimation;
    Label7.Buddy = &cmdFont;
    Label11.Buddy = &txtTotalLines;
    Label10.Buddy = &txtCharPerLine;
    Label8.Buddy = &txtTimeInterval;
    Label2.Buddy = &comDateFMT;
    Label6.Buddy = &txtUserName;
    Label5.Buddy = &txtGreeting;
    Label13.Buddy = &comRemType;

    GiveAccessKeys();
}

// Every letter once on each page, beside those of the tabs and of the buttons below. The last page has more controls
// than there are letters; there the groups have keys, and the arrows choose in them.
void frmOptions::GiveAccessKeys()
{
    SSTab1.AccessKeys = "hrme";
    cmdOK.AccessKey = 'k';
    cmdCancel.AccessKey = 'c';
    cmdApply.AccessKey = 'p';
    cmdDefault.AccessKey = 'd';

    Label1.AccessKey = 'l';
    cmdBrowse.AccessKey = 'b';
    Label4.AccessKey = 's';
    Label12.AccessKey = 'v';
    cmdAnimate.AccessKey = 't'; // in both of its captions
    chkSoundEffects.AccessKey = 'n';
    chkBalloon.AccessKey = 'w';
    cmdFont.AccessKey = 'f';
    chkSizeToText.AccessKey = 'z';
    chkAutoHide.AccessKey = 'u';
    chkAutoPace.AccessKey = 'a';
    Label11.AccessKey = 'o';
    Label10.AccessKey = 'i';

    Label8.AccessKey = 's';
    chk24Time.AccessKey = 't';
    Label2.AccessKey = 'i';
    chkReadOnLeftClick.AccessKey = 'b';
    Label6.AccessKey = 'y';
    chkMyName.AccessKey = 'n';
    chkMsgRead.AccessKey = 'a';

    chkShowStart.AccessKey = 's';
    chkIntroAtStart.AccessKey = 'i';
    chkGreeting.AccessKey = 'b';
    OptGreet(GreetTime).AccessKey = 't';
    OptGreet(GreetDate).AccessKey = 'l';
    OptGreet(GreetOther).AccessKey = 'o';
    OptGreet(GreetDateAndTime).AccessKey = 'n';
    OptGreet(GreetDateTimeAndOther).AccessKey = 'a';
    Label5.AccessKey = 'g';
    chkCloseInTray.AccessKey = 'w';

    Label13.AccessKey = 'w';
    chkOnTop.AccessKey = 'y';
    chkSpkSentence.AccessKey = 'b';
    chkSpkTitle.AccessKey = 'l';
    chkSpkDate.AccessKey = 'a';
    chkSpkTime.AccessKey = 't';
    chkSpkDesc.AccessKey = 'i';
    chkSpkSnooze.AccessKey = 'x';
    fraAction.AccessKey = 'n';
    fraGrad.AccessKey = 'g';
    fraShape.AccessKey = 's';
    fraColorOption.AccessKey = 'o';
    chkAutoClose.AccessKey = 'u';
    cmdPreview.AccessKey = 'v';
}

void frmOptions::Arrange()
{
    Arrangement = Column({
        Tabbed(SSTab1, {CharacterPage(), ReadingPage(), MiscPage(), RemindersPage()}),
        Row({Item(cmdDefault), Space(), Item(cmdOK), Item(cmdCancel), Item(cmdApply)}),
    });
}

Layout frmOptions::CharacterPage()
{
    Layout balloon = Column({
        Row({Item(Label7), Item(lblFont).Stretch(1), Item(cmdFont)}),
        Row({Column({Item(chkSizeToText), Item(chkAutoHide), Item(chkAutoPace)}), Space(),
             Column({Grid(2, {Item(Label11), Item(txtTotalLines), Item(Label10), Item(txtCharPerLine)}), Space()})}),
    });
    return Column({
        Grid(3, {Item(Label1), Item(txtCharPath).Min(320, 0).Stretch(1), Item(cmdBrowse), Item(Label4),
                 Item(comCharSize), Space(0), Item(Label12), Item(comAnimation), Item(cmdAnimate)}),
        Item(chkSoundEffects),
        Item(chkBalloon),
        Framed(Frame2, std::move(balloon)),
        Space(),
    });
}

Layout frmOptions::ReadingPage()
{
    // Two columns: what a control is for, and the control. Check boxes say it themselves.
    return Column({
        Grid(2,
             {Item(Label8), Row({Item(txtTimeInterval), Item(Label9), Space()}).Stretch(1), Space(0), Item(chk24Time),
              Item(Label2), Row({Item(comDateFMT), Item(Label3), Space()}), Space(0), Item(chkReadOnLeftClick),
              Item(Label6), Item(txtUserName), Space(0), Item(chkMyName), Space(0), Item(chkMsgRead)}),
        Space(),
    });
}

Layout frmOptions::MiscPage()
{
    Layout greeting = Column({
        Grid(2,
             {Item(OptGreet(GreetTime)).Stretch(1), Item(OptGreet(GreetDateAndTime)).Stretch(1),
              Item(OptGreet(GreetDate)), Item(OptGreet(GreetDateTimeAndOther)), Item(OptGreet(GreetOther)), Space(0)}),
        Row({Item(Label5), Item(txtGreeting).Stretch(1)}),
    });
    return Column({
        Item(chkShowStart),
        Item(chkIntroAtStart),
        Item(chkGreeting),
        Framed(Frame1, std::move(greeting)),
        Item(chkCloseInTray),
        Space(),
    });
}

Layout frmOptions::RemindersPage()
{
    const auto column = [](OptionGroup& group) {
        std::vector<Layout> buttons;
        buttons.reserve(static_cast<std::size_t>(group.Count()) + 1);
        for (int i = 0; i < group.Count(); ++i)
            buttons.push_back(Item(group(i)));
        buttons.push_back(Space());
        return Column(std::move(buttons));
    };
    return Column({
        Row({Item(Label13), Item(comRemType), Item(chkOnTop), Space()}),
        Item(chkSpkSentence),
        Item(txtRemText),
        Framed(Frame3, Row({Item(chkSpkTitle), Item(chkSpkDate), Item(chkSpkTime), Item(chkSpkDesc), Item(chkSpkSnooze),
                            Space()})),
        Row({Framed(fraAction, column(optAction)).Stretch(1), Framed(fraGrad, column(optGradiantType)).Stretch(1),
             Framed(fraShape, column(optShape)).Stretch(1),
             Framed(fraColorOption,
                    Column({Grid(2, {Item(optColor(0)), Item(optColor(2)), Item(optColor(1)), Item(optColor(3))}),
                            Space()}))
                 .Stretch(1)}),
        Row({Item(chkAutoClose), Item(txtAutoClose), Item(Label14), Space(), Item(cmdPreview)}),
        Space(),
    });
}

} // namespace voxmate
