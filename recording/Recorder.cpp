#include "recording/Recorder.h"

#include "agent/text/Markup.h"
#include "base/Text.h"
#include "extras/Spoken.h"
#include "recording/Names.h"
#include "speech/sound/SoundWriter.h"
#include "speech/text/Relay.h"
#include "speech/text/Wording.h"

#include <algorithm>
#include <chrono>
#include <deque>
#include <filesystem>
#include <optional>
#include <span>
#include <system_error>
#include <utility>
#include <vector>

namespace voxmate::recording
{

namespace
{

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using readers::Block;
using readers::BlockKind;
using readers::Refusal;
using Clock = std::chrono::steady_clock;

constexpr std::size_t MostAhead = std::size_t{16} << 20;
constexpr auto NewsInterval = 100ms;
/// Of a full disk less than this is left.
constexpr std::uintmax_t NearlyNothing = std::uintmax_t{1} << 20;

/// Ends the recording.
struct Ended {
    std::optional<News> news; ///< what is to be told; nothing: nobody listens
};

News Told(News::Kind kind)
{
    News news;
    news.kind = kind;
    return news;
}

/// The files, one after the other. What is not complete is deleted in the end.
class Files final : public speech::SampleSink
{
public:
    Files(const Job& job, int samplesPerSecond, const Tell& tell) : job_(job), rate_(samplesPerSecond), tell_(tell)
    {
        std::error_code error;
        fs::remove_all(job.temporary, error); // of a recording that was cut off
        if (job.chapters && !fs::create_directory(job.temporary, error))
            Fail();
    }
    ~Files() override
    {
        writer_.reset();
        std::error_code error;
        if (!kept_)
            fs::remove_all(job_.temporary, error);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;

    /// Begins the next file. Of a job without chapters there is only one.
    void Begin(const std::string& title)
    {
        End();
        ++count_;
        const std::string path =
            job_.chapters ? job_.temporary + "/" + ChapterName(count_, title, job_.kind) : job_.temporary;
        speech::SoundLabels labels{title, "", 0};
        if (job_.chapters) {
            labels.album = job_.title;
            labels.track = count_;
        }
        writer_ = speech::SoundWriter::Create(path, job_.kind, rate_, labels);
        if (!writer_)
            Fail();
    }
    bool Open() const { return writer_ != nullptr; }
    void End()
    {
        if (writer_ && !writer_->Close())
            Fail();
        writer_.reset();
    }
    /// Gives everything its name.
    void Keep()
    {
        End();
        std::error_code error;
        fs::rename(job_.temporary, job_.path, error);
        if (error)
            Fail();
        kept_ = true;
    }

    int Count() const { return count_; }
    std::uint64_t Milliseconds() const { return samples_ * 1000 / static_cast<std::uint64_t>(std::max(rate_, 1)); }

    bool Samples(std::span<const std::int16_t> samples) override
    {
        if (failed_ || gone_ || !writer_)
            return false;
        samples_ += samples.size();
        failed_ = !writer_->Write(samples);
        TellNow(false);
        return !failed_ && !gone_;
    }
    void Event(const speech::SpeechEvent& event) override
    {
        if (words_ > 0 && event.kind == speech::SpeechEvent::Kind::Word)
            within_ = bytes_ * static_cast<std::uint64_t>(std::max(event.value, 0)) / words_;
    }
    bool Wanted() const override { return !failed_ && !gone_; }

    /// What is spoken now: so many bytes with so many words.
    void BeginText(std::uint64_t bytes, int words)
    {
        bytes_ = bytes;
        words_ = static_cast<std::uint64_t>(std::max(words, 0));
        within_ = 0;
    }
    void EndText()
    {
        spoken_ += bytes_;
        within_ = bytes_ = 0;
        if (failed_)
            Fail();
        TellNow(false);
        if (gone_)
            throw Ended{};
    }
    void SetAll(std::uint64_t bytes) { all_ = bytes; }

private:
    const Job& job_;
    const int rate_;
    const Tell& tell_;
    std::unique_ptr<speech::SoundWriter> writer_;
    int count_ = 0;
    std::uint64_t samples_ = 0;
    std::uint64_t spoken_ = 0;
    std::uint64_t all_ = 0;
    std::uint64_t bytes_ = 0;
    std::uint64_t words_ = 0;
    std::uint64_t within_ = 0;
    Clock::time_point told_{};
    bool failed_ = false;
    bool gone_ = false;
    bool kept_ = false;

    [[noreturn]] void Fail() const
    {
        std::error_code error;
        const fs::space_info room = fs::space(fs::path(job_.path).parent_path(), error);
        throw Ended{Told(!error && room.capacity > 0 && room.available < NearlyNothing ? News::Kind::DiskFull
                                                                                       : News::Kind::NotWritten)};
    }

    void TellNow(bool always)
    {
        if (gone_ || (!always && Clock::now() - told_ < NewsInterval))
            return;
        told_ = Clock::now();
        News news;
        news.spoken = std::min(spoken_ + within_, all_ > 0 ? all_ : spoken_ + within_);
        news.all = all_;
        news.milliseconds = Milliseconds();
        gone_ = !tell_(news);
    }
};

/// The blocks of a document, read ahead of the voice.
class Blocks
{
public:
    Blocks(const Job& job, const Read& read)
    {
        if (job.blocks.empty()) {
            reading_ = read(job.document);
            return;
        }
        for (const Block& block : job.blocks)
            Put(block);
    }

    /// The next one; nothing at the end.
    std::optional<Block> Next()
    {
        // The reader goes on while a block is spoken; what it has ready is taken before the next one.
        while (reading_ && !reading_->AtEnd() && bytes_ < MostAhead) {
            std::optional<Block> block = reading_->Next(blocks_.empty() ? 100ms : 0ms);
            if (block)
                Put(std::move(*block));
            else if (!blocks_.empty())
                break;
        }
        if (blocks_.empty())
            return std::nullopt;
        Block block = std::move(blocks_.front());
        blocks_.pop_front();
        bytes_ -= block.text.size();
        return block;
    }
    /// The bytes of all texts; 0 while more may come.
    std::uint64_t All() const { return !reading_ || reading_->AtEnd() ? all_ : 0; }
    Refusal Outcome() const { return reading_ ? reading_->Outcome() : Refusal::None; }

private:
    std::unique_ptr<readers::Reading> reading_;
    std::deque<Block> blocks_;
    std::size_t bytes_ = 0; ///< of the texts that are kept
    std::uint64_t all_ = 0;

    void Put(Block block)
    {
        bytes_ += block.text.size();
        all_ += block.text.size();
        blocks_.push_back(std::move(block));
    }
};

class Speaker
{
public:
    Speaker(const Job& job, speech::VoiceCatalog& voices, const Read& read, const Tell& tell)
        : job_(job), voices_(voices), read_(read), tell_(tell), wording_(job.rules, job.shortens)
    {
    }

    News Run()
    {
        const speech::VoiceCatalog::Entry* const entry = voices_.Find(job_.voice);
        if (!entry)
            return Told(News::Kind::NoVoice);
        Files files(job_, entry->engine->SampleRate(entry->voice), tell_);
        const Refusal refusal = job_.text.empty() ? Document(*entry, files) : Text(*entry, files);
        if (files.Count() == 0) {
            News news = Told(News::Kind::Refused);
            news.refusal = refusal == Refusal::None ? Refusal::NoText : refusal;
            return news;
        }
        files.Keep();
        News news = Told(News::Kind::Done);
        news.milliseconds = files.Milliseconds();
        news.files = files.Count();
        news.refusal = refusal;
        return news;
    }

private:
    const Job& job_;
    speech::VoiceCatalog& voices_;
    const Read& read_;
    const Tell& tell_;
    const speech::Wording wording_;

    // The way of every utterance from its text with tags to the voice channel (agent::Character::BeginSpeak, and
    // speech::VoicePlayer::Start).
    void Speak(const speech::VoiceCatalog::Entry& entry, const std::string& markup, std::uint64_t bytes, Files& files)
    {
        const agent::ParsedText marked = agent::ParseMarkup(markup);
        files.BeginText(bytes, marked.words);
        const bool spoken =
            speech::SpeakInTurns(voices_, entry, wording_.Apply(marked.segments), files, job_.byLanguage);
        files.EndText();
        if (!spoken)
            throw Ended{Told(News::Kind::NoVoice)};
    }

    Refusal Text(const speech::VoiceCatalog::Entry& entry, Files& files)
    {
        files.SetAll(job_.text.size());
        files.Begin(job_.title);
        Speak(entry, job_.text, job_.text.size(), files);
        return Refusal::None;
    }

    Refusal Document(const speech::VoiceCatalog::Entry& entry, Files& files)
    {
        Blocks blocks(job_, read_);
        std::string title = job_.title;
        while (const std::optional<Block> block = blocks.Next()) {
            files.SetAll(blocks.All());
            const bool chapter = block->kind == BlockKind::Chapter;
            if (job_.chapters && (chapter || (block->kind == BlockKind::Heading && block->level == 1))) {
                // A chapter's mark is followed by its heading, and chapters without text by the next one.
                if (files.Open()) {
                    files.End();
                    title.clear();
                }
                if (chapter && !block->label.empty())
                    title = block->label;
                else if (!chapter && (title.empty() || title == job_.title))
                    title = block->text;
            }
            const std::vector<SpokenPart> parts = PartsOf(*block);
            std::uint64_t left = block->text.size();
            for (const SpokenPart& part : parts) {
                if (!files.Open())
                    files.Begin(title);
                const std::uint64_t bytes =
                    &part == &parts.back() ? left : std::min<std::uint64_t>(left, part.text.size());
                left -= bytes;
                Speak(entry, MarkupOf(part, job_.prefix), bytes, files);
            }
        }
        return blocks.Outcome();
    }
};

} // namespace

void Record(const Job& job, speech::VoiceCatalog& voices, const Read& read, const Tell& tell)
{
    std::optional<News> news;
    try {
        news = Speaker(job, voices, read, tell).Run();
    } catch (const Ended& ended) {
        news = ended.news;
    }
    if (news)
        tell(*news);
}

} // namespace voxmate::recording
