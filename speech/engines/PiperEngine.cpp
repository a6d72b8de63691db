// Neural voices in Piper's form: eSpeak NG's phonemes, as the numbers of the voice's own table, through its network.
#include "base/Text.h"
#include "speech/Engine.h"
#include "speech/engines/EspeakPhonemes.h"
#include "speech/engines/PiperModel.h"
#include "speech/engines/PiperVoiceFile.h"
#include "speech/player/Flattener.h"
#include "speech/player/Shaper.h"
#include "speech/sound/Mouths.h"
#include "speech/sound/SpeechMeasure.h"
#include "speech/text/MarkedText.h"
#include "speech/text/ModeId.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <new>
#include <optional>
#include <set>
#include <system_error>
#include <utility>

namespace voxmate::speech
{

namespace
{

namespace fs = std::filesystem;

// The text by which a voice's own speed and pitch are measured when it is loaded, and how many words it has. A voice
// says it faster than the calibration's longer prose by MeasuredShare (en_US-joe-medium, which says that at 216 words a
// minute).
constexpr std::u32string_view MeasuredProse =
    U"When the rain had stopped at last, the old man took his stick from behind the door and went out to look at the "
    U"garden. Every leaf was shining. Members said that more than four hundred people had signed the petition, and the "
    U"additional cost will be paid from the budget for public buildings.";
constexpr int MeasuredWords = 54;
constexpr double MeasuredShare = 1.109;
// The share of the pitch measured that is heard in the calibration's longer prose (the same voice).
constexpr double HeardPitch = 0.935;
// The range of lengths within which a voice still sounds like itself; beyond it sonic does the rest.
constexpr double ShortestLength = 0.6;
constexpr double LongestLength = 1.8;
// The most phonemes that go through the network at once: about ten seconds of speech. A longer sentence is divided
// between clauses.
constexpr std::size_t MostPhonemes = LongestClause;
// Seconds of silence kept before the first word of a text.
constexpr double KeptSilence = 0.03;
// A stressed word is amplified by this factor (5 dB).
constexpr double StressGain = 1.78;
// How loud the loudest sample of the measured prose becomes, of full scale. This brings the voices' loudness near that
// of the other engines' and leaves 3 dB for louder words.
constexpr double Level = 0.7;

bool IsPause(char32_t c)
{
    return std::u32string_view(U".?!,:;").find(c) != std::u32string_view::npos;
}

/// What goes through the network at once: phonemes, where they come from, and the numbers for them.
struct Chunk {
    std::u32string phonemes;
    std::vector<std::size_t> source;
    std::vector<std::int64_t> numbers;
    std::vector<std::size_t> place; ///< of each phoneme, its first number
};

void AppendClause(Chunk& chunk, const Clause& clause)
{
    chunk.phonemes += clause.phonemes;
    chunk.source.insert(chunk.source.end(), clause.source.begin(), clause.source.end());
}

// The clauses as chunks: one for each sentence, but one for the first clause of a text, so that it is heard soon.
std::vector<Chunk> ChunksOf(const std::vector<Clause>& clauses, const PiperVoiceFile& voice, bool first)
{
    std::vector<Chunk> chunks;
    bool open = false;
    for (const Clause& clause : clauses) {
        if (!open || chunks.back().phonemes.size() + clause.phonemes.size() > MostPhonemes)
            chunks.emplace_back();
        AppendClause(chunks.back(), clause);
        open = !clause.endsSentence && !std::exchange(first, false);
    }
    std::erase_if(chunks, [](const Chunk& chunk) {
        return chunk.phonemes.find_first_not_of(U" .?!,:;") == std::u32string::npos;
    });
    for (Chunk& chunk : chunks)
        chunk.numbers = NumbersOf(voice, chunk.phonemes, chunk.place);
    return chunks;
}

/// What has been heard and counted of a voice once, at its own speed.
struct Manner {
    double wordsPerMinute = 0;
    double hertz = 0;         ///< the median of its pitch; 0 when none was found
    double gain = 0;          ///< of its samples, so that it is as loud as the other engines' voices
    std::vector<float> steps; ///< of the measured prose; empty when the network does not tell

    /// How much longer the prose is at `length` than at 1. Because each number is heard for whole steps, that is not in
    /// proportion.
    double Longer(double length) const
    {
        double own = 0;
        double wanted = 0;
        for (const float step : steps) {
            own += std::ceil(static_cast<double>(step));
            wanted += std::ceil(static_cast<double>(step) * length);
        }
        return own > 0 ? wanted / own : length;
    }

    /// The length at which the prose is `longer` times as long as at 1.
    double LengthFor(double longer) const
    {
        double below = ShortestLength;
        double above = LongestLength;
        for (int i = 0; i < 20; ++i) {
            const double middle = (below + above) / 2;
            (Longer(middle) < longer ? below : above) = middle;
        }
        return (below + above) / 2;
    }
};

struct LoadedVoice {
    std::shared_ptr<const PiperVoiceFile> file;
    std::int64_t speaker = 0;
    std::unique_ptr<PiperModel> model;
    Manner manner;
};

/// A stretch on its way to the shaper.
struct Stretch {
    WordFollower words;
    std::int64_t length = 0; ///< samples so far
};

class PiperEngine final : public Engine
{
public:
    using Told = std::function<void(const std::string&)>;

    PiperEngine(std::vector<fs::path> folders, fs::path runtime, Told leftOut, Told failed)
        : folders_(std::move(folders)), runtime_(std::move(runtime)), leftOut_(std::move(leftOut)),
          failed_(std::move(failed))
    {
    }

    const std::vector<Voice>& Voices() override
    {
        if (!std::exchange(listed_, true))
            List();
        return voices_;
    }

    int SampleRate(const Voice& voice) override
    {
        const auto found = files_.find(voice.key);
        return found == files_.end() ? 22050 : found->second.file->sampleRate;
    }

    bool Synthesize(const Voice& voice, std::span<const Segment> segments, SampleSink& sink) override
    {
        const auto found = files_.find(voice.key);
        if (found == files_.end())
            return !sink.Wanted();
        try {
            return Load(voice.key, found->second, sink) ? SpeakAll(segments, sink) : !sink.Wanted();
        } catch (const std::bad_alloc&) {
            // With a network loaded the rest of the program might get none either.
            return GiveUp(found->second, "there is not enough memory for it.", sink);
        } catch (const std::system_error&) {
            return GiveUp(found->second, "the system allows no more threads, and it takes one.", sink);
        }
    }

    void Rest() override { loaded_.reset(); }

private:
    struct File {
        std::shared_ptr<const PiperVoiceFile> file; ///< the same for all speakers of a network
        std::int64_t speaker = 0;
    };

    bool GiveUp(const File& file, const std::string& why, const SampleSink& sink)
    {
        loaded_.reset();
        failed_(OneLine(file.file->model.string()) + ": " + why);
        return !sink.Wanted();
    }

    // Says all segments with the loaded voice; false when that fails.
    bool SpeakAll(std::span<const Segment> segments, SampleSink& sink)
    {
        Shaper shaper(loaded_->file->sampleRate, sink);
        Arranger arranger(segments);
        std::optional<Stretch> stretch;
        bool first = true;
        while (const auto part = arranger.Next()) {
            if (part->pauseMilliseconds > 0) {
                if (!shaper.Silence(part->pauseMilliseconds))
                    return true;
                continue;
            }
            if (!stretch) {
                stretch.emplace();
                shaper.Begin(PrepareFor(part->prosody));
            }
            bool failed = false;
            if (!Speak(*part, *stretch, first, shaper, sink, failed))
                return !failed;
            if (part->end == MarkedText::End::Stretch)
                stretch.reset();
        }
        shaper.EventHere(SpeechEvent::Kind::Mouth, 0);
        return true;
    }

    void List()
    {
        const std::vector<fs::path> models = FindPiperModels(folders_);
        if (models.empty() || !PiperModel::Available(runtime_))
            return;
        std::set<fs::path> names;
        for (const fs::path& model : models) {
            if (names.contains(model.filename()))
                continue;
            std::string why;
            std::optional<PiperVoiceFile> read = ReadPiperVoice(model, why);
            if (!read) {
                leftOut_(why);
                continue;
            }
            names.insert(model.filename());
            const auto file = std::make_shared<const PiperVoiceFile>(std::move(*read));
            const std::size_t speakers = std::max<std::size_t>(1, file->speakers.size());
            for (std::size_t speaker = 0; speaker < speakers; ++speaker)
                Add(file, speaker);
        }
    }

    void Add(const std::shared_ptr<const PiperVoiceFile>& shared, std::size_t speaker)
    {
        const PiperVoiceFile& file = *shared;
        Voice voice;
        voice.name = "Piper " + file.name;
        if (!file.speakers.empty())
            voice.name += " " + file.speakers[speaker];
        std::string about = file.place.empty() ? file.language : file.place;
        if (!file.quality.empty())
            about += ", " + file.quality;
        voice.name += " (" + about + ")";
        voice.key = file.model.string() + "#" + std::to_string(speaker);
        voice.modeId = ModeIdOf("piper", file.model.filename().string() + "#" + std::to_string(speaker));
        voice.language = file.language;
        voice.origin = Voice::Origin::Added;
        files_[voice.key] = {shared, static_cast<std::int64_t>(speaker)};
        voices_.push_back(std::move(voice));
    }

    // Makes the voice the loaded one; only one is kept, because each takes as much memory as the whole program.
    bool Load(const std::string& key, const File& file, const SampleSink& sink)
    {
        if (!loaded_ || loaded_->file->model != file.file->model) {
            loaded_.reset();
            std::string why;
            LoadedVoice loaded;
            loaded.file = file.file;
            loaded.model = PiperModel::Load(file.file->model, runtime_, why);
            if (!loaded.model) {
                failed_(why);
                return false;
            }
            loaded_ = std::move(loaded);
        }
        loaded_->speaker = file.speaker;
        auto known = manners_.find(key);
        if (known == manners_.end()) {
            std::optional<Manner> manner = Listen(sink);
            if (!manner) {
                if (sink.Wanted())
                    failed_(OneLine(file.file->model.string()) + ": it cannot be used: nothing was heard of it.");
                loaded_.reset();
                return false;
            }
            known = manners_.emplace(key, std::move(*manner)).first;
        }
        loaded_->manner = known->second;
        return true;
    }

    // Lets the voice say the prose, for its own speed, pitch and loudness. The first sentence is heard; of the others
    // the network only tells how long they are, if it does. Nothing when it was stopped or the voice cannot be used.
    std::optional<Manner> Listen(const SampleSink& sink) const
    {
        const PiperVoiceFile& file = *loaded_->file;
        const std::vector<Chunk> chunks = ChunksOf(ClausesOf(file.espeakVoice, MeasuredProse), file, false);
        Manner manner;
        std::vector<float> sound;
        double samples = 0;
        for (const Chunk& chunk : chunks) {
            const bool isFirst = &chunk == &chunks.front();
            bool enough = false;
            bool told = false;
            const auto take = [&](const PiperModel::Piece& piece) {
                if (!std::exchange(told, true)) {
                    manner.steps.insert(manner.steps.end(), piece.steps.begin(), piece.steps.end());
                    const std::vector<std::int64_t> places = Places(chunk, piece);
                    // Without the silence before the first phoneme and that of the full stop.
                    const std::int64_t end = &chunk == &chunks.back() ? *(places.end() - 2) : places.back();
                    samples += static_cast<double>(end - (isFirst ? places.front() : 0));
                }
                if (isFirst)
                    sound.insert(sound.end(), piece.samples.begin(), piece.samples.end());
                enough = !isFirst && !piece.steps.empty();
                return !enough;
            };
            if (!loaded_->model->Speak(
                    chunk.numbers, {file.noiseScale, file.lengthScale, 0}, loaded_->speaker,
                    [&sink] { return sink.Wanted(); }, take) &&
                !enough)
                return std::nullopt;
        }
        float loudest = 0;
        for (const float sample : sound)
            if (std::isfinite(sample))
                loudest = std::max(loudest, std::abs(sample));
        // Below that there is nothing but noise to be made louder.
        if (loudest < 1e-8F || samples <= 0)
            return std::nullopt;
        manner.gain = Level * 32767 / static_cast<double>(loudest);
        manner.wordsPerMinute = MeasuredWords * 60 * file.sampleRate / samples / MeasuredShare;
        manner.hertz = measure::TrackPitch(Levelled(sound, manner.gain), file.sampleRate).Median();
        return manner;
    }

    static std::vector<std::int16_t> Levelled(std::span<const float> sound, double gain)
    {
        std::vector<std::int16_t> samples(sound.size());
        for (std::size_t i = 0; i < sound.size(); ++i)
            if (std::isfinite(sound[i]))
                samples[i] = static_cast<std::int16_t>(
                    std::lround(std::clamp(static_cast<double>(sound[i]) * gain, -32767.0, 32767.0)));
        return samples;
    }

    // Sets how long the voice is, and returns what the shaper has to do for pitch, speed and loudness.
    Shape PrepareFor(const Prosody& prosody)
    {
        Shape shape;
        shape.whisper = prosody.whisper;
        shape.gain = std::clamp(prosody.volume, 0, 65535) / 65535.0;
        if (prosody.pitchHz > 0 && !prosody.whisper && loaded_->manner.hertz > 0)
            shape.rate = std::clamp(prosody.pitchHz / (loaded_->manner.hertz * HeardPitch), 0.25, 4.0);
        flattener_.reset();
        if (prosody.monotone && !prosody.whisper && loaded_->manner.hertz > 0) {
            shape.bends = true;
            flattener_.emplace(loaded_->file->sampleRate, loaded_->manner.hertz * HeardPitch);
        }
        double wanted = 1;
        if (prosody.wordsPerMinute > 0)
            wanted = loaded_->manner.wordsPerMinute / prosody.wordsPerMinute;
        // What is played faster for a higher pitch would be too quick.
        wanted *= shape.rate;
        length_ = loaded_->manner.LengthFor(wanted);
        shape.speed = loaded_->manner.Longer(length_) / wanted;
        return shape;
    }

    // Speaks a piece of a stretch; false when it was stopped or the network failed (then `failed` is set).
    bool Speak(const MarkedText& part, Stretch& stretch, bool& first, Shaper& shaper, const SampleSink& sink,
               bool& failed)
    {
        std::size_t nextMark = 0;
        const bool hasText = part.text.find_first_not_of(U" \n") != std::u32string::npos;
        const std::vector<Chunk> chunks =
            hasText ? ChunksOf(ClausesOf(loaded_->file->espeakVoice, part.text), *loaded_->file, first)
                    : std::vector<Chunk>();
        for (const Chunk& chunk : chunks) {
            if (!sink.Wanted())
                return false;
            const PiperVoiceFile& file = *loaded_->file;
            const PiperModel::Scales scales{file.noiseScale, static_cast<float>(file.lengthScale * length_),
                                            file.noiseWidth};
            Delivery delivery{part, chunk, stretch, nextMark, std::exchange(first, false)};
            bool listening = true;
            if (!loaded_->model->Speak(
                    chunk.numbers, scales, loaded_->speaker, [&sink] { return sink.Wanted(); },
                    [&](const PiperModel::Piece& piece) { return listening = Deliver(delivery, piece, shaper); })) {
                failed = listening && sink.Wanted();
                if (failed)
                    failed_(OneLine(file.model.string()) + ": it failed in the middle of a text.");
                return false;
            }
            stretch.length += delivery.Length();
        }
        const bool isLast = part.end == MarkedText::End::Stretch;
        const bool listening = !isLast || shaper.End();
        for (; nextMark < part.marks.size(); ++nextMark) {
            const int number = part.marks[nextMark].number;
            if (isLast)
                shaper.EventHere(SpeechEvent::Kind::Bookmark, number);
            else
                shaper.Event(SpeechEvent::Kind::Bookmark, stretch.length, number);
        }
        return listening;
    }

    /// What is known of a chunk while its pieces are given to the shaper.
    struct Delivery {
        const MarkedText& part;
        const Chunk& chunk;
        Stretch& stretch;
        std::size_t& nextMark;
        const bool first;                   ///< whether it is the first of its text
        std::vector<std::int64_t> places{}; ///< the first sample of each phoneme, and the number of all behind the last
        std::int64_t from = 0;              ///< the first sample that is heard
        std::int64_t given = 0;             ///< samples of the pieces so far

        std::int64_t Length() const { return given - from; }
    };

    static std::vector<std::int64_t> Places(const Chunk& chunk, const PiperModel::Piece& piece)
    {
        std::vector<double> starts(chunk.numbers.size() + 1);
        for (std::size_t i = 0; i < chunk.numbers.size(); ++i)
            starts[i + 1] = starts[i] + (piece.steps.empty() ? 1 : std::ceil(static_cast<double>(piece.steps[i])));
        const double samplesPerStep = static_cast<double>(piece.all) / starts.back();
        std::vector<std::int64_t> places;
        for (const std::size_t place : chunk.place)
            places.push_back(std::lround(starts[std::min(place, starts.size() - 1)] * samplesPerStep));
        places.push_back(static_cast<std::int64_t>(piece.all));
        return places;
    }

    bool Deliver(Delivery& to, const PiperModel::Piece& piece, Shaper& shaper)
    {
        if (to.given == 0) {
            to.places = Places(to.chunk, piece);
            // What the network makes before the first phoneme of a text is silence that would be waited for.
            if (to.first && !to.chunk.place.empty())
                to.from =
                    std::max<std::int64_t>(0, to.places.front() - std::lround(KeptSilence * loaded_->file->sampleRate));
            Announce(to, shaper);
        }
        std::vector<std::int16_t> samples = Levelled(piece.samples, loaded_->manner.gain);
        const std::int64_t end = to.given + std::ssize(samples);
        for (std::size_t i = 0; i < to.chunk.phonemes.size(); ++i) {
            const std::size_t source = to.chunk.source[i];
            if (source >= to.part.emphasised.size() || !to.part.emphasised[source])
                continue;
            for (auto at = std::max(to.places[i], to.given); at < std::min(to.places[i + 1], end); ++at) {
                std::int16_t& sample = samples[static_cast<std::size_t>(at - to.given)];
                sample = static_cast<std::int16_t>(std::clamp(sample * StressGain, -32767.0, 32767.0));
            }
        }
        const std::int64_t begin = std::clamp<std::int64_t>(to.from - to.given, 0, std::ssize(samples));
        to.given = end;
        const auto heard = std::span<const std::int16_t>(samples).subspan(static_cast<std::size_t>(begin));
        return flattener_ ? flattener_->Samples(heard, shaper) : shaper.Samples(heard);
    }

    // Tells the shaper when the chunk's words, mouths and bookmarks are heard.
    static void Announce(Delivery& of, Shaper& shaper)
    {
        const MarkedText& part = of.part;
        int mouth = -1;
        for (std::size_t i = 0; i < of.chunk.phonemes.size(); ++i) {
            const std::int64_t at = of.stretch.length + std::max<std::int64_t>(0, of.places[i] - of.from);
            const std::size_t source = of.chunk.source[i];
            for (; of.nextMark < part.marks.size() && part.marks[of.nextMark].at <= source; ++of.nextMark)
                shaper.Event(SpeechEvent::Kind::Bookmark, at, part.marks[of.nextMark].number);
            if (source < part.shownWord.size())
                if (const int shown = part.shownWord[source]; shown >= 0 && of.stretch.words.Advances(shown))
                    shaper.Event(SpeechEvent::Kind::Word, at, shown);
            if (const int next = MouthAt(of.chunk.phonemes, i); next >= 0 && next != mouth) {
                shaper.Event(SpeechEvent::Kind::Mouth, at, next);
                mouth = next;
            }
        }
    }

    // The mouth that begins with this character; -1 when it goes on as before. The sound behind a mark of stress begins
    // with the mark, up to a tenth of a second before its own character.
    static int MouthAt(std::u32string_view phonemes, std::size_t at)
    {
        at = phonemes.find_first_not_of(U"ˈˌ", at);
        if (at == std::u32string_view::npos)
            return -1;
        const char32_t c = phonemes[at];
        if (IsPause(c))
            return 0;
        if (c == U' ' || c == U'-' || IsMark(c))
            return -1;
        std::string name;
        AppendUtf8(name, c);
        for (std::size_t next = at + 1; next < phonemes.size() && IsMark(phonemes[next]); ++next)
            AppendUtf8(name, phonemes[next]);
        return MouthOfIpa(name);
    }

    const std::vector<fs::path> folders_;
    const fs::path runtime_;
    const Told leftOut_;
    const Told failed_;
    bool listed_ = false;
    std::vector<Voice> voices_;
    std::map<std::string, File> files_;
    std::optional<LoadedVoice> loaded_;
    std::map<std::string, Manner> manners_; ///< of the voices that have been used, by their keys
    std::optional<Flattener> flattener_;    ///< of the current stretch, when it is monotone
    double length_ = 1;                     ///< how long the current stretch is spoken, beside the voice's own length
};

} // namespace

std::unique_ptr<Engine> CreatePiperEngine(const fs::path& own, const fs::path& data, const fs::path& home,
                                          std::function<void(const std::string&)> leftOut,
                                          std::function<void(const std::string&)> failed)
{
    return std::make_unique<PiperEngine>(PiperFolders(own, data, home), own / "runtime", std::move(leftOut),
                                         std::move(failed));
}

} // namespace voxmate::speech
