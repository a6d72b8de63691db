// The window that shows the text of the document that is being read.
#include "ReadingCase.h"

namespace voxmate
{

namespace
{

using readers::Block;
using readers::BlockKind;
using readers::Kind;
using readers::Refusal;

class ReadingWindowTest : public ReadingCase
{
protected:
    ReadingWindow& window = extras.TextWindow();

    ReadingWindowTest()
    {
        Told("C:\\a.odt", {{BlockKind::Heading, 1, "", "Title", ""},
                           {BlockKind::Paragraph, 0, "", "One here. Two there.", ""},
                           {BlockKind::ListItem, 2, "•", "Milk", ""}});
    }
    Lines Shown() const
    {
        Lines lines;
        for (const DocumentView::Paragraph& paragraph : window.vwText.Paragraphs())
            lines.push_back((paragraph.Heading > 0 ? "#" + std::to_string(paragraph.Heading) + " " : "") +
                            paragraph.Text);
        return lines;
    }
    std::string TextOf(const TextSpan& span) const
    {
        return span.Empty()
                   ? ""
                   : window.vwText.Paragraphs().at(span.Paragraph).Text.substr(span.Begin, span.End - span.Begin);
    }
    std::string Spoken() const { return TextOf(window.vwText.Spoken()); }
    std::string Word() const { return TextOf(window.vwText.Word()); }
    std::string Status() const { return window.stsReading.Panels()[0].text; }
};

TEST_F(ReadingWindowTest, TheMenuOpensItAndItShowsTheTextThatIsReadAndTheTextThatComes)
{
    Begin();
    Item("mnuReadingWindow").UserClick();
    EXPECT_EQ(Status(), "No document is being read.");
    EXPECT_EQ(Shown(), Lines{});
    Open({"C:\\a.odt"});
    EXPECT_EQ(Shown(), (Lines{"#1 Title", "One here. Two there.", "    • Milk"}));
    EXPECT_EQ(window.Caption, "a.odt - Voxmate");
    EXPECT_EQ(Status(), "Reading, less than a minute left");
}

TEST_F(ReadingWindowTest, OpenedLaterItShowsTheSame)
{
    Begin();
    Open({"C:\\a.odt"});
    EXPECT_EQ(Shown(), Lines{}) << "a window that is not there takes no memory";
    StartNext(); // Show
    EndNext();
    StartNext();
    EndNext();
    StartNext();
    Item("mnuReadingWindow").UserClick();
    EXPECT_EQ(Shown(), (Lines{"#1 Title", "One here. Two there.", "    • Milk"}));
    EXPECT_EQ(Spoken(), "One here.");
    window.UserClose();
    EXPECT_EQ(Shown(), Lines{});
}

TEST_F(ReadingWindowTest, TheSentenceAndTheWordThatAreHeardAreMarked)
{
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\a.odt"});
    StartNext(); // Show
    EndNext();
    StartNext();
    EXPECT_EQ(Spoken(), "Title");
    EXPECT_EQ(Word(), "");
    EndNext();
    StartNext();
    HearWord(0);
    EXPECT_EQ(Spoken() + "|" + Word(), "One here.|One");
    HearWord(1);
    EXPECT_EQ(Spoken() + "|" + Word(), "One here.|here.");
    HearWord(2);
    EXPECT_EQ(Word(), "") << "it has no third word";
    EndNext();
    EXPECT_EQ(Spoken() + "|" + Word(), "Two there.|");
    StartNext();
    HearWord(1);
    EXPECT_EQ(Spoken() + "|" + Word(), "Two there.|there.");
    EndNext();
    StartNext();
    EXPECT_EQ(Spoken(), "Milk") << "without the bullet";
    EndNext();
    Tick();
    EXPECT_EQ(Spoken(), "");
    EXPECT_EQ(Status(), "No document is being read.");
    EXPECT_EQ(Shown().size(), 3u) << "the text stays";
}

TEST_F(ReadingWindowTest, WordsOfWhatElseIsSpokenMarkNothing)
{
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\a.odt"});
    StartNext(); // Show
    EndNext();
    StartNext();
    fake.agent.Word(std::make_shared<fakes::FakeRequest>(), 0);
    EXPECT_EQ(Spoken() + "|" + Word(), "Title|");
}

TEST_F(ReadingWindowTest, AClickReadsFromTheSentenceItIsIn)
{
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\a.odt"});
    fake.log.clear();
    window.vwText.UserChoose({1, 11});
    EXPECT_EQ(fake.log, (Lines{"Stop", "Stop", "Show", "Speak \\Pit=50\\ \\Spd=156\\Two there.\\Pau=350\\",
                               "Speak \\Pit=50\\ \\Spd=156\\Milk\\Pau=200\\"}));
    fake.log.clear();
    window.vwText.UserChoose({2, 1});
    EXPECT_EQ(fake.log, (Lines{"Stop", "Stop", "Show", "Speak \\Pit=50\\ \\Spd=156\\Milk\\Pau=200\\"}))
        << "the bullet belongs to its item";
}

TEST_F(ReadingWindowTest, AClickReadsADocumentThatHasEndedAgainFromThere)
{
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\a.odt"});
    SpeakAll();
    fake.log.clear();
    window.vwText.UserChoose({1, 12});
    EXPECT_EQ(fake.log, (Lines{"Show", "Speak \\Pit=50\\ \\Spd=156\\Two there.\\Pau=350\\",
                               "Speak \\Pit=50\\ \\Spd=156\\Milk\\Pau=200\\"}));
    EXPECT_EQ(Shown().size(), 3u);
}

TEST_F(ReadingWindowTest, AClickInADocumentThatHasEndedAndIsGoneSaysSoAndTheTextStays)
{
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\a.odt"});
    SpeakAll();
    fake.files.files.erase("C:\\a.odt");
    window.vwText.UserChoose({1, 12});
    EXPECT_EQ(Boxes(), Lines{"Voxmate - File Error: \"a.odt\" cannot be read: there is no such file."});
    EXPECT_EQ(Shown().size(), 3u);
    EXPECT_EQ(window.Caption, "a.odt - Voxmate");
}

TEST_F(ReadingWindowTest, UpAndDownSelectTheSentencesInTurn)
{
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\a.odt"});
    const auto step = [this](const TextPlace& place, int by) {
        window.vwText.UserStep(place, by);
        return TextOf(window.vwText.Selected());
    };
    EXPECT_EQ(step({0, 0}, 1), "One here.");
    EXPECT_EQ(step({1, 0}, 1), "Two there.");
    EXPECT_EQ(step({1, 10}, 1), "Milk");
    EXPECT_EQ(step({2, 8}, 1), "Milk") << "the last one";
    EXPECT_EQ(step({1, 10}, -1), "One here.");
    EXPECT_EQ(step({1, 14}, -1), "Two there.") << "from its middle to its beginning";
    EXPECT_EQ(step({0, 0}, -1), "Title") << "the first one";
}

TEST_F(ReadingWindowTest, ItsButtonsDoWhatTheMenuDoes)
{
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\a.odt"});
    StartNext(); // Show
    EndNext();
    StartNext();
    window.cmdPause.UserClick();
    EXPECT_EQ(Status(), "Paused, less than a minute left");
    EXPECT_EQ(window.cmdPause.Caption.get(), "Go &On");
    window.vwText.Paused();
    EXPECT_EQ(window.cmdPause.Caption.get(), "&Pause");
    window.cmdSentenceForward.UserClick();
    EXPECT_EQ(Spoken(), "One here.");
    window.cmdParagraphForward.UserClick();
    EXPECT_EQ(Spoken(), "Milk");
    window.cmdSentenceBack.UserClick();
    EXPECT_EQ(Spoken(), "Two there.");
    window.cmdParagraphBack.UserClick();
    EXPECT_EQ(Spoken(), "One here.");
    window.cmdStop.UserClick();
    EXPECT_EQ(fake.log.back(), "Play RestPose");
    while (!requests_.empty())
        EndNext(RequestStatus::Interrupted);
    Tick();
    EXPECT_FALSE(extras.Escape());
    EXPECT_EQ(Status(), "No document is being read.");
}

TEST_F(ReadingWindowTest, ItOpensByItselfOnlyWhereTheUserHasSwitchedThatOn)
{
    Begin();
    Open({"C:\\a.odt"});
    EXPECT_FALSE(window.IsShown());
    OpenMenu();
    EXPECT_FALSE(Item("mnuReadingOpens").Checked);
    Item("mnuReadingOpens").UserClick();
    EXPECT_TRUE(Item("mnuReadingOpens").Checked);
    EXPECT_FALSE(window.IsShown()) << "from the next document on";
    Open({"C:\\a.odt"});
    SpeakAll();
    EXPECT_TRUE(window.IsShown());
    EXPECT_FALSE(window.ShowActivated);
    EXPECT_EQ(state.values.at("reading.opens"), "1");
}

TEST_F(ReadingWindowTest, AnotherDocumentsTextTakesItsPlaceAndARecordingHasNone)
{
    Told("C:\\b.odt", {{BlockKind::Paragraph, 0, "", "Other.", ""}});
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\a.odt", "C:\\b.odt"});
    SpeakAll();
    EXPECT_EQ(Shown(), Lines{"Other."});
    fake.files.files.insert("C:\\c.wav");
    documents.told["C:\\c.wav"] = {Refusal::Sound};
    Open({"C:\\c.wav"});
    EXPECT_EQ(Shown(), Lines{});
    EXPECT_EQ(window.Caption, "c.wav - Voxmate");
}

TEST_F(ReadingWindowTest, ADocumentOfAThousandPagesComesInPieces)
{
    std::vector<Block> blocks;
    for (int i = 0; i < 9000; ++i)
        blocks.push_back({BlockKind::Paragraph, 0, "", "Sentence " + std::to_string(i) + ".", ""});
    Told("C:\\long.odt", blocks);
    Begin();
    Open({"C:\\long.odt"});
    while (documents.reading > 0)
        Tick();
    Item("mnuReadingWindow").UserClick();
    EXPECT_EQ(Shown().size(), 8000u);
    EXPECT_TRUE(window.tmrText.Enabled);
    window.tmrText.Fire();
    EXPECT_EQ(Shown().size(), 9000u);
    EXPECT_FALSE(window.tmrText.Enabled);
}

TEST_F(ReadingWindowTest, TheTextOfALongDocumentThatHasEndedIsKeptAsLongAsItIsShown)
{
    Told("C:\\long.odt", {{BlockKind::Paragraph, 0, "", "Begin.", ""},
                          {BlockKind::Paragraph, 0, "", std::string(std::size_t{2} << 20, 'x') + ".", ""}});
    Begin();
    Open({"C:\\a.odt"});
    SpeakAll();
    Item("mnuReadingWindow").UserClick();
    EXPECT_EQ(Shown().size(), 3u) << "a short one is kept";
    Open({"C:\\long.odt"});
    SpeakAll();
    EXPECT_GT(Shown().size(), 1u);
    window.UserClose();
    Item("mnuReadingWindow").UserClick();
    EXPECT_EQ(Shown(), Lines{});
    window.UserClose();
    Open({"C:\\long.odt"});
    SpeakAll();
    Item("mnuReadingWindow").UserClick();
    EXPECT_EQ(Shown(), Lines{});
}

TEST_F(ReadingWindowTest, ForcedLineEndsStayAndEndlessParagraphsAreBroken)
{
    std::string endless;
    while (endless.size() < 3 * ReadingText::LongestParagraph)
        endless += "This is a sentence. ";
    Told("C:\\b.odt", {{BlockKind::Paragraph, 0, "", "A rose\nis a rose.\nYes. No.", ""},
                       {BlockKind::Paragraph, 0, "", endless, ""}});
    Begin();
    Item("mnuReadingWindow").UserClick();
    Open({"C:\\b.odt"});
    EXPECT_EQ(Shown().at(0), "A rose\nis a rose.\nYes. No.");
    EXPECT_EQ(Shown().size(), 4u);
    for (const std::string& text : Shown())
        EXPECT_LE(text.size(), ReadingText::LongestParagraph + 100);
}

} // namespace

} // namespace voxmate
