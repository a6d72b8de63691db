// Saving as sound: what is handed to the recorder, and what the user is told of it.
#include "ReadingCase.h"

#include <utility>

namespace voxmate
{

namespace
{

using readers::Refusal;
using recording::News;
using Kind = News::Kind;

class SaveSoundTest : public ReadingCase
{
protected:
    void Begin()
    {
        ReadingCase::Begin();
        form.txtText.GetExcerpt = [this](TextBox::Excerpt) { return selection_; };
        fake.files.folders.insert("C:\\Sounds");
    }
    void OpenWindow() { Item("mnuSaveSound").UserClick(); }
    SaveSoundWindow& Window() { return extras.SoundWindow(); }
    std::string Progress() { return Window().lblProgress.Caption; }
    void Hear(const News& news, bool ended = false)
    {
        sounds.Tell(news);
        sounds.ended = ended;
        Window().tmrSound.Fire();
    }
    static News Of(Kind kind, Refusal refusal = Refusal::None)
    {
        News news;
        news.kind = kind;
        news.refusal = refusal;
        return news;
    }
    /// Saves the text "Some words." as C:\Sounds\a.ogg.
    void SaveText()
    {
        Begin();
        form.txtText.Text = "Some words.";
        OpenWindow();
        sounds.chosen = {"C:\\Sounds\\a.ogg"};
        Window().cmdSave.UserClick();
        ASSERT_EQ(sounds.running, 1);
    }
    /// Opens a document and chooses it.
    void OpenDocument(const std::string& path)
    {
        Document(path, {"One."});
        Open({path});
        OpenWindow();
        ASSERT_EQ(Window().optWhat.Selected(), SaveSoundWindow::Document);
    }

    std::string selection_;
};

TEST_F(SaveSoundTest, OnlyWhatIsThereCanBeChosen)
{
    Begin();
    OpenWindow();
    EXPECT_FALSE(Window().cmdSave.Enabled);
    EXPECT_FALSE(Window().optWhat(SaveSoundWindow::Document).Enabled);
    form.txtText.Text = "Some words.";
    OpenWindow();
    EXPECT_EQ(Window().optWhat.Selected(), SaveSoundWindow::Text);
    EXPECT_FALSE(Window().optWhat(SaveSoundWindow::Selection).Enabled);
    EXPECT_FALSE(Window().chkChapters.Enabled);
    EXPECT_TRUE(Window().cmdSave.Enabled);
    EXPECT_EQ(Window().comKind.Items(), (Lines{"Ogg Vorbis (.ogg), small", "MP3 (.mp3), small, for every player",
                                               "FLAC (.flac), exact", "Wave (.wav), exact, large"}));
}

TEST_F(SaveSoundTest, WithoutTheLibraryItSaysSo)
{
    Begin();
    sounds.kinds.clear();
    form.txtText.Text = "Some words.";
    OpenWindow();
    EXPECT_FALSE(Window().cmdSave.Enabled);
    EXPECT_EQ(Progress(), "Sound files need the library libsndfile, which is not installed.");
}

TEST_F(SaveSoundTest, TheTextIsSavedWithTheTagsItIsSpokenWith)
{
    Begin();
    form.txtText.Text = " It is C:\\ here, a first line of many words and more. ";
    OpenWindow();
    Window().comKind.UserSelect(2);
    sounds.chosen = {"C:\\Sounds\\a.flac"};
    Window().cmdSave.UserClick();
    EXPECT_TRUE(Logged("ShowSave Save Sound As... FLAC (*.flac)|*.flac It is C-- here, a first line of many.flac"));
    ASSERT_EQ(sounds.jobs.size(), 1U);
    const recording::Job& job = sounds.jobs[0];
    EXPECT_EQ(job.text, "\\Pit=50\\ \\Spd=156\\It is C:\\\\ here, a first line of many words and more.");
    EXPECT_EQ(job.document, "");
    EXPECT_EQ(job.kind, "flac");
    EXPECT_EQ(job.path, "C:\\Sounds\\a.flac");
    EXPECT_EQ(job.temporary, "C:\\Sounds\\.a.flac.part");
    EXPECT_EQ(job.voice, program.Character->TTSModeID());
}

TEST_F(SaveSoundTest, TheSelectionIsSaved)
{
    Begin();
    form.txtText.Text = "One two three.";
    selection_ = "two";
    OpenWindow();
    EXPECT_EQ(Window().optWhat.Selected(), SaveSoundWindow::Selection);
    sounds.chosen = {"C:\\Sounds\\a"};
    Window().cmdSave.UserClick();
    ASSERT_EQ(sounds.jobs.size(), 1U);
    EXPECT_EQ(sounds.jobs[0].text, "\\Pit=50\\ \\Spd=156\\two");
    EXPECT_EQ(sounds.jobs[0].path, "C:\\Sounds\\a.ogg") << "a name without an extension gets one";
}

TEST_F(SaveSoundTest, TheNameMayTellAnotherKind)
{
    Begin();
    form.txtText.Text = "Some words.";
    OpenWindow();
    sounds.chosen = {"C:\\Sounds\\a.WAV"};
    Window().cmdSave.UserClick();
    ASSERT_EQ(sounds.jobs.size(), 1U);
    EXPECT_EQ(sounds.jobs[0].kind, "wav");
    EXPECT_EQ(sounds.jobs[0].path, "C:\\Sounds\\a.WAV");
}

TEST_F(SaveSoundTest, AFileThatTheDialogDidNotAskForIsAskedFor)
{
    Begin();
    form.txtText.Text = "Some words.";
    fake.files.files.insert("C:\\Sounds\\a.ogg");
    OpenWindow();
    sounds.chosen = {"C:\\Sounds\\a", "C:\\Sounds\\a"};
    Window().cmdSave.UserClick();
    EXPECT_EQ(Boxes(), Lines{"Voxmate - Save as Sound: \"a.ogg\" is there already. Is it to be replaced?"});
    EXPECT_EQ(sounds.jobs.size(), 0U);
    fake.windows.answers = {vbYes};
    Window().cmdSave.UserClick();
    EXPECT_EQ(sounds.jobs.size(), 1U);
}

TEST_F(SaveSoundTest, WhereNothingCanBeSavedItSaysSo)
{
    Begin();
    form.txtText.Text = "Some words.";
    fake.files.folders.insert("C:\\Sounds\\b.ogg");
    OpenWindow();
    sounds.chosen = {"D:\\a.ogg", "C:\\Sounds\\b.ogg", ""};
    for (int i = 0; i < 3; ++i)
        Window().cmdSave.UserClick();
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - Save as Sound: Nothing can be saved in the following folder:\r\nD:",
                              "Voxmate - Save as Sound: There is a folder of this name:\r\nC:\\Sounds\\b.ogg"}));
    EXPECT_EQ(sounds.jobs.size(), 0U);
}

TEST_F(SaveSoundTest, TheDocumentReadLastIsSavedAndItsChaptersInAFolderOfTheirOwn)
{
    Begin();
    OpenDocument("C:\\Old book.epub");
    SpeakAll();
    EXPECT_EQ(Window().optWhat(SaveSoundWindow::Document).Caption.get(), "&Document \"Old book.epub\"");
    Window().chkChapters.UserClick(true);
    fake.windows.chosenFolder = "C:\\Sounds";
    fake.files.folders.insert("C:\\Sounds\\Old book");
    Window().cmdSave.UserClick();
    ASSERT_EQ(sounds.jobs.size(), 1U);
    EXPECT_EQ(sounds.jobs[0].document, "C:\\Old book.epub");
    EXPECT_TRUE(sounds.jobs[0].chapters);
    EXPECT_EQ(sounds.jobs[0].path, "C:\\Sounds\\Old book (2)");
    EXPECT_EQ(sounds.jobs[0].temporary, "C:\\Sounds\\.Old book (2).part");
    News done = Of(Kind::Done);
    done.files = 12;
    done.milliseconds = 3 * 3600'000 + 5 * 60'000;
    Hear(done, true);
    EXPECT_EQ(Progress(), "Saved 12 files in the folder Old book (2): 3 hours 5 minutes of sound");
    EXPECT_TRUE(Window().cmdSave.Enabled);
}

TEST_F(SaveSoundTest, ARecordingIsNoDocumentToBeSaved)
{
    Begin();
    File("C:\\song.ogg", {Refusal::Sound});
    Open({"C:\\song.ogg"});
    OpenWindow();
    EXPECT_FALSE(Window().optWhat(SaveSoundWindow::Document).Enabled);
}

TEST_F(SaveSoundTest, TellsHowFarItIs)
{
    SaveText();
    EXPECT_EQ(Progress(), "Saving a.ogg...");
    EXPECT_FALSE(Window().cmdSave.Enabled);
    EXPECT_FALSE(Window().comKind.Enabled);
    EXPECT_EQ(Window().cmdClose.Caption.get(), "Cancel");
    News news;
    news.spoken = 10;
    news.milliseconds = 61'000;
    Hear(news);
    EXPECT_EQ(Progress(), "Saving a.ogg, 1 minute of sound so far");
    news.all = 40;
    Hear(news);
    EXPECT_EQ(Progress(), "Saving a.ogg: 25 %, 1 minute of sound so far");
    news = Of(Kind::Done);
    news.files = 1;
    news.milliseconds = 122'000;
    Hear(news, true);
    EXPECT_EQ(Progress(), "Saved a.ogg: 2 minutes of sound");
    EXPECT_EQ(Window().cmdClose.AccessibleDescription.get(), Progress());
    EXPECT_EQ(sounds.running, 0);
    EXPECT_EQ(Window().cmdClose.Caption.get(), "Close");
    Window().cmdClose.UserClick();
    EXPECT_FALSE(Window().IsLoaded());
}

TEST_F(SaveSoundTest, TellsWhenAnotherVoiceHasSpoken)
{
    SaveText();
    News news = Of(Kind::Done);
    news.files = 1;
    news.milliseconds = 122'000;
    news.otherVoice = true;
    Hear(news, true);
    EXPECT_EQ(Progress(), "Saved a.ogg: 2 minutes of sound");
    EXPECT_EQ(Boxes(),
              Lines{"Voxmate - Save as Sound: The voice that is chosen could not speak, and another has spoken "
                    "in its place:\r\na.ogg"});
}

TEST_F(SaveSoundTest, CancelLeavesNothing)
{
    SaveText();
    Window().cmdClose.UserClick();
    EXPECT_EQ(sounds.running, 0);
    EXPECT_TRUE(Logged("Discard C:\\Sounds\\.a.ogg.part"));
    EXPECT_EQ(Progress(), "Cancelled. Nothing was saved.");
    EXPECT_TRUE(Window().IsLoaded());
    EXPECT_TRUE(Window().cmdSave.Enabled);
}

TEST_F(SaveSoundTest, ClosingTheWindowCancels)
{
    SaveText();
    Window().UserClose();
    EXPECT_EQ(sounds.running, 0);
    EXPECT_TRUE(Logged("Discard C:\\Sounds\\.a.ogg.part"));
    EXPECT_FALSE(Window().IsLoaded());
}

TEST_F(SaveSoundTest, SaysWhyItCannotBeSaved)
{
    const std::pair<Kind, const char*> reasons[] = {{Kind::DiskFull, "the disk is full"},
                                                    {Kind::NotWritten, "it cannot be written to the disk"},
                                                    {Kind::NoVoice, "the voice cannot speak it"}};
    SaveText();
    Lines texts;
    for (const auto& [kind, reason] : reasons) {
        Hear(Of(kind), true);
        EXPECT_EQ(Progress(), "Nothing was saved.");
        texts.push_back("Voxmate - Save as Sound: \"a.ogg\" cannot be saved: " + std::string(reason) + ".");
        EXPECT_EQ(Boxes(), texts);
        sounds.chosen = {"C:\\Sounds\\a.ogg"};
        Window().cmdSave.UserClick();
    }
    sounds.ended = true;
    Window().tmrSound.Fire();
    texts.emplace_back(
        "Voxmate - Save as Sound: \"a.ogg\" cannot be saved: the program that makes sound files has failed.");
    EXPECT_EQ(Boxes(), texts);
    sounds.starts = false;
    sounds.chosen = {"C:\\Sounds\\a.ogg"};
    Window().cmdSave.UserClick();
    texts.emplace_back(
        "Voxmate - Save as Sound: \"a.ogg\" cannot be saved: the program that makes sound files cannot be started.");
    EXPECT_EQ(Boxes(), texts);
    EXPECT_TRUE(Window().cmdSave.Enabled);
}

TEST_F(SaveSoundTest, SaysWhyADocumentIsNotReadOrNotToItsEnd)
{
    Begin();
    OpenDocument("C:\\book.pdf");
    sounds.chosen = {"C:\\Sounds\\a.ogg", "C:\\Sounds\\a.ogg"};
    Window().cmdSave.UserClick();
    Hear(Of(Kind::Refused, Refusal::Protected), true);
    Window().cmdSave.UserClick();
    Hear(Of(Kind::Done, Refusal::Damaged), true);
    EXPECT_EQ(Boxes(), (Lines{"Voxmate - Save as Sound: " + readers::Sentence(Refusal::Protected, "book.pdf", false),
                              "Voxmate - Save as Sound: " + readers::Sentence(Refusal::Damaged, "book.pdf", true)}));
}

TEST_F(SaveSoundTest, TheWordProcessorReadsWhatOnlyItCan)
{
    Begin();
    OpenDocument("C:\\letter.doc");
    fake.word.documents["C:\\letter.doc"] = "Dear reader.\rEnd";
    sounds.chosen = {"C:\\Sounds\\a.ogg"};
    Window().cmdSave.UserClick();
    Hear(Of(Kind::Refused, Refusal::NeedsConverter), true);
    ASSERT_EQ(sounds.jobs.size(), 2U);
    EXPECT_EQ(sounds.jobs[1].blocks, (std::vector<readers::Block>{Paragraph("Dear reader."), Paragraph("End")}));
    EXPECT_EQ(sounds.running, 1);
    sounds.ended = false;
    Hear(Of(Kind::Done), true);
    EXPECT_EQ(Boxes(), Lines{});
}

TEST_F(SaveSoundTest, StopWhileTheWordProcessorReadsCancels)
{
    Begin();
    OpenDocument("C:\\letter.doc");
    fake.word.documents["C:\\letter.doc"] = "Dear reader.\rEnd";
    fake.word.whileOpening = [this] { form.cmdStop.UserClick(); };
    sounds.chosen = {"C:\\Sounds\\a.ogg"};
    Window().cmdSave.UserClick();
    Hear(Of(Kind::Refused, Refusal::NeedsConverter), true);
    EXPECT_EQ(sounds.jobs.size(), 1U);
    EXPECT_EQ(sounds.running, 0);
    EXPECT_EQ(Progress(), "Cancelled. Nothing was saved.");
    EXPECT_TRUE(Window().cmdSave.Enabled);
    EXPECT_EQ(Boxes(), Lines{});
}

} // namespace

} // namespace voxmate
