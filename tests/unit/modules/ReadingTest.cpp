#include "ModuleTest.h"

#include <algorithm>

namespace voxmate
{

namespace
{

const std::string textPrompt = "ShowOpen Open Text File to Read... Text Files (*.txt)|*.txt";
const std::string wordPrompt = "ShowOpen Open Word File to Read... Word Files (*.doc)|*.doc";
const std::string wavePrompt = "ShowOpen Open Text File to Read... Wav Files (*.wav)|*.wav";
const std::string idle = "Status I am Idle now !";

class ReadingTest : public ModuleTest
{
protected:
    ReadingTest()
    {
        WithCharacter();
        Settings.ReadNameWithMessages = 0;
    }

    // What was spoken, without the voice's tags.
    Lines Spoken() const
    {
        Lines spoken;
        constexpr std::string_view prefix = "Speak \\Pit=50\\ \\Spd=156\\";
        for (const std::string& call : fake.log)
            if (call.starts_with(prefix))
                spoken.push_back(call.substr(prefix.size()));
        return spoken;
    }
    Lines Animations() const
    {
        Lines played;
        for (const std::string& call : fake.log)
            if (call.starts_with("Play ") && call != "Play RestPose")
                played.push_back(call.substr(5));
        return played;
    }
    // The one box that was shown, which is a file error, and what it said.
    std::string Complaint() const
    {
        if (fake.windows.boxes.size() != 1)
            return std::to_string(fake.windows.boxes.size()) + " boxes";
        EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - File Error");
        EXPECT_EQ(fake.windows.boxes[0].style, 48);
        EXPECT_EQ(IsBusy, False);
        EXPECT_EQ(window.statuses.back(), "I am Idle now !");
        return fake.windows.boxes[0].text;
    }
    void Choose(const std::string& file) { fake.windows.filesToOpen = {file}; }
    void ChooseText(const std::string& content, const std::string& file = "C:\\notes.txt")
    {
        Choose(file);
        fake.files.texts[file] = content;
    }
    // A document as long as the text.
    void ChooseWord(const std::string& text, const std::string& file = "C:\\letter.doc")
    {
        Choose(file);
        fake.files.texts[file] = "a document";
        fake.word.documents[file] = text;
    }
    // Lengths of the parts that a document of words of nine letters and a blank is spoken in.
    static std::string Words(std::size_t length)
    {
        std::string text;
        for (std::size_t i = 1; i <= length; ++i)
            text += i % 10 == 0 ? ' ' : 'x';
        return text;
    }
    Lines Parts() const
    {
        Lines parts;
        for (const std::string& status : window.statuses)
            if (status.starts_with("Reading part "))
                parts.push_back(status.substr(13, status.find(" . ") - 13));
        return parts;
    }
    const Lines calling{"GetAttention", "GetAttentionContinued", "GetAttentionContinued", "GetAttentionReturn"};
};

TEST_F(ReadingTest, ATextFileIsReadWholeWithEachLineTrimmed)
{
    ChooseText("  first line \r\n\r\n\tsecond\t ");
    OpenAndReadText();
    EXPECT_EQ(fake.log, (Lines{"Status Prompting for file name...", textPrompt,
                               "Status Reading Text Document. Please wait...", "Show", "DoEvents",
                               "Speak \\Pit=50\\ \\Spd=156\\\r\nfirst line\r\n\r\n\tsecond\t", "Play RestPose"}));
    EXPECT_EQ(CurrentRoutineId, 4);
}

TEST_F(ReadingTest, ALineOfBlanksIsAnEmptyLine)
{
    ChooseText("a\n   \n  b c  \n ");
    OpenAndReadText();
    EXPECT_EQ(Spoken(), (Lines{"\r\na\r\n\r\nb c\r\n"}));
}

TEST_F(ReadingTest, ATextFileOfOneEmptyLineIsNoComplaint)
{
    ChooseText("\r\n");
    OpenAndReadText();
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_EQ(Spoken(), (Lines{"\r\n"}));
}

TEST_F(ReadingTest, AnEmptyTextFileIsComplainedAbout)
{
    ChooseText("");
    OpenAndReadText();
    const std::string text = "The below TEXT document you are trying to open is empty:\r\nC:\\notes.txt";
    EXPECT_EQ(Complaint(), text);
    EXPECT_EQ(Animations(), calling);
    EXPECT_EQ(Spoken(), (Lines{EscapeMarkup(text)}));
}

TEST_F(ReadingTest, ACancelledDialogIsQuiet)
{
    for (const auto& read : {&Reading::OpenAndReadText, &Reading::OpenAndReadWord, &Reading::OpenAndPlayWave}) {
        fake.log.clear();
        (program.Reading.*read)();
        ASSERT_EQ(fake.log.size(), 3u);
        EXPECT_EQ(fake.log[0], "Status Prompting for file name...");
        EXPECT_EQ(fake.log[2], idle);
    }
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(ReadingTest, EachPromptHasItsTitleAndFilterAndRoutineNumber)
{
    OpenAndReadText();
    EXPECT_EQ(fake.log[1], textPrompt);
    EXPECT_EQ(CurrentRoutineId, 4);
    fake.log.clear();
    OpenAndReadWord();
    EXPECT_EQ(fake.log[1], wordPrompt);
    EXPECT_EQ(CurrentRoutineId, 3);
    fake.log.clear();
    OpenAndPlayWave();
    EXPECT_EQ(fake.log[1], wavePrompt);
    EXPECT_EQ(CurrentRoutineId, 5);
}

TEST_F(ReadingTest, ABlankFileNameIsNoFile)
{
    Choose("  ");
    OpenAndReadText();
    EXPECT_EQ(fake.log, (Lines{"Status Prompting for file name...", textPrompt}));
}

TEST_F(ReadingTest, AFileThatIsNotThereIsDeclined)
{
    Choose(" C:\\gone.txt ");
    OpenAndReadText();
    EXPECT_EQ(Complaint(), "File not found:\r\nC:\\gone.txt");
    EXPECT_EQ(Animations(), (Lines{"Decline"}));
    EXPECT_EQ(Spoken(), (Lines{EscapeMarkup("File not found:\r\nC:\\gone.txt")}));
}

TEST_F(ReadingTest, TheExtensionDecidesWithoutRegardToCase)
{
    ChooseText("hello", "C:\\notes.TXT");
    OpenAndReadText();
    EXPECT_EQ(Spoken(), (Lines{"\r\nhello"}));
    ChooseText("hello", "C:\\notes.text");
    OpenAndReadText();
    EXPECT_EQ(Complaint(), "The below document you are trying to open is not a TEXT document:\r\nC:\\notes.text");
    EXPECT_EQ(Animations(), calling);
}

TEST_F(ReadingTest, AnotherExtensionIsNoWordDocument)
{
    ChooseText("hello", "C:\\letter.docx");
    OpenAndReadWord();
    EXPECT_EQ(Complaint(), "The below document you are trying to open is not a WORD document:\r\nC:\\letter.docx");
    EXPECT_EQ(Animations(), calling);
}

TEST_F(ReadingTest, AWaveFileIsPlayedThroughTheCharacter)
{
    ChooseText("RIFF", "C:\\song.WAV");
    OpenAndPlayWave();
    EXPECT_EQ(fake.log, (Lines{"Status Prompting for file name...", wavePrompt, "Status Playing wave file...",
                               "Speak . from C:\\song.WAV"}));
    EXPECT_TRUE(CurrentRequest);
    ChooseText("ID3", "C:\\song.mp3");
    OpenAndPlayWave();
    EXPECT_EQ(Complaint(), "The below WAV file you are trying to play is not a WAV file:\r\nC:\\song.mp3");
}

TEST_F(ReadingTest, AnUnexpectedErrorIsReportedWithItsRoutineNumber)
{
    ChooseText("hello");
    fake.files.openErrors.emplace("C:\\notes.txt", PermissionDenied());
    EXPECT_TRUE(fake.Ends([this] { OpenAndReadText(); }));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Unhandled Error");
    EXPECT_NE(fake.windows.boxes[0].text.find("Error No. - 70\r\nError Description - Permission denied\r\n"
                                              "Function/Module ID - 4\r\n"),
              std::string::npos);
}

TEST_F(ReadingTest, AShortDocumentIsOnePart)
{
    ChooseWord("Dear reader,\rhello.\r");
    OpenAndReadWord();
    EXPECT_EQ(fake.log,
              (Lines{"Status Prompting for file name...", wordPrompt, "Status Opening Word Document. Please wait...",
                     "Word Create", "Word Visible 0", "Word Open C:\\letter.doc", "DoEvents",
                     "Status Reading part 1 of 1 . Click STOP to Cancel Reading...", "Show", "DoEvents",
                     "Speak \\Pit=50\\ \\Spd=156\\Dear reader,\rhello.\r", "Play RestPose",
                     "Status Closing Word Document. Please wait...", "Word Close", "Word Quit", "Status Busy..."}));
    EXPECT_EQ(CurrentRoutineId, 3);
}

TEST_F(ReadingTest, TheWordProcessorStartsBeforeTheDialogAndStaysUntilTheDocumentIsRead)
{
    ChooseWord("Dear reader,\rhello.\r");
    int inDialog = 0;
    int whileOpening = 0;
    fake.windows.whileOpenDialogIsUp = [&] { inDialog = fake.word.preparations; };
    fake.word.whileOpening = [&] { whileOpening = fake.word.preparations; };
    OpenAndReadWord();
    EXPECT_EQ(inDialog, 1);
    EXPECT_EQ(whileOpening, 1);
    EXPECT_EQ(fake.word.preparations, 0);
    EXPECT_EQ(fake.word.prepared, 1);
}

TEST_F(ReadingTest, WhatWasPreparedIsEndedWhenTheDialogIsCancelledOrItsFileIsRefused)
{
    OpenAndReadWord();
    Choose("C:\\gone.doc");
    OpenAndReadWord();
    ChooseText("hello", "C:\\letter.docx");
    OpenAndReadWord();
    EXPECT_EQ(fake.word.prepared, 3);
    EXPECT_EQ(fake.word.preparations, 0);
}

TEST_F(ReadingTest, OnlyTheDialogForWordDocumentsStartsTheWordProcessor)
{
    ChooseText("hello");
    OpenAndReadText();
    OpenAndPlayWave();
    EXPECT_EQ(fake.word.prepared, 0);
}

TEST_F(ReadingTest, TheWordProcessorIsToldWhichDocumentsAreSelected)
{
    ChooseWord("hello");
    fake.windows.filesSelected = {"C:\\a.doc", "C:\\notes.txt", "C:\\b.DOC"};
    OpenAndReadWord();
    EXPECT_EQ(fake.word.expected, (Lines{"C:\\a.doc", "C:\\b.DOC"}));
}

TEST_F(ReadingTest, ADocumentIsReadThoughNothingCanBePrepared)
{
    fake.word.prepares = false;
    fake.windows.filesSelected = {"C:\\letter.doc"};
    ChooseWord("hello");
    OpenAndReadWord();
    EXPECT_EQ(Spoken(), (Lines{"hello"}));
}

TEST_F(ReadingTest, PartsAndTheirCountForEachLength)
{
    struct Case {
        std::size_t length;
        Lines parts;
    };
    for (const Case& one :
         {Case{999, {"1 of 1"}}, Case{1000, {"1 of 1"}}, Case{1001, {"1 of 1"}}, Case{1020, {"1 of 1", "2 of 1"}},
          Case{1500, {"1 of 2", "2 of 2"}}, Case{2500, {"1 of 2", "2 of 2", "3 of 2"}},
          Case{3500, {"1 of 4", "2 of 4", "3 of 4", "4 of 4"}}}) {
        window.statuses.clear();
        // Nine letters and a blank, over and over; a part of a thousand ends in the tenth blank's place or just there.
        ChooseWord(Words(one.length));
        OpenAndReadWord();
        EXPECT_EQ(Parts(), one.parts) << one.length;
    }
    EXPECT_TRUE(fake.windows.boxes.empty());
}

TEST_F(ReadingTest, PartsAndTheirCountWithABlankBehindEveryThousandCharacters)
{
    struct Case {
        std::size_t length;
        Lines parts;
        std::vector<std::size_t> lengths; ///< of what is spoken
    };
    for (const Case& one :
         {Case{0, {"1 of 1"}, {}}, Case{1, {"1 of 1"}, {1}}, Case{999, {"1 of 1"}, {999}},
          Case{1000, {"1 of 1"}, {1000}}, Case{1001, {"1 of 1", "2 of 1"}, {1000}},
          Case{1500, {"1 of 2", "2 of 2"}, {1000, 499}}, Case{2500, {"1 of 2", "2 of 2", "3 of 2"}, {1000, 1000, 498}},
          Case{3000, {"1 of 3", "2 of 3", "3 of 3"}, {1000, 1000, 998}}}) {
        window.statuses.clear();
        fake.log.clear();
        // The blanks stand where a part may end: behind a thousand characters, and each time one further on.
        std::string text(one.length, 'x');
        for (std::size_t at = 1000; at < text.size(); at += 1001)
            text[at] = ' ';
        ChooseWord(text);
        OpenAndReadWord();
        EXPECT_EQ(Parts(), one.parts) << one.length;
        std::vector<std::size_t> lengths;
        for (const std::string& part : Spoken())
            if (part.starts_with('x'))
                lengths.push_back(part.size());
        EXPECT_EQ(lengths, one.lengths) << one.length;
    }
}

TEST_F(ReadingTest, ADocumentOfNothingAtAllIsComplainedAbout)
{
    for (const char* text : {"", "  ", "\r"}) {
        fake.windows.boxes.clear();
        fake.log.clear();
        window.statuses.clear();
        ChooseWord(text);
        OpenAndReadWord();
        // A paragraph's end is no blank, so it is spoken.
        if (std::string(text) == "\r") {
            EXPECT_EQ(Spoken(), (Lines{"\r"}));
            EXPECT_EQ(Parts(), (Lines{"1 of 1"}));
            EXPECT_TRUE(fake.windows.boxes.empty());
            EXPECT_EQ(window.statuses.back(), "Busy...");
            continue;
        }
        EXPECT_EQ(Parts(), (Lines{"1 of 1"}));
        EXPECT_EQ(Complaint(), "The below WORD document you are trying to open contains no text:\r\nC:\\letter.doc");
        EXPECT_EQ(Animations(), calling);
    }
}

TEST_F(ReadingTest, APartGoesOnToTheNextBlankWhichBelongsToNone)
{
    const std::string first = std::string(995, 'a') + "\tbcd\refg";
    ChooseWord(first + " second\r");
    OpenAndReadWord();
    EXPECT_EQ(Spoken(), (Lines{first, "second\r"}));
}

TEST_F(ReadingTest, NeitherATabNorAParagraphsEndAtTheSeamEndsAPart)
{
    for (const char* mark : {"\t", "\r", "\v", "\u00A0"}) {
        fake.log.clear();
        const std::string first = std::string(1000, 'a') + mark + "b";
        ChooseWord(first + " second\r");
        OpenAndReadWord();
        EXPECT_EQ(Spoken(), (Lines{first, "second\r"})) << mark;
    }
}

TEST_F(ReadingTest, ABlankThatEndsTheDocumentAtTheSeamLeavesAnEmptyLastPart)
{
    ChooseWord(std::string(1000, 'a') + " ");
    OpenAndReadWord();
    EXPECT_EQ(Spoken(), (Lines{std::string(1000, 'a')}));
    EXPECT_EQ(Parts(), (Lines{"1 of 1", "2 of 1"}));
}

TEST_F(ReadingTest, AnotherErrorOfTheWordProcessorIsReportedAndItStaysAsItIs)
{
    ChooseWord("hello");
    fake.word.openErrors.emplace("C:\\letter.doc", PermissionDenied());
    EXPECT_TRUE(fake.Ends([this] { OpenAndReadWord(); }));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Unhandled Error");
    EXPECT_EQ(std::count(fake.log.begin(), fake.log.end(), "Word Quit"), 0);
    EXPECT_EQ(fake.word.alive, 1);
}

TEST_F(ReadingTest, ABlankRightAtTheSeamEndsThePartThere)
{
    ChooseWord(std::string(1000, 'a') + " " + std::string(1000, 'b') + " c");
    OpenAndReadWord();
    EXPECT_EQ(Spoken(), (Lines{std::string(1000, 'a'), std::string(1000, 'b'), "c"}));
    EXPECT_EQ(Parts(), (Lines{"1 of 2", "2 of 2", "3 of 2"}));
}

TEST_F(ReadingTest, AWordOfThreeThousandLettersIsOnePart)
{
    ChooseWord(std::string(3000, 'w'));
    OpenAndReadWord();
    EXPECT_EQ(Spoken(), (Lines{std::string(3000, 'w')}));
    EXPECT_EQ(Parts(), (Lines{"1 of 3"}));
}

TEST_F(ReadingTest, LettersOutsideAsciiCountAsOneCharacterEach)
{
    std::string text;
    for (int i = 0; i < 1000; ++i)
        text += "ä";
    ChooseWord(text + " ende");
    OpenAndReadWord();
    EXPECT_EQ(Spoken(), (Lines{text, "ende"}));
}

TEST_F(ReadingTest, StopDuringTheSecondPartQueuesNoFurtherPart)
{
    ChooseWord(Words(5000));
    int shown = 0;
    fake.windows.whilePending = [&] {
        if (Parts().size() == 2 && ++shown == 1)
            StopRequested = True;
    };
    OpenAndReadWord();
    EXPECT_EQ(Parts(), (Lines{"1 of 5", "2 of 5"}));
    EXPECT_EQ(Spoken().size(), 2u);
    EXPECT_EQ(StopRequested, False);
    EXPECT_EQ(Lines(fake.log.end() - 4, fake.log.end()),
              (Lines{"Status Closing Word Document. Please wait...", "Word Close", "Word Quit", "Status Busy..."}));
}

TEST_F(ReadingTest, AStopFromBeforeDoesNotEndTheNextReading)
{
    StopRequested = True;
    ChooseWord(Words(2500));
    OpenAndReadWord();
    EXPECT_EQ(Parts().size(), 3u);
    EXPECT_EQ(StopRequested, False);
}

TEST_F(ReadingTest, StopWhileTheDocumentIsOpenedIsQuiet)
{
    ChooseWord("hello");
    fake.word.questions = 5;
    fake.word.whileOpening = [this] { StopRequested = True; };
    OpenAndReadWord();
    EXPECT_TRUE(Spoken().empty());
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_EQ(StopRequested, False);
    EXPECT_EQ(Lines(fake.log.end() - 2, fake.log.end()), (Lines{"Word Quit", idle}));
}

TEST_F(ReadingTest, ADocumentThatCannotBeOpenedIsQuiet)
{
    ChooseText("no document", "C:\\damaged.doc");
    OpenAndReadWord();
    EXPECT_TRUE(fake.windows.boxes.empty());
    EXPECT_EQ(Lines(fake.log.end() - 2, fake.log.end()), (Lines{"Word Quit", idle}));
}

TEST_F(ReadingTest, WithoutSoundATextFileLeavesTheProgramIdle)
{
    fake.agent.status = AudioStatus::NoSupport;
    ChooseText("hello");
    OpenAndReadText();
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(window.statuses.back(), "I am Idle now !");
}

TEST_F(ReadingTest, WithoutSoundADocumentIsRefusedOnceAndClosed)
{
    fake.agent.status = AudioStatus::Unknown;
    ChooseWord(Words(5000));
    OpenAndReadWord();
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Audio Output Problem");
    EXPECT_EQ(Parts(), (Lines{"1 of 5"}));
    EXPECT_EQ(Lines(fake.log.end() - 5, fake.log.end()), (Lines{"Status Closing Word Document. Please wait...",
                                                                "Word Close", "Word Quit", "Status Busy...", idle}));
}

TEST_F(ReadingTest, ADocumentWhoseSoundIsLostOnTheWayStaysBusyWithWhatIsQueued)
{
    ChooseWord(Words(5000));
    fake.windows.whilePending = [&] {
        if (Parts().size() == 2)
            fake.agent.status = AudioStatus::NoSupport;
    };
    OpenAndReadWord();
    EXPECT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_EQ(Parts(), (Lines{"1 of 5", "2 of 5", "3 of 5"}));
    EXPECT_EQ(Spoken().size(), 2u);
    EXPECT_EQ(window.statuses.back(), "Busy...");
}

TEST_F(ReadingTest, WithoutACharacterNothingIsReadAndTheProgramIsIdle)
{
    Character = nullptr;
    ChooseText("hello");
    OpenAndReadText();
    EXPECT_EQ(window.statuses.back(), "I am Idle now !");
    ChooseWord(Words(2500));
    OpenAndReadWord();
    EXPECT_EQ(window.statuses.back(), "I am Idle now !");
    EXPECT_EQ(Parts(), (Lines{"1 of 2"}));
    ChooseText("RIFF", "C:\\song.wav");
    OpenAndPlayWave();
    EXPECT_EQ(window.statuses.back(), "I am Idle now !");
}

TEST_F(ReadingTest, WithoutAWordProcessorTheErrorIsReported)
{
    ChooseWord("hello");
    fake.word.createError = CannotCreateObject();
    EXPECT_TRUE(fake.Ends([this] { OpenAndReadWord(); }));
    ASSERT_EQ(fake.windows.boxes.size(), 1u);
    EXPECT_NE(fake.windows.boxes[0].text.find("Error No. - 429\r\nError Description - ActiveX component can't create "
                                              "object\r\nFunction/Module ID - 3\r\n"),
              std::string::npos);
}

TEST_F(ReadingTest, EveryCharacterOfADocumentBelongsToOnePartOrIsTheBlankBehindIt)
{
    for (std::int32_t length = 0; length < 4000; length += 7) {
        const auto isBlank = [](std::int32_t at) { return at % 13 == 0; };
        WordPart part(length);
        std::int32_t next = 0;
        do {
            EXPECT_EQ(part.Start(), next);
            part.ExtendToBlank(isBlank);
            EXPECT_GE(part.End(), part.Start());
            EXPECT_LE(part.End(), length);
            EXPECT_TRUE(part.End() == length || isBlank(part.End()));
            next = part.End() + 1;
        } while (part.Next());
        EXPECT_GT(next, length);
    }
}

} // namespace

} // namespace voxmate
