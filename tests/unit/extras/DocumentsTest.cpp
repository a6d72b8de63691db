// Documents of all kinds, opened from outside and read aloud.
#include "ReadingCase.h"

namespace voxmate
{

namespace
{

using readers::Block;
using readers::BlockKind;
using readers::Kind;
using readers::Refusal;

class DocumentsTest : public ReadingCase
{
protected:
    DocumentsTest()
    {
        Document("C:\\a.docx", {"One.", "Two.", "Three.", "Four."});
        Document("C:\\b.odt", {"Other."});
    }
    std::string Status() const { return form.stsBar.Panels()[0].text; }
};

TEST_F(DocumentsTest, ADocumentIsReadPartByPartByTheCharacterWhichShowsItself)
{
    Begin();
    Open({"C:\\a.docx"});
    EXPECT_EQ(fake.log,
              (Lines{"Window frmMain shown", "Window frmMain activated", "Show",
                     "Speak \\Pit=50\\ \\Spd=156\\One.\\Pau=350\\", "Speak \\Pit=50\\ \\Spd=156\\Two.\\Pau=350\\"}));
    SpeakAll();
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\", "Two.\\Pau=350\\", "Three.\\Pau=350\\", "Four.\\Pau=350\\"}));
    EXPECT_EQ(fake.log.back(), "Play RestPose");
    EXPECT_EQ(documents.reading, 0);
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_FALSE(extras.Escape());
}

TEST_F(DocumentsTest, NoMoreIsAskedForThanWhatFollowsWithoutAGap)
{
    Begin();
    Open({"C:\\a.docx"});
    EndNext(); // Show
    StartNext();
    EXPECT_EQ(Spoken().size(), 2u);
    EndNext();
    EXPECT_EQ(Spoken().size(), 3u);
}

TEST_F(DocumentsTest, TheFirstBlockIsSpokenBeforeTheNextHasCome)
{
    Begin();
    File("C:\\slow.pdf", {Kind::Pdf, Paragraph("One.")});
    Open({"C:\\slow.pdf"});
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\"}));
    SpeakAll();
    EXPECT_TRUE(extras.Escape()) << "more is to come";
    // What is opened after a Stop is not concerned by it, and goes on.
    Open({"C:\\slow.pdf"});
    documents.told["C:\\slow.pdf"].emplace_back(Paragraph("Two."));
    Tick();
    documents.told["C:\\slow.pdf"].emplace_back(Refusal::None);
    Tick();
    SpeakAll();
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\", "Two.\\Pau=350\\"}));
    EXPECT_FALSE(TimerOf("tmrDocument").Enabled);
}

TEST_F(DocumentsTest, SeveralFilesAreReadInTurn)
{
    Begin();
    fake.files.texts["C:\\c.txt"] = "Text";
    Open({"C:\\a.docx", "C:\\c.txt", "C:\\b.odt"});
    EXPECT_EQ(documents.begun, (Lines{"C:\\a.docx"}));
    SpeakAll();
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\", "Two.\\Pau=350\\", "Three.\\Pau=350\\", "Four.\\Pau=350\\",
                               "Text\\Pau=350\\", "Other.\\Pau=350\\"}));
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(DocumentsTest, WhatItIsIsToldByItsContent)
{
    Begin();
    File("C:\\book.txt", {Kind::Epub, Paragraph("A book."), Refusal::None});
    File("C:\\notes", {Kind::Markdown, Paragraph("Notes."), Refusal::None});
    File("C:\\sound.txt", {Refusal::Sound});
    Open({"C:\\book.txt", "C:\\notes", "C:\\sound.txt"});
    SpeakAll();
    EXPECT_EQ(Spoken(), (Lines{"A book.\\Pau=350\\", "Notes.\\Pau=350\\", "Speak . from C:\\sound.txt"}));
}

TEST_F(DocumentsTest, BackslashesAreText)
{
    Begin();
    Document("C:\\a.docx", {"\\Pit=400\\ C:\\\\dir \\"});
    Open({"C:\\a.docx"});
    EXPECT_EQ(Spoken(), (Lines{"\\\\Pit=400\\\\ C:\\\\\\\\dir \\\\\\Pau=350\\"}));
}

TEST_F(DocumentsTest, TheStatusLineTellsHowMuchIsLeft)
{
    Begin();
    Document("C:\\a.docx", {"One.", std::string(999, 'x') + " " + std::string(870, 'y')});
    documents.told["C:\\a.docx"].pop_back();
    Open({"C:\\a.docx"});
    EXPECT_EQ(Status(), "Opening Document. Please wait...");
    EndNext(); // Show
    StartNext();
    EXPECT_EQ(Status(), "Reading a.docx . Click STOP to Cancel Reading...");
    documents.told["C:\\a.docx"].emplace_back(Refusal::None);
    Tick();
    EndNext();
    // 1869 characters at 156 words a minute.
    EXPECT_EQ(Status(), "Reading (1 minute left) a.docx . Click STOP to Cancel Reading...");
    StartNext();
    EXPECT_EQ(Status(), "Reading (1 minute left) a.docx . Click STOP to Cancel Reading...");
    EndNext();
    StartNext();
    EXPECT_EQ(Status(), "Reading (less than a minute left) a.docx . Click STOP to Cancel Reading...");
    SpeakAll();
    EXPECT_EQ(Status(), StatusIdle);
}

TEST_F(DocumentsTest, StopEndsTheDocumentAndThoseThatWait)
{
    Begin();
    Open({"C:\\a.docx", "C:\\b.odt"});
    EndNext();
    StartNext();
    form.cmdStop.UserClick();
    EndNext(RequestStatus::Interrupted);
    EndNext(RequestStatus::Interrupted);
    SpeakAll();
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\", "Two.\\Pau=350\\"}));
    EXPECT_EQ(documents.reading, 0);
    EXPECT_EQ(documents.begun, (Lines{"C:\\a.docx"}));
    EXPECT_FALSE(extras.Escape());
    EXPECT_FALSE(TimerOf("tmrDocument").Enabled);
    // The next one is not concerned.
    Open({"C:\\b.odt"});
    EXPECT_EQ(Spoken().back(), "Other.\\Pau=350\\");
}

TEST_F(DocumentsTest, EscapeEndsADocumentThatIsStillBeingOpened)
{
    Begin();
    File("C:\\slow.pdf", {Kind::Pdf});
    Open({"C:\\slow.pdf", "C:\\b.odt"});
    EXPECT_TRUE(extras.Escape());
    documents.told["C:\\slow.pdf"].emplace_back(Paragraph("One."));
    Tick();
    EXPECT_EQ(documents.reading, 0);
    EXPECT_EQ(Spoken(), Lines{});
    EXPECT_FALSE(extras.Escape());
}

TEST_F(DocumentsTest, SendingTheCharacterAwayEndsIt)
{
    Begin();
    Open({"C:\\a.docx", "C:\\b.odt"});
    EndNext();
    StartNext();
    EndNext(RequestStatus::Interrupted);
    EndNext(RequestStatus::Interrupted);
    Tick();
    EXPECT_FALSE(extras.Escape());
    EXPECT_EQ(documents.begun, (Lines{"C:\\a.docx"}));
}

TEST_F(DocumentsTest, AnotherCharacterGoesOnReading)
{
    Begin();
    Open({"C:\\a.docx"});
    EndNext();
    StartNext();
    EndNext();
    StartNext();
    const std::vector<AgentRequestPtr> interrupted = requests_;
    program.Characters.LoadCharacter("Bravo", false);
    fake.log.clear();
    for (const AgentRequestPtr& request : interrupted) {
        dynamic_cast<fakes::FakeRequest&>(*request).status = RequestStatus::Interrupted;
        fake.agent.RequestComplete(request);
    }
    EXPECT_EQ(fake.log, (Lines{"Show", "Speak \\Pit=50\\ \\Spd=156\\Two.\\Pau=350\\",
                               "Speak \\Pit=50\\ \\Spd=156\\Three.\\Pau=350\\"}));
}

TEST_F(DocumentsTest, WithoutSoundABoxSaysSoAndItEnds)
{
    Begin();
    fake.agent.status = AudioStatus::NoSupport;
    Open({"C:\\a.docx"});
    Tick();
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - Audio Output Problem: There is no support for audio output."}));
    EXPECT_EQ(Spoken(), Lines{});
    EXPECT_FALSE(extras.Escape());
    EXPECT_EQ(documents.reading, 0);
}

TEST_F(DocumentsTest, WhatCannotBeReadIsToldInASentenceAndTheNextIsRead)
{
    Begin();
    File("C:\\secret.pdf", {Refusal::Protected});
    Open({"C:\\secret.pdf", "C:\\b.odt"});
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: \"secret.pdf\" cannot be read: it is protected by a password or "
                              "against copying."}));
    EXPECT_EQ(fake.windows.boxes[0].style, vbExclamation);
    EXPECT_EQ(Spoken(), (Lines{"Other.\\Pau=350\\"}));
}

TEST_F(DocumentsTest, TheSentenceWaitsUntilAnotherMessageHasBeenClosed)
{
    Begin();
    File("C:\\slow.pdf", {});
    Open({"C:\\slow.pdf"});
    std::size_t boxes = 0;
    fake.windows.whileBoxIsUp = [&](const auto&) {
        documents.told["C:\\slow.pdf"] = {Refusal::Damaged};
        Tick();
        Tick();
        boxes = std::max(boxes, fake.windows.boxes.size());
        fake.windows.whileBoxIsUp = nullptr;
    };
    form.mnuHelp.UserClick();
    EXPECT_EQ(boxes, 1u);
    Tick();
    EXPECT_EQ(Boxes().back(), "Voxmate - File Error: \"slow.pdf\" cannot be read: it is damaged.");
    EXPECT_EQ(fake.windows.boxes.size(), 2u);
    EXPECT_FALSE(TimerOf("tmrDocument").Enabled);
}

TEST_F(DocumentsTest, OfADamagedDocumentThatIsReadWhichIsThereAndThenTheSentenceIsTold)
{
    Begin();
    File("C:\\half.docx", {Kind::Docx, Paragraph("One."), Refusal::Damaged});
    Open({"C:\\half.docx"});
    EXPECT_EQ(Boxes(), Lines{});
    SpeakAll();
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\"}));
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: \"half.docx\" cannot be read to its end: it is damaged."}));
    EXPECT_EQ(Status(), StatusIdle);
}

TEST_F(DocumentsTest, ASentenceAboutAStoppedDocumentIsNotTold)
{
    Begin();
    File("C:\\half.docx", {Kind::Docx, Paragraph("One."), Refusal::Damaged});
    Open({"C:\\half.docx"});
    form.cmdStop.UserClick();
    EndNext(RequestStatus::Interrupted);
    EndNext(RequestStatus::Interrupted);
    Tick();
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(DocumentsTest, ARecordingIsPlayedByTheCharacter)
{
    Begin();
    File("C:\\song.ogg", {Refusal::Sound});
    Open({"C:\\song.ogg"});
    EXPECT_EQ(fake.log,
              (Lines{"Window frmMain shown", "Window frmMain activated", "Show", "Speak . from C:\\song.ogg"}));
    EndNext();
    StartNext();
    EXPECT_EQ(Status(), "Playing recording...");
    EXPECT_TRUE(extras.Escape());
    SpeakAll();
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(DocumentsTest, ARecordingThatCannotBePlayedIsToldOf)
{
    Begin();
    File("C:\\song.ogg", {Refusal::Sound});
    Open({"C:\\song.ogg"});
    EndNext();
    StartNext();
    EndNext(RequestStatus::Failed);
    Tick();
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: \"song.ogg\" cannot be played: it is damaged, or of a "
                              "kind that is not played here."}));
}

TEST_F(DocumentsTest, TheWordProcessorReadsWhatOnlyItCan)
{
    Begin();
    File("C:\\letter.doc", {Refusal::NeedsConverter});
    fake.word.documents["C:\\letter.doc"] = "Dear reader. Hello.\rA\vB\r\r \rEnd";
    fake.word.whileOpening = [this] { EXPECT_EQ(Status(), "Opening Word Document. Please wait..."); };
    Open({"C:\\letter.doc"});
    SpeakAll();
    EXPECT_EQ(Spoken(), (Lines{"Dear reader.", "Hello.\\Pau=350\\", "A", "B\\Pau=350\\", "End\\Pau=350\\"}));
    EXPECT_TRUE(Logged("Word Quit"));
    EXPECT_EQ(fake.word.alive, 0);
}

TEST_F(DocumentsTest, WhatTheWordProcessorCannotReadIsToldOf)
{
    Begin();
    for (const char* name : {"C:\\bad.doc", "C:\\empty.doc", "C:\\none.doc"})
        File(name, {Refusal::NeedsConverter});
    fake.word.documents["C:\\empty.doc"] = "\r \r";
    Open({"C:\\bad.doc", "C:\\empty.doc"});
    fake.word.createError = CannotCreateObject();
    Open({"C:\\none.doc"});
    EXPECT_EQ(Boxes(),
              (Lines{"Voxmate - File Error: \"bad.doc\" cannot be read: it is damaged.",
                     "Voxmate - File Error: \"empty.doc\" cannot be read: there is no text in it.",
                     "Voxmate - File Error: \"none.doc\" cannot be read: only the word processor can read it."}));
    EXPECT_EQ(fake.word.alive, 0);
}

TEST_F(DocumentsTest, EscapeEndsTheWordProcessorWhileItReads)
{
    Begin();
    File("C:\\letter.doc", {Refusal::NeedsConverter});
    fake.word.documents["C:\\letter.doc"] = "Dear reader.";
    fake.word.whileOpening = [this] { EXPECT_TRUE(extras.Escape()); };
    Open({"C:\\letter.doc", "C:\\b.odt"});
    Tick();
    EXPECT_EQ(Spoken(), Lines{});
    EXPECT_EQ(Boxes(), Lines{});
    EXPECT_EQ(fake.word.alive, 0);
    EXPECT_FALSE(extras.Escape());
}

TEST_F(DocumentsTest, AnEndlessDocumentIsReadOnlySoFarAhead)
{
    Begin();
    const std::string text(std::size_t{1} << 20, 'x');
    std::vector<readers::Frame> frames{Kind::Text};
    for (int i = 0; i < 100; ++i)
        frames.emplace_back(Paragraph(text));
    File("C:\\endless.md", frames);
    Open({"C:\\endless.md"});
    for (int i = 0; i < 10; ++i)
        Tick();
    EXPECT_EQ(documents.reading, 1);
    EXPECT_LT(documents.taken["C:\\endless.md"], 20u);
    EXPECT_GT(documents.taken["C:\\endless.md"], 10u);
    // What is heard makes room.
    for (int i = 0; i < 3000; ++i) {
        StartNext();
        EndNext();
    }
    Tick();
    EXPECT_GT(documents.taken["C:\\endless.md"], 17u);
}

TEST_F(DocumentsTest, TheKeysThatMoveAreFreeWhereNoDocumentIsRead)
{
    Begin();
    const char* const ways[] = {"mnuPause",         "mnuSentenceBack",     "mnuSentenceForward",
                                "mnuParagraphBack", "mnuParagraphForward", "mnuBeginning"};
    for (const char* way : ways)
        EXPECT_FALSE(Item(way).Enabled) << way;
    Open({"C:\\a.docx"});
    for (const char* way : ways)
        EXPECT_TRUE(Item(way).Enabled) << way;
    SpeakAll();
    for (const char* way : ways)
        EXPECT_FALSE(Item(way).Enabled) << way;
}

TEST_F(DocumentsTest, ATextFilePausesAndHasAPlaceLikeAnyOther)
{
    Begin();
    documents.told["C:\\c.txt"] = {Kind::Text, Paragraph("One. Two. Three."), Refusal::None};
    fake.files.files.insert("C:\\c.txt");
    Open({"C:\\c.txt"});
    EndNext(); // Show
    StartNext();
    EndNext();
    StartNext();
    Item("mnuPause").UserClick();
    EXPECT_EQ(Status(), "Paused (less than a minute left) c.txt . Click STOP to Cancel Reading...");
    EXPECT_EQ(state.values.at("documents.places"), "C:\\c.txt 1");
}

TEST_F(DocumentsTest, WithoutAReaderATextFileIsReadAsByTheButtonAndADocumentBehindItWaits)
{
    Begin();
    fake.files.texts["C:\\c.txt"] = "Text";
    documents.told["C:\\c.txt"] = {Refusal::NoReader};
    Open({"C:\\c.txt", "C:\\a.docx"});
    EXPECT_FALSE(Item("mnuPause").Enabled) << "it would say that the document pauses while the text goes on";
    EXPECT_EQ(Spoken(), Lines{"\r\nText"});
    SpeakAll();
    EXPECT_EQ(Spoken().front(), "\r\nText");
    EXPECT_EQ(Spoken().back(), "Four.\\Pau=350\\");
}

TEST_F(DocumentsTest, WhatIsOpenedWhileADocumentPausesIsReadNext)
{
    Begin();
    File("C:\\c.md", {Kind::Markdown, Paragraph("Now."), Refusal::None});
    Open({"C:\\a.docx", "C:\\b.odt"});
    Item("mnuPause").UserClick();
    Open({"C:\\c.md"});
    EXPECT_EQ(documents.begun, (Lines{"C:\\a.docx", "C:\\c.md"}));
}

TEST_F(DocumentsTest, PausingIsSilentAndGoesOnWithTheSentenceItWasIn)
{
    Begin();
    Open({"C:\\a.docx"});
    EndNext();
    StartNext();
    EndNext();
    StartNext();
    fake.log.clear();
    Item("mnuPause").UserClick();
    EXPECT_EQ(fake.log, (Lines{"Stop", "Stop", "Play RestPose"}));
    EXPECT_EQ(Status(), "Paused (less than a minute left) a.docx . Click STOP to Cancel Reading...");
    for (int i = 0; i < 2; ++i)
        EndNext(RequestStatus::Interrupted);
    StartNext();
    EndNext(); // RestPose
    EXPECT_EQ(Status(), "Paused (less than a minute left) a.docx . Click STOP to Cancel Reading...");
    Tick();
    EXPECT_FALSE(extras.Escape()) << "nothing is spoken";
    EXPECT_EQ(Spoken(), Lines{});
    Item("mnuPause").UserClick();
    EXPECT_EQ(Spoken(), (Lines{"Two.\\Pau=350\\", "Three.\\Pau=350\\"}));
    SpeakAll();
    EXPECT_EQ(Spoken().back(), "Four.\\Pau=350\\");
    EXPECT_EQ(Status(), StatusIdle);
}

TEST_F(DocumentsTest, WhileItPausesADocumentIsReadInButNotSpoken)
{
    Begin();
    File("C:\\slow.pdf", {Kind::Pdf, Paragraph("One.")});
    Open({"C:\\slow.pdf"});
    Item("mnuPause").UserClick();
    documents.told["C:\\slow.pdf"].emplace_back(Paragraph("Two."));
    documents.told["C:\\slow.pdf"].emplace_back(Refusal::None);
    fake.log.clear();
    Tick();
    EXPECT_EQ(documents.reading, 0);
    EXPECT_EQ(fake.log, Lines{});
    Item("mnuPause").UserClick();
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\", "Two.\\Pau=350\\"}));
}

TEST_F(DocumentsTest, StopEndsADocumentThatPauses)
{
    Begin();
    Open({"C:\\a.docx", "C:\\b.odt"});
    Item("mnuPause").UserClick();
    Collect();
    requests_.clear();
    form.cmdStop.UserClick();
    StartNext();
    EndNext(); // RestPose
    EXPECT_EQ(Status(), StatusIdle);
    fake.log.clear();
    Item("mnuPause").UserClick();
    Tick();
    EXPECT_EQ(fake.log, Lines{});
    EXPECT_EQ(Status(), StatusIdle);
}

TEST_F(DocumentsTest, ADocumentThatIsOpenedWhileAnotherPausesIsReadAtOnce)
{
    Begin();
    Open({"C:\\a.docx"});
    Item("mnuPause").UserClick();
    fake.log.clear();
    Open({"C:\\b.odt"});
    EXPECT_EQ(Spoken(), (Lines{"Other.\\Pau=350\\"}));
}

TEST_F(DocumentsTest, OneGoesBackAndForwardBySentencesAndParagraphs)
{
    Begin();
    Document("C:\\a.docx", {"A one. A two. A three.", "B one. B two.", "C one."});
    Open({"C:\\a.docx"});
    EndNext();
    StartNext();
    const auto choose = [this](const char* item) {
        fake.log.clear();
        requests_.clear();
        Item(item).UserClick();
        Collect();
        const Lines spoken = Spoken();
        // The character has shown itself, and begins.
        if (!spoken.empty()) {
            EndNext();
            StartNext();
        }
        return spoken.empty() ? "" : spoken.front().substr(0, spoken.front().find('\\'));
    };
    EXPECT_EQ(choose("mnuSentenceBack"), "A one.");
    EXPECT_EQ(choose("mnuSentenceForward"), "A two.");
    EXPECT_EQ(choose("mnuParagraphForward"), "B one.");
    EXPECT_EQ(choose("mnuSentenceForward"), "B two.");
    EXPECT_EQ(choose("mnuParagraphBack"), "B one.");
    EXPECT_EQ(choose("mnuParagraphBack"), "A one.");
    EXPECT_EQ(choose("mnuParagraphForward"), "B one.");
    EXPECT_EQ(choose("mnuSentenceBack"), "A three.");
    EXPECT_EQ(choose("mnuParagraphForward"), "B one.");
    EXPECT_EQ(choose("mnuParagraphForward"), "C one.");
    EXPECT_EQ(choose("mnuParagraphForward"), "") << "there is no more";
    EXPECT_EQ(choose("mnuSentenceForward"), "");
    EXPECT_EQ(choose("mnuPause"), "");
    EXPECT_EQ(choose("mnuSentenceBack"), "B two.") << "moving goes on";
}

TEST_F(DocumentsTest, AStoppedDocumentGoesOnFromItsSentenceUnderAnyNameUntilItIsHeardToItsEnd)
{
    Begin();
    documents.prints = {{"C:\\a.docx", "same"}, {"C:\\copy.docx", "same"}};
    Document("C:\\copy.docx", {"One.", "Two.", "Three.", "Four."});
    Open({"C:\\a.docx"});
    EndNext();
    StartNext();
    EndNext();
    StartNext();
    form.cmdStop.UserClick();
    EndNext(RequestStatus::Interrupted);
    Tick();
    EXPECT_EQ(state.values["documents.places"], "same 1");
    requests_.clear();
    fake.log.clear();
    Open({"C:\\copy.docx"});
    SpeakAll();
    EXPECT_EQ(Spoken(), (Lines{"Two.\\Pau=350\\", "Three.\\Pau=350\\", "Four.\\Pau=350\\"}));
    EXPECT_EQ(state.values["documents.places"], "");
    fake.log.clear();
    Open({"C:\\a.docx"});
    EXPECT_EQ(Spoken().front(), "One.\\Pau=350\\");
}

TEST_F(DocumentsTest, APlaceThatADocumentDoesNotHaveMeansItsBeginning)
{
    Begin();
    documents.prints = {{"C:\\a.docx", "same"}, {"C:\\b.odt", "same"}};
    Open({"C:\\a.docx"});
    EndNext();
    for (int i = 0; i < 3; ++i) {
        StartNext();
        EndNext();
    }
    form.cmdStop.UserClick();
    Tick();
    EXPECT_EQ(state.values["documents.places"], "same 3");
    fake.log.clear();
    Open({"C:\\b.odt"});
    EXPECT_EQ(Spoken(), (Lines{"Other.\\Pau=350\\"}));
}

TEST_F(DocumentsTest, ThePlaceIsKeptAtEachParagraphAndWhenItPauses)
{
    Begin();
    Document("C:\\a.docx", {"A one. A two. A three.", "B one. B two."});
    Open({"C:\\a.docx"});
    EndNext();
    Lines kept;
    for (int i = 0; i < 5; ++i) {
        StartNext();
        kept.push_back(state.values["documents.places"]);
        EndNext();
    }
    EXPECT_EQ(kept, (Lines{"", "", "", "C:\\a.docx 3", "C:\\a.docx 3"}));
    Tick();
    EXPECT_EQ(state.values["documents.places"], "") << "heard to its end";
    requests_.clear();
    Open({"C:\\a.docx"});
    EndNext();
    StartNext();
    EndNext();
    StartNext();
    Item("mnuPause").UserClick();
    EXPECT_EQ(state.values["documents.places"], "C:\\a.docx 1");
}

TEST_F(DocumentsTest, OneMayBeginAgainAndHaveAllPlacesForgotten)
{
    Begin();
    Open({"C:\\a.docx"});
    EndNext();
    for (int i = 0; i < 3; ++i) {
        StartNext();
        EndNext();
    }
    EXPECT_EQ(state.values["documents.places"], "C:\\a.docx 3");
    fake.log.clear();
    Item("mnuBeginning").UserClick();
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\", "Two.\\Pau=350\\"}));
    Item("mnuForgetPlaces").UserClick();
    EXPECT_EQ(state.values["documents.places"], "");
}

TEST_F(DocumentsTest, WithoutADocumentTheKeysDoNothing)
{
    Begin();
    form.txtText.Text = "Hello";
    form.cmdSpeak.UserClick();
    fake.log.clear();
    for (const char* item : {"mnuPause", "mnuSentenceBack", "mnuSentenceForward", "mnuParagraphBack",
                             "mnuParagraphForward", "mnuBeginning"})
        Item(item).UserClick();
    EXPECT_EQ(fake.log, Lines{});
}

TEST_F(DocumentsTest, DroppedFilesAreOpenedWithoutBringingAWindowToTheFront)
{
    Begin();
    form.mnuSysTray.UserClick();
    form.FilesDropped({"C:\\a.docx", "C:\\b.odt"});
    Collect();
    SpeakAll();
    fake.agent.FilesDropped({"C:\\b.odt", "C:\\nothing.md"});
    EXPECT_EQ(Spoken(), (Lines{"One.\\Pau=350\\", "Two.\\Pau=350\\", "Three.\\Pau=350\\", "Four.\\Pau=350\\",
                               "Other.\\Pau=350\\", "Other.\\Pau=350\\"}));
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: File not found:\r\nC:\\nothing.md"}));
    EXPECT_FALSE(form.IsShown());
}

TEST_F(DocumentsTest, AFolderIsToldOf)
{
    Begin();
    fake.files.folders.insert("C:\\music");
    documents.told["C:\\music"] = {Refusal::NotAllowed};
    Open({"C:\\music"});
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - File Error: \"music\" cannot be read: it is no file that may be read."}));
}

TEST_F(DocumentsTest, TimesAreTextsForPeople)
{
    EXPECT_EQ(TimeText(0), "less than a minute");
    EXPECT_EQ(TimeText(1), "1 minute");
    EXPECT_EQ(TimeText(59), "59 minutes");
    EXPECT_EQ(TimeText(60), "1 hour");
    EXPECT_EQ(TimeText(121), "2 hours 1 minute");
}

} // namespace

} // namespace voxmate
