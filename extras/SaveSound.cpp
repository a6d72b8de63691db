#include "extras/SaveSound.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "base/Words.h"
#include "extras/WordText.h"
#include "modules/BrowseFolder.h"
#include "modules/Command.h"
#include "recording/Names.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace voxmate
{

namespace
{

using readers::Refusal;
using recording::Job;
using recording::News;

constexpr const char* BoxTitle = "Voxmate - Save as Sound";

struct Kind {
    const char* extension;
    const char* name;
    const char* remark;
};
constexpr Kind Kinds[] = {{"ogg", "Ogg Vorbis", "small"},
                          {"mp3", "MP3", "small, for every player"},
                          {"flac", "FLAC", "exact"},
                          {"wav", "Wave", "exact, large"}};

const Kind& KindOf(const std::string& extension)
{
    return *std::ranges::find(Kinds, extension, [](const Kind& kind) { return std::string(kind.extension); });
}

// "less than a minute", "12 minutes".
std::string Length(std::uint64_t milliseconds)
{
    constexpr std::uint64_t minute = 60'000;
    return TimeText(milliseconds / minute) + " of sound";
}

std::string NameOf(const std::string& path)
{
    return std::string(NameOfPath(path));
}

} // namespace

SaveSoundWindow::SaveSoundWindow(Program& program, frmMain& main, Documents& documents, const SoundHost& host)
    : Form(program.Host.Windows, "frmSaveSound"), program_(program), main_(main), documents_(documents), host_(host)
{
    Caption = "Save as Sound";
    lblKind.Buddy = &comKind;
    lblProgress.Wraps = true;
    cmdSave.IsDefault = true;
    cmdClose.IsCancel = true;
    Arrangement = Column({
        Framed(fraWhat, Column({Item(optWhat(Document)), Item(optWhat(Selection)), Item(optWhat(Text))})),
        Row({Item(lblKind), Item(comKind).Stretch(1)}),
        Item(chkChapters),
        Item(lblProgress).Min(420, 0).Stretch(1),
        Row({Space(), Item(cmdSave), Item(cmdClose)}),
    });
    optWhat.Click = [this](int) { ShowState(); };
    cmdSave.Click = [this] { Save(); };
    cmdClose.Click = [this] { Close(); };
    tmrSound.Tick = [this] { TakeNews(); };
}

void SaveSoundWindow::Form_Load()
{
    kinds_ = host_.Kinds();
    comKind.Clear();
    for (const std::string& extension : kinds_) {
        const Kind& kind = KindOf(extension);
        comKind.AddItem(std::string(kind.name) + " (." + extension + "), " + kind.remark);
    }
    comKind.ListIndex = kinds_.empty() ? -1 : 0;
    lblProgress.Caption = kinds_.empty() ? "Sound files need the library libsndfile, which is not installed." : "";
}

// Nothing is left of what is not complete.
void SaveSoundWindow::Form_Unload()
{
    cancelled_ = true;
    tmrSound.Enabled = false;
    run_.reset();
}

void SaveSoundWindow::Open()
{
    Load();
    Look();
    Show();
    Activate();
}

// Finds out what there is to be saved.
void SaveSoundWindow::Look()
{
    if (run_ || asking_)
        return;
    document_ = documents_.IsRecording() ? "" : documents_.Path();
    optWhat(Document).Caption = document_.empty() ? "&Document" : "&Document \"" + NameOf(document_) + "\"";
    const bool has[] = {!document_.empty(), HasWord(TextOf(Selection)), HasWord(TextOf(Text))};
    int first = Text;
    for (int what = Text; what >= Document; --what) {
        optWhat(what).Enabled = has[what];
        if (has[what])
            first = what;
    }
    if (const int chosen = optWhat.Selected(); chosen < 0 || !has[chosen])
        optWhat.Select(first);
    ShowState();
}

void SaveSoundWindow::ShowState()
{
    const bool works = run_ || asking_;
    const int what = optWhat.Selected();
    if (works)
        optWhat.Enable(false);
    comKind.Enabled = !works;
    chkChapters.Enabled = !works && what == Document;
    cmdSave.Enabled = !works && !kinds_.empty() && what >= 0 && optWhat(what).Enabled;
    cmdClose.Caption = run_ ? "Cancel" : "Close";
}

void SaveSoundWindow::Tell(const std::string& text)
{
    lblProgress.Caption = text;
    cmdClose.AccessibleDescription = text;
}

std::string SaveSoundWindow::TextOf(int what) const
{
    if (what == Text)
        return main_.txtText.Text;
    const auto get = main_.txtText.GetExcerpt;
    return get ? get(TextBox::Excerpt::Selection) : "";
}

// A name for the file: the document's, or the first words of the text.
std::string SaveSoundWindow::Proposed(int what) const
{
    constexpr std::size_t longest = 40;
    if (what == Document)
        return recording::FileTitle(program_.Host.Files.GetBaseName(document_));
    std::string title = recording::FileTitle(Left(TextOf(what), 4 * longest));
    if (Len(title) > longest) {
        title = Left(title, longest);
        title.resize(std::min(title.rfind(' '), title.size()));
    }
    return title.empty() ? "Text" : recording::FileTitle(title);
}

void SaveSoundWindow::Save()
{
    const Command command(asking_);
    if (!command.Begun() || run_)
        return;
    const int what = optWhat.Selected();
    Job job;
    job.title = Proposed(what);
    job.kind = kinds_.at(static_cast<std::size_t>(std::max<int>(comKind.ListIndex, 0)));
    job.chapters = what == Document && chkChapters.Value == 1;
    const SettingsRecord& settings = program_.Settings;
    job.prefix = VoicePrefix(settings.Pitch, settings.Speed, settings.Whisper == True);
    job.voice = program_.Character ? program_.Character->TTSModeID() : "";
    job.voiceName = settings.LastSpeechEngine;
    if (what == Document)
        job.document = document_;
    else if (const std::string text = Trim(TextOf(what)); HasWord(text))
        job.text = job.prefix + EscapeMarkup(text);
    else
        return;
    cancelled_ = false;
    if (Ask(job) && !cancelled_)
        Start(std::move(job));
}

// Asks for a place, and says why one will not do. False: nothing is to be saved.
bool SaveSoundWindow::Ask(Job& job)
{
    if (!(job.chapters ? AskForFolder(job) : AskForFile(job)))
        return false;
    const std::string separator = program_.PathSeparator();
    const std::size_t end = job.path.rfind(separator);
    const std::string folder = job.path.substr(0, std::max<std::size_t>(end, 1));
    const std::string name = job.path.substr(end + separator.size());
    job.temporary = job.path.substr(0, end + separator.size()) + "." + name + ".part";
    if (program_.Host.Files.FolderWritable(folder))
        return true;
    program_.Messages.Announce("Nothing can be saved in the following folder:" + std::string(CrLf) + folder,
                               vbExclamation, BoxTitle, "Decline");
    return false;
}

bool SaveSoundWindow::AskForFile(Job& job)
{
    const Kind& kind = KindOf(job.kind);
    const std::string pattern = std::string("*.") + kind.extension;
    job.path = host_.AskForFile({std::string(kind.name) + " (" + pattern + ")|" + pattern,
                                 "Save Sound As...",
                                 false,
                                 job.title + "." + job.kind,
                                 {}});
    if (job.path.empty())
        return false;
    // The name that is typed may tell another kind.
    FileSystem& files = program_.Host.Files;
    const std::string extension = LowerAscii(files.GetExtensionName(job.path));
    if (std::ranges::find(kinds_, extension) != kinds_.end()) {
        job.kind = extension;
    } else {
        job.path += "." + job.kind;
        if (files.FileExists(job.path) &&
            program_.Host.Windows.MsgBox("\"" + NameOf(job.path) + "\" is there already. Is it to be replaced?",
                                         vbExclamation + vbYesNo + vbDefaultButton2, BoxTitle) != vbYes)
            return false;
    }
    if (!files.FolderExists(job.path))
        return true;
    program_.Messages.Announce("There is a folder of this name:" + std::string(CrLf) + job.path, vbExclamation,
                               BoxTitle, "Decline");
    return false;
}

// The chapters get a new folder, so that nothing in another one is replaced.
bool SaveSoundWindow::AskForFolder(Job& job)
{
    std::string folder =
        BrowseForFolder(program_.Host.Windows, "Folder in which the chapters' folder is to be made:", "");
    if (folder.empty())
        return false;
    if (const std::string separator = program_.PathSeparator(); !folder.ends_with(separator))
        folder += separator;
    const auto taken = [this](const std::string& path) {
        return program_.Host.Files.FileExists(path) || program_.Host.Files.FolderExists(path);
    };
    job.path = folder + job.title;
    for (int number = 2; taken(job.path); ++number)
        job.path = folder + job.title + " (" + std::to_string(number) + ")";
    return true;
}

void SaveSoundWindow::Start(Job job)
{
    const std::string name = NameOf(job.path);
    try {
        run_ = std::make_unique<SoundRun>(host_, std::move(job));
    } catch (const RuntimeError&) {
        program_.Messages.Announce("\"" + name +
                                       "\" cannot be saved: the program that makes sound files cannot be "
                                       "started.",
                                   vbExclamation, BoxTitle, "Decline");
        return;
    }
    Tell("Saving " + name + "...");
    tmrSound.Enabled = true;
    ShowState();
    cmdClose.SetFocus();
}

// Cancels what is being saved, else closes the window.
void SaveSoundWindow::Close()
{
    cancelled_ = true;
    if (!run_) {
        if (!asking_)
            Unload();
        return;
    }
    tmrSound.Enabled = false;
    run_.reset();
    Tell("Cancelled. Nothing was saved.");
    Look();
}

void SaveSoundWindow::TakeNews()
{
    if (!run_)
        return;
    const bool ends = run_->AtEnd();
    const std::optional<News> news = run_->Next();
    if (news && news->kind != News::Kind::Progress) {
        End(*news);
    } else if (news) {
        const std::string share = news->all > 0 ? ": " + std::to_string(news->spoken * 100 / news->all) + " %" : "";
        Tell("Saving " + NameOf(run_->Job().path) + share + ", " + Length(news->milliseconds) + " so far");
    } else if (ends) {
        Fail("the program that makes sound files has failed");
    }
}

void SaveSoundWindow::End(const News& news)
{
    const Job job = run_->Job();
    switch (news.kind) {
    case News::Kind::Refused:
        if (news.refusal == Refusal::NeedsConverter && job.blocks.empty())
            return Convert();
        tmrSound.Enabled = false;
        run_.reset();
        Tell("Nothing was saved.");
        Look();
        program_.Messages.Announce(readers::Sentence(news.refusal, job.document, false), vbExclamation, BoxTitle,
                                   "Decline");
        return;
    case News::Kind::NoVoice:
        return Fail("the voice cannot speak it");
    case News::Kind::DiskFull:
        return Fail("the disk is full");
    case News::Kind::NotWritten:
        return Fail("it cannot be written to the disk");
    case News::Kind::Progress:
    case News::Kind::Done:
        break;
    }
    tmrSound.Enabled = false;
    run_.reset();
    const std::string files = news.files == 1 ? "1 file" : std::to_string(news.files) + " files";
    Tell("Saved " + (job.chapters ? files + " in the folder " : "") + NameOf(job.path) + ": " +
         Length(news.milliseconds));
    Look();
    if (news.otherVoice)
        program_.Messages.Announce("The voice that is chosen could not speak, and another has spoken in its place:" +
                                       std::string(CrLf) + NameOf(job.path),
                                   vbExclamation, BoxTitle, "Decline");
    if (news.refusal != Refusal::None)
        program_.Messages.Announce(readers::Sentence(news.refusal, job.document, true), vbExclamation, BoxTitle,
                                   "Decline");
}

void SaveSoundWindow::Fail(const std::string& reason)
{
    const std::string name = NameOf(run_->Job().path);
    tmrSound.Enabled = false;
    run_.reset();
    Tell("Nothing was saved.");
    Look();
    program_.Messages.Announce("\"" + name + "\" cannot be saved: " + reason + ".", vbExclamation, BoxTitle, "Decline");
}

// The word processor reads what no reader of ours does. Events run meanwhile.
void SaveSoundWindow::Convert()
{
    tmrSound.Enabled = false;
    Job job = run_->Job();
    std::vector<readers::Block> blocks;
    Refusal refusal = Refusal::None;
    const std::uint32_t stops = program_.StopCount;
    {
        const Command command(asking_);
        refusal = ReadByWordProcessor(program_, job.document, blocks);
    }
    program_.Main->SetStatus(StatusIdle);
    if (!IsLoaded())
        return;
    if (cancelled_ || program_.StopCount != stops) {
        run_.reset();
        Tell("Cancelled. Nothing was saved.");
        return Look();
    }
    run_.reset();
    if (refusal != Refusal::None || blocks.empty()) {
        Tell("Nothing was saved.");
        Look();
        program_.Messages.Announce(
            readers::Sentence(refusal == Refusal::None ? Refusal::NoText : refusal, job.document, false), vbExclamation,
            BoxTitle, "Decline");
        return;
    }
    job.blocks = std::move(blocks);
    Start(std::move(job));
}

SaveSound::SaveSound(ExtrasMenu& menu, Program& program, frmMain& main, Documents& documents, SoundHost host)
    : host_(std::move(host)), window_(program, main, documents, host_)
{
    menu.BeginGroup();
    menu.Add("mnuSaveSound", "Sa&ve as Sound...", [this] { window_.Open(); }).Shortcut = "Ctrl+S";
}

} // namespace voxmate
