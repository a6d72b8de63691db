// What the dialog shows once it has saved, and once the character has changed under it.
#include "OptionsForm.h"

#include "modules/Settings.h"

#include <functional>
#include <utility>

namespace voxmate
{

namespace
{

class OptionsKeepingTest : public OptionsFormTest
{
protected:
    // What a paste brings past the digit filter.
    void ApplyWith(TextBox& box, const std::string& text)
    {
        Open();
        box.UserEdit(text);
        form.cmdApply.UserClick();
    }
};

// A box that is unticked from the beginning raises nothing when it is unticked: the rules must hold without.
TEST_F(OptionsKeepingTest, TheRulesHoldWhenTheFirstThingShownIsThatAllIsOff)
{
    Settings.ShowCharacterAtStart = 0;
    Settings.IntroAtStart = 0;
    Settings.GreetingEnabled = 0;
    Settings.ShowBalloon = 0;
    Settings.ReminderSentenceSpeak = 0;
    Settings.RemAlertClose = 0;
    Open();
    EXPECT_FALSE(form.Frame1.Enabled);
    EXPECT_FALSE(form.OptGreet(3).Enabled);
    EXPECT_FALSE(form.txtGreeting.Enabled);
    EXPECT_FALSE(form.Frame2.Enabled);
    EXPECT_FALSE(form.txtCharPerLine.Enabled);
    EXPECT_FALSE(form.txtRemText.Enabled);
    EXPECT_FALSE(form.txtAutoClose.Enabled);
}

TEST_F(OptionsKeepingTest, EveryChangeCanBeAppliedWhicheverControlItIsMadeIn)
{
    Open();
    const auto expectChange = [this](const Control& control, const std::function<void()>& change) {
        form.cmdApply.Enabled = false;
        change();
        EXPECT_TRUE(form.cmdApply.Enabled) << control.Name;
    };
    for (Control* control : form.Controls()) {
        if (auto* box = dynamic_cast<CheckBox*>(control)) {
            expectChange(*box, [box] { box->UserClick(true); });
            expectChange(*box, [box] { box->UserClick(false); });
        } else if (auto* text = dynamic_cast<TextBox*>(control)) {
            expectChange(*text, [text] { text->UserEdit("9"); });
        } else if (auto* list = dynamic_cast<ComboBox*>(control); list && list != &form.comAnimation) {
            expectChange(*list, [list] { list->UserSelect(1); });
            expectChange(*list, [list] { list->UserSelect(0); });
        } else if (auto* option = dynamic_cast<OptionButton*>(control); option && !option->Value) {
            option->Enabled = true;
            expectChange(*option, [option] { option->UserClick(); });
        }
    }
}

TEST_F(OptionsKeepingTest, TheIntervalShowsTheNumberThatWasMadeOfItsText)
{
    ApplyWith(form.txtTimeInterval, "5x");
    EXPECT_EQ(Settings.SpeakTimeInterval, 5);
    EXPECT_EQ(form.txtTimeInterval.Text.get(), "5");
    EXPECT_FALSE(form.cmdApply.Enabled);
    form.txtTimeInterval.UserEdit("abc");
    form.cmdApply.UserClick();
    EXPECT_EQ(Settings.SpeakTimeInterval, 0);
    EXPECT_EQ(form.txtTimeInterval.Text.get(), "0");
}

TEST_F(OptionsKeepingTest, TheOtherNumbersDoSoToo)
{
    ApplyWith(form.txtCharPerLine, "032");
    EXPECT_EQ(form.txtCharPerLine.Text.get(), "32");
    form.txtTotalLines.UserEdit(" 3");
    form.txtAutoClose.UserEdit("7 ");
    form.cmdApply.UserClick();
    EXPECT_EQ(form.txtTotalLines.Text.get(), "3");
    EXPECT_EQ(form.txtAutoClose.Text.get(), "7");
    EXPECT_EQ(Settings.BalloonTotalLines, 3);
    EXPECT_EQ(Settings.RemAlertCloseTime, 7);
}

TEST_F(OptionsKeepingTest, ATextIsSavedAsFarAsItComesBackAtTheNextStart)
{
    const std::string letters(253, 'a');
    for (auto [box, field] : {std::pair{&form.txtUserName, &SettingsRecord::UserName},
                              std::pair{&form.txtGreeting, &SettingsRecord::OtherGreeting},
                              std::pair{&form.txtRemText, &SettingsRecord::ReminderSentence}}) {
        ApplyWith(*box, letters + "é");
        EXPECT_EQ(Settings.*field, letters) << "a letter of two bytes does not fit any more";
        EXPECT_EQ(box->Text.get(), letters);
        EXPECT_EQ(box->MaxLength, 254u);
        box->UserEdit(letters + "b");
        form.cmdApply.UserClick();
        EXPECT_EQ(Settings.*field, letters + "b");
        form.Unload();
        LoadSettings();
        EXPECT_EQ(Settings.SettingsErrorList, "");
        EXPECT_EQ(Settings.*field, letters + "b");
    }
}

TEST_F(OptionsKeepingTest, AFolderWhosePathWouldNotComeBackIsNotTaken)
{
    const std::string before = Settings.CharacterPath;
    const std::string longest = "C:\\" + std::string(251, 'a') + "\\";
    fake.AddCharacters(longest, {"Alfa"});
    ApplyWith(form.txtCharPath, longest);
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Path Error");
    EXPECT_EQ(fake.windows.boxes[0].style, 48);
    EXPECT_EQ(fake.windows.boxes[0].text, "The path of the following folder is too long to be kept:\r\n" + longest +
                                              "\r\nCharacterPath setting will not take effect.");
    EXPECT_EQ(Settings.CharacterPath, before);
    EXPECT_EQ(form.txtCharPath.Text.get(), before);
    EXPECT_EQ(Logged("Load "), Lines{});
}

TEST_F(OptionsKeepingTest, AFolderThatHasGoneIsReportedAtTheNextApply)
{
    Open();
    fake.files.folders.erase(Settings.CharacterPath);
    fake.windows.answers = {vbNo};
    form.chk24Time.UserClick(true);
    form.cmdApply.UserClick();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Path Error");
    EXPECT_EQ(Settings.TimeIn24Hour, 1);
}

// Apply gives the keyboard away when it is disabled; Default beside it must not be what Enter then means.
TEST_F(OptionsKeepingTest, AfterApplyTheKeyboardIsOnOk)
{
    Open();
    FocusPeer ok;
    form.cmdOK.SetPeer(&ok);
    form.chk24Time.UserClick(true);
    form.cmdApply.UserClick();
    EXPECT_EQ(ok.focused, 1);
    form.cmdOK.SetPeer(nullptr);
}

TEST_F(OptionsKeepingTest, TheGreetingShowsTheCharacter)
{
    Settings.ShowCharacterAtStart = 0;
    Settings.GreetingEnabled = 0;
    Open();
    form.chkGreeting.UserClick(true);
    EXPECT_EQ(form.chkShowStart.Value, 1);
}

TEST_F(OptionsKeepingTest, TheAnimationsAreThoseOfTheCharacterThatHasComeMeanwhile)
{
    fake.agent.prepare = [](fakes::FakeCharacter& character) { character.animations = {"Wave", "Bow"}; };
    Open();
    form.comAnimation.UserSelect(1);
    LoadCharacter("Bravo", false);
    EXPECT_EQ(form.comAnimation.Items(), (Lines{"Wave", "Bow"}));
    EXPECT_EQ(form.comAnimation.ListIndex, 0);
    form.Unload();
    LoadCharacter("Alfa", false);
    EXPECT_EQ(form.comAnimation.Items(), (Lines{"Wave", "Bow"})) << "a closed dialog does not care";
}

} // namespace

} // namespace voxmate
