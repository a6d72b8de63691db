// The user's list of words that are said otherwise, its window, and its file.
#include "ExtrasTest.h"

namespace voxmate
{

namespace
{

using Rules = std::vector<WordingRule>;

class PronunciationsTest : public ExtrasTest
{
protected:
    PronunciationWindow& Open()
    {
        Item("mnuPronunciation").UserClick();
        return extras.WordsWindow();
    }
    static void Enter(PronunciationWindow& window, const std::string& written, const std::string& said)
    {
        window.txtWritten.UserEdit(written);
        window.txtSaid.UserEdit(said);
        window.cmdSet.UserClick();
    }
    static Lines Shown(PronunciationWindow& window)
    {
        Lines shown;
        for (const std::uint32_t row : window.lstWords.Rows()) {
            const ListItem& item = window.lstWords.ListItems().at(row - 1);
            shown.push_back(item.TextOf(0) + " -> " + item.TextOf(1));
        }
        return shown;
    }
    const std::string file = program.ProgramPath("pronunciation.txt");
};

TEST_F(PronunciationsTest, TheListIsUsedFromTheStart)
{
    fake.files.texts[file] =
        "# My words\n\nNAS = network storage\n:-)=smile\na==b = same\nno rule\n = nothing\numm =\n";
    Begin();
    EXPECT_EQ(wording.rules, (Rules{{"NAS", "network storage"}, {":-)", "smile"}, {"a==b", "same"}, {"umm", ""}}));
    EXPECT_FALSE(wording.shortens);
}

TEST_F(PronunciationsTest, AWordIsAddedAtOnceAndTheNotesInTheFileStay)
{
    fake.files.texts[file] = "# My words\nNAS = storage\n";
    Begin();
    PronunciationWindow& window = Open();
    Enter(window, " apt ", " A P T ");
    Enter(window, "NAS", "network storage");
    EXPECT_EQ(wording.rules, (Rules{{"NAS", "network storage"}, {"apt", "A P T"}}));
    EXPECT_EQ(fake.files.texts[file], "# My words\nNAS = network storage\napt = A P T\n");
    EXPECT_EQ(Shown(window), (Lines{"apt -> A P T", "NAS -> network storage"}));
    EXPECT_EQ(window.txtWritten.Text.get(), "");
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(PronunciationsTest, AWordThatIsChosenIsInTheFieldsAndCanBeRemoved)
{
    fake.files.texts[file] = "b = bee\na = ay\n";
    Begin();
    PronunciationWindow& window = Open();
    EXPECT_FALSE(window.cmdRemove.Enabled);
    window.lstWords.UserItemClick(1);
    EXPECT_EQ(window.txtWritten.Text.get(), "b");
    EXPECT_EQ(window.txtSaid.Text.get(), "bee");
    window.cmdRemove.UserClick();
    EXPECT_EQ(fake.files.texts[file], "a = ay\n");
    EXPECT_EQ(wording.rules, (Rules{{"a", "ay"}}));
    EXPECT_EQ(Shown(window), Lines{"a -> ay"});
    EXPECT_FALSE(window.cmdRemove.Enabled);
}

TEST_F(PronunciationsTest, WhatIsEnteredCanBeHeardFirst)
{
    Begin();
    PronunciationWindow& window = Open();
    window.txtWritten.UserEdit("NAS");
    window.cmdHear.UserClick();
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\NAS"));
    window.txtSaid.UserEdit("net\\work");
    window.cmdHear.UserClick();
    EXPECT_TRUE(Logged("Speak \\Pit=50\\ \\Spd=156\\net\\\\work"));
    EXPECT_EQ(wording.rules, Rules{});
}

TEST_F(PronunciationsTest, SaysWhatCannotBeInTheList)
{
    Begin();
    PronunciationWindow& window = Open();
    Enter(window, " * ", "x");
    Enter(window, "# x", "y");
    Enter(window, "a = b", "c");
    Enter(window, "*a*b*", "c");
    EXPECT_EQ(Boxes(), (Lines{
                           "Voxmate - Pronunciation: Please enter the word or words that are to be said otherwise.",
                           "Voxmate - Pronunciation: The words cannot begin with \"# \" or have \" = \" in them.",
                           "Voxmate - Pronunciation: The words cannot begin with \"# \" or have \" = \" in them.",
                           "Voxmate - Pronunciation: At most two asterisks can stand in the words.",
                       }));
    EXPECT_FALSE(fake.files.texts.contains(file));
    EXPECT_EQ(window.txtWritten.Text.get(), "*a*b*");
}

TEST_F(PronunciationsTest, WhatCannotBeSavedHoldsForThisRun)
{
    Begin();
    savesText = false;
    Enter(Open(), "a", "b");
    EXPECT_EQ(wording.rules, (Rules{{"a", "b"}}));
    EXPECT_EQ(Boxes(), Lines{"Voxmate - File Error: The list of words cannot be saved in the following file:\r\n" +
                             file + "\r\nWhat you changed holds until Voxmate ends."});
}

TEST_F(PronunciationsTest, AFileThatCannotBeReadIsNotReplaced)
{
    fake.files.texts[file] = "NAS = storage\n";
    fake.files.openErrors.emplace(file, PermissionDenied());
    Begin();
    EXPECT_EQ(wording.rules, Rules{});
    Enter(Open(), "a", "b");
    EXPECT_EQ(fake.files.texts[file], "NAS = storage\n");
    EXPECT_EQ(Boxes().size(), 1U);
}

TEST_F(PronunciationsTest, WhatWasChangedInTheFileHoldsWhenTheWindowOpens)
{
    Begin();
    fake.files.texts[file] = "a = b\n";
    PronunciationWindow& window = Open();
    EXPECT_EQ(Shown(window), Lines{"a -> b"});
    EXPECT_EQ(wording.rules, (Rules{{"a", "b"}}));
}

TEST_F(PronunciationsTest, LinksAndCodesAreSaidInShortWhereTheUserSwitchesThatOn)
{
    Begin();
    OpenMenu();
    EXPECT_FALSE(Item("mnuShorten").Checked);
    Item("mnuShorten").UserClick();
    EXPECT_TRUE(wording.shortens);
    EXPECT_EQ(state.Get("wording.shortens"), "1");
    Item("mnuShorten").UserClick();
    EXPECT_FALSE(wording.shortens);
}

TEST_F(PronunciationsTest, EachLanguageHasAVoiceOfItsOwnWhereTheUserSwitchesThatOn)
{
    Begin();
    OpenMenu();
    EXPECT_EQ(Item("mnuByLanguage").Caption.get(), "Voice &for Each Language");
    EXPECT_FALSE(Item("mnuByLanguage").Checked);
    EXPECT_FALSE(wording.byLanguage);
    Item("mnuByLanguage").UserClick();
    EXPECT_TRUE(wording.byLanguage);
    EXPECT_EQ(state.Get("voice.bylanguage"), "1");
    Item("mnuByLanguage").UserClick();
    EXPECT_FALSE(wording.byLanguage);
}

TEST_F(PronunciationsTest, WhereLanguagesCannotBeToldApartTheMenuSaysSo)
{
    wording.knowsLanguages = false;
    state.Set("voice.bylanguage", "1");
    Begin();
    OpenMenu();
    EXPECT_EQ(Item("mnuByLanguage").Caption.get(), "Voice &for Each Language (not in this build)");
    EXPECT_FALSE(Item("mnuByLanguage").Enabled);
    EXPECT_FALSE(wording.byLanguage);
}

} // namespace

} // namespace voxmate
