#include "extras/Documents.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "extras/WordText.h"
#include "modules/Command.h"

#include <algorithm>
#include <chrono>
#include <optional>
#include <utility>
#include <vector>

namespace voxmate
{

namespace
{

using namespace std::chrono_literals;
using readers::Refusal;

// Until there is something to speak every millisecond counts, later a document comes in quicker than it is read.
constexpr int FirstInterval = 10; // milliseconds
constexpr int LaterInterval = 40; // milliseconds
constexpr int BlocksAtATime = 50; // some milliseconds' work
constexpr int BlocksToSkip = 500; // on the way to where a document was left
/// What has been read and not been heard: more than a thousand pages.
constexpr std::size_t MostAhead = std::size_t{16} << 20;
/// What is kept of a document that has ended, in case its text is asked for: some hundred pages.
constexpr std::size_t LargestKept = std::size_t{1} << 20;
/// A word as speeds are counted, with the blank behind it.
constexpr std::uint64_t CharactersPerWord = 6;

std::string Counted(std::uint64_t number, const char* what)
{
    return std::to_string(number) + " " + what + (number == 1 ? "" : "s");
}

} // namespace

std::string TimeText(std::uint64_t minutes)
{
    constexpr std::uint64_t hour = 60;
    if (minutes == 0)
        return "less than a minute";
    std::string text = minutes < hour ? "" : Counted(minutes / hour, "hour");
    if (minutes % hour != 0)
        text += (text.empty() ? "" : " ") + Counted(minutes % hour, "minute");
    return text;
}

Documents::Documents(ExtrasMenu& menu, Program& program, Form& form, Reader read, Identify identify, StateStore& state)
    : program_(program), read_(std::move(read)), identify_(std::move(identify)), places_(state), narrator_(program),
      tmrDocument_(&form, "tmrDocument", FirstInterval, false)
{
    tmrDocument_.Tick = [this] { GoOn(); };
    narrator_.Moved = [this] {
        HeedStop();
        if (!HasDocument())
            return;
        ShowStatus();
        // So the end of the program loses a paragraph at most.
        if (narrator_.AtParagraph() || narrator_.Paused())
            KeepPlace();
    };
    narrator_.WordBegun = [this] { Tell(); };
    narrator_.Ended = [this](Narrator::End end) {
        ended_ = end;
        tmrDocument_.Interval = FirstInterval;
        tmrDocument_.Enabled = true;
    };
    menu.BeginGroup();
    // Their keys have other meanings where no document is read: Alt+Down opens a drop-down list.
    const auto add = [&menu, this](const char* name, const char* caption, const char* key, Event act) {
        const auto click = [this, act = std::move(act)] {
            HeedStop();
            act();
        };
        Menu& item = menu.Add(name, caption, click);
        item.Shortcut = key;
        item.Enabled = false;
        ways_.push_back(&item);
    };
    add("mnuPause", "&Pause or Go On", "Ctrl+P", [this] { PauseOrGoOn(); });
    add("mnuSentenceBack", "&Back a Sentence", "Alt+Left", [this] { BySentence(-1); });
    add("mnuSentenceForward", "&Forward a Sentence", "Alt+Right", [this] { BySentence(1); });
    add("mnuParagraphBack", "Back a Pa&ragraph", "Alt+Up", [this] { ByParagraph(false); });
    add("mnuParagraphForward", "For&ward a Paragraph", "Alt+Down", [this] { ByParagraph(true); });
    add("mnuBeginning", "From the Begi&nning", "Alt+Home", [this] { FromBeginning(); });
}

void Documents::PauseOrGoOn()
{
    if (narrator_.Paused())
        narrator_.GoOn();
    else
        narrator_.Pause();
    Tell();
}

void Documents::BySentence(int sentences)
{
    narrator_.MoveBy(sentences);
    Tell();
}

void Documents::ByParagraph(bool forward, Narrator::Pausing pausing)
{
    narrator_.MoveByParagraph(forward, pausing);
    Tell();
}

void Documents::ReadFrom(std::size_t part, Narrator::Pausing pausing)
{
    HeedStop();
    if (HasDocument()) {
        narrator_.MoveToPart(part, pausing);
        Tell();
    } else if (!last_.empty() && !program_.Host.Files.FileExists(last_)) {
        // The window's text stays.
        TellFault(readers::Sentence(Refusal::NotFound, last_, false));
    } else if (!last_.empty()) {
        places_.Keep(fingerprint_, part);
        Put(last_);
    }
}

void Documents::ReadFromTime(double seconds)
{
    const std::optional<Times> times = Estimate();
    if (!times || times->Spoken + times->Left <= 0)
        return;
    const double share = std::clamp(seconds / (times->Spoken + times->Left), 0.0, 1.0);
    ReadFrom(narrator_.PartAtCharacter(static_cast<std::uint64_t>(share * double(narrator_.Characters()))),
             Narrator::Pausing::Stays);
}

void Documents::Tell() const
{
    for (const Event& act : watchers_)
        act();
}

// Of a very long document the beginning is no longer there, and is read anew.
void Documents::FromBeginning()
{
    if (!HasDocument())
        return;
    if (narrator_.HasBeginning() && !narrator_.Seeking()) {
        narrator_.MoveToBeginning();
        return;
    }
    const std::string file = file_;
    Leave();
    places_.Keep(fingerprint_, 0);
    waiting_.push_front(file);
    GoOn();
}

void Documents::Put(const std::string& file)
{
    HeedStop();
    // Who opens another document while one pauses wants to hear that, and now.
    if (narrator_.Paused()) {
        Leave();
        waiting_.push_front(file);
    } else {
        waiting_.push_back(file);
    }
    GoOn();
}

void Documents::SetFile(std::string file)
{
    file_ = std::move(file);
    for (Menu* way : ways_)
        way->Enabled = HasDocument();
    if (HasDocument()) {
        last_ = file_;
        name_ = NameOfPath(file_);
        ++number_;
    } else {
        Tell();
    }
}

bool Documents::IsCalledText(const std::string& file) const
{
    return UCase(program_.Host.Files.GetExtensionName(file)) == "TXT";
}

// Whether a text file that was opened is still to be heard. Keys and status line would otherwise tell of a document
// that is not.
bool Documents::TextIsRead() const
{
    return text_ && (text_->Status() == RequestStatus::Pending || text_->Status() == RequestStatus::InProgress);
}

// A Stop concerns all files that came before it.
void Documents::HeedStop()
{
    if (std::exchange(stops_, program_.StopCount) == program_.StopCount)
        return;
    waiting_.clear();
    if (HasDocument())
        Leave();
}

void Documents::Leave()
{
    KeepPlace();
    narrator_.Halt();
    ended_.reset();
    reading_.reset();
    SetFile("");
}

void Documents::KeepPlace()
{
    if (!narrator_.Seeking() && !plays_)
        places_.Keep(fingerprint_, narrator_.At());
}

// Works on the present document, and begins the next ones as far as that has ended. The word processor and the sentence
// about a document let events run, among which nothing else must begin.
void Documents::GoOn()
{
    const Command command(working_);
    if (!command.Begun())
        return;
    for (;;) {
        HeedStop();
        if (HasDocument())
            Work();
        HeedStop();
        if (HasDocument() || waiting_.empty() || (TextIsRead() && !IsCalledText(waiting_.front())))
            break;
        const std::string file = std::move(waiting_.front());
        waiting_.pop_front();
        Begin(file);
    }
    if (HasDocument())
        return;
    tmrDocument_.Interval = LaterInterval;
    tmrDocument_.Enabled = !waiting_.empty();
}

void Documents::Begin(const std::string& file)
{
    reading_ = read_(file);
    SetFile(file);
    sentence_.clear();
    plays_ = false;
    ended_.reset();
    // The reader is at work meanwhile.
    fingerprint_ = identify_(file);
    narrator_.Begin(places_.Find(fingerprint_));
    ShowStatus();
    tmrDocument_.Interval = FirstInterval;
    tmrDocument_.Enabled = true;
}

void Documents::Work()
{
    if (reading_ && !ended_) {
        TakeBlocks();
        Tell();
    }
    // What is to be said about it waits until another message has been closed.
    const bool tells = !sentence_.empty() || (plays_ && ended_ == Narrator::End::Failed);
    if (ended_ && !(tells && program_.Messages.IsBusy == True))
        Finish(*ended_);
}

void Documents::TakeBlocks()
{
    const int most = narrator_.Seeking() ? BlocksToSkip : BlocksAtATime;
    for (int i = 0; i < most && narrator_.Ahead() < MostAhead; ++i) {
        const std::optional<readers::Block> block = reading_->Next(0ms);
        if (block)
            Append(*block);
        else if (reading_->AtEnd())
            return EndOfReading();
        else
            break;
    }
}

void Documents::Append(const readers::Block& block)
{
    for (SpokenPart& part : PartsOf(block)) {
        narrator_.Append(std::move(part));
        if (!narrator_.Seeking())
            tmrDocument_.Interval = LaterInterval;
    }
}

// All of the document has come. What remains is to speak it.
void Documents::EndOfReading()
{
    const std::unique_ptr<readers::Reading> reading = std::move(reading_);
    tmrDocument_.Enabled = false;
    const bool hasNone = reading->Outcome() == Refusal::NoText || reading->Outcome() == Refusal::NoReader;
    if (hasNone && narrator_.Empty() && IsCalledText(file_)) {
        ReadByButton();
        return;
    }
    if (reading->Outcome() == Refusal::NeedsConverter) {
        ReadConverted();
    } else if (reading->Outcome() == Refusal::Sound) {
        plays_ = true;
        narrator_.Append({".", 0, true, file_});
    } else {
        sentence_ = reading->Sentence();
    }
    narrator_.Close();
}

// The button for text files needs no reader, and says what is wrong with an empty file.
void Documents::ReadByButton()
{
    const std::string file = file_;
    narrator_.Halt();
    SetFile("");
    program_.Reading.ReadText(file);
    text_ = program_.Voice.LastSpeakRequest;
}

void Documents::ReadConverted()
{
    std::vector<readers::Block> blocks;
    const Refusal refusal = ReadByWordProcessor(program_, file_, blocks);
    if (refusal != Refusal::None)
        sentence_ = readers::Sentence(refusal, file_, false);
    for (const readers::Block& block : blocks)
        Append(block);
    if (narrator_.Paused())
        ShowStatus();
    else
        program_.Main->SetStatus(StatusBusy);
}

// The document has been heard, or will not be.
void Documents::Finish(Narrator::End end)
{
    ended_.reset();
    if (end == Narrator::End::Done)
        places_.Keep(fingerprint_, 0);
    else
        KeepPlace();
    const std::string file = file_;
    SetFile("");
    reading_.reset();
    if (plays_ && end == Narrator::End::Failed)
        sentence_ = "\"" + std::string(NameOfPath(file)) +
                    "\" cannot be played: it is damaged, or of a kind that is not played here.";
    if (end == Narrator::End::Stopped) {
        waiting_.clear();
    } else if (!sentence_.empty()) {
        TellFault(sentence_);
        program_.Main->SetStatus(StatusIdle);
    }
}

void Documents::TellFault(const std::string& sentence)
{
    program_.Messages.Announce(sentence, vbExclamation, "Voxmate - File Error", "Decline");
}

void Documents::ForgetLong()
{
    if (!HasDocument() && narrator_.Size() > LargestKept)
        narrator_.Forget();
}

std::optional<Documents::Times> Documents::Estimate() const
{
    if (!HasDocument() || reading_ || plays_ || narrator_.Empty())
        return std::nullopt;
    const double speed = std::max<int>(program_.Settings.Speed, 1);
    constexpr double perMinute = 60;
    const auto seconds = [speed](std::uint64_t characters) {
        return static_cast<double>(characters) / (CharactersPerWord * speed) * perMinute;
    };
    const std::uint64_t left = narrator_.Left();
    return Times{seconds(narrator_.Characters() - left), seconds(left)};
}

bool Documents::IsOpening() const
{
    return narrator_.Seeking() || (!narrator_.Paused() && narrator_.Empty());
}

// "5 minutes left"; empty as long as that is not known.
std::string Documents::TimeLeft() const
{
    if (reading_ || plays_)
        return "";
    const auto speed = static_cast<std::uint64_t>(std::max<int>(program_.Settings.Speed, 1));
    return TimeText(narrator_.Left() / (CharactersPerWord * speed)) + " left";
}

std::string Documents::Progress() const
{
    if (!HasDocument())
        return "";
    if (IsOpening())
        return "Opening";
    const std::string left = TimeLeft();
    return (narrator_.Paused() ? "Paused" : plays_ ? "Playing" : "Reading") + (left.empty() ? "" : ", " + left);
}

void Documents::ShowStatus()
{
    const auto text = [this]() -> std::string {
        if (IsOpening())
            return "Opening Document. Please wait...";
        if (plays_ && !narrator_.Paused())
            return "Playing recording...";
        const std::string left = TimeLeft();
        // The name last, because it may be long and is known.
        return (narrator_.Paused() ? "Paused " : "Reading ") + (left.empty() ? "" : "(" + left + ") ") + name_ +
               " . Click STOP to Cancel Reading...";
    };
    program_.Main->SetStatus(text());
    Tell();
}

} // namespace voxmate
