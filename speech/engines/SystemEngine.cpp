// The voices that the system has for all programs. Each speaks in its own manner; pitch, speed and whisper are made of
// what it gives.
#include "base/Text.h"
#include "platform/SystemVoices.h"
#include "speech/Engine.h"
#include "speech/player/Flattener.h"
#include "speech/player/Shaper.h"
#include "speech/sound/Mouths.h"
#include "speech/sound/SpeechMeasure.h"
#include "speech/text/MarkedText.h"
#include "speech/text/ModeId.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

namespace voxmate::speech
{

namespace
{

// The text by which a voice's own speed and pitch are measured when it is first used, and how many words it has. Voices
// say it faster than the calibration's longer prose: by a factor of 1.055 (Flite's) to 1.109 (a neural one).
constexpr std::u16string_view MeasuredProse =
    u"When the rain had stopped at last, the old man took his stick from behind the door and went out to look at the "
    u"garden. Every leaf was shining. Members said that more than four hundred people had signed the petition, and the "
    u"additional cost will be paid from the budget for public buildings.";
constexpr int MeasuredWords = 54;
constexpr double MeasuredShare = 1.08;
// Words a minute of a voice that says the prose in no time or in silence.
constexpr double UsualSpeed = 170;
// Seconds of sound that are held back, because a voice may tell of a word after it has delivered the word's beginning.
constexpr double HeldBack = 0.25;
// A stressed word is amplified by this factor (5 dB).
constexpr double StressGain = 1.78;

// For each of the 22 mouth positions one of its sounds, by the names of Flite's phone set. Position 0 is silence; the
// list of sounds is the one in the documentation of Windows' speech interface (SPVISEMES).
constexpr std::array<const char*, 22> SoundOfViseme{"pau", "ae", "aa", "ao", "eh", "er", "iy", "uw", "ow", "aw", "oy",
                                                    "ay",  "hh", "r",  "l",  "s",  "sh", "th", "f",  "d",  "k",  "p"};

int MouthOfViseme(int number)
{
    const auto place = static_cast<std::size_t>(std::clamp<int>(number, 0, SoundOfViseme.size() - 1));
    return MouthOfFlitePhone(SoundOfViseme.at(place));
}

/// What has been measured of a voice once.
struct Manner {
    double wordsPerMinute = UsualSpeed;
    double hertz = 0; ///< the median of its pitch; 0 when none was found
};

/// Takes the prose by which a voice is measured.
class Measure final : public SystemVoices::Output
{
public:
    explicit Measure(const SampleSink& sink) : sink_(sink) {}

    bool Samples(std::span<const std::int16_t> samples) override
    {
        heard_.insert(heard_.end(), samples.begin(), samples.end());
        return sink_.Wanted();
    }
    void Word(std::size_t /*unit*/, std::int64_t /*sample*/) override {}
    void Viseme(int /*number*/, std::int64_t /*sample*/) override {}

    Manner Result(int samplesPerSecond) const
    {
        Manner manner;
        if (const double seconds = measure::SpeakingSeconds(heard_, samplesPerSecond); seconds > 0)
            manner.wordsPerMinute = MeasuredWords * 60 / seconds / MeasuredShare;
        manner.hertz = measure::TrackPitch(heard_, samplesPerSecond).Median();
        return manner;
    }

private:
    const SampleSink& sink_;
    std::vector<std::int16_t> heard_;
};

/// State of the current stretch that is carried from one piece to the next.
struct Stretch {
    WordFollower words;
    std::int64_t length = 0; ///< samples so far
    std::optional<Flattener> flattener;
};

/// Carries a piece of a stretch from the voice to the shaper, with its words and mouths in order.
class Delivery final : public SystemVoices::Output
{
public:
    /// `places` are the characters of the text that its UTF-16 units belong to.
    Delivery(const MarkedText& part, const std::vector<std::size_t>& places, Stretch& stretch, Shaper& shaper,
             int samplesPerSecond)
        : part_(part), places_(places), stretch_(stretch), shaper_(shaper), begin_(stretch.length),
          heldBack_(std::lround(HeldBack * samplesPerSecond))
    {
    }

    bool Samples(std::span<const std::int16_t> samples) override
    {
        waiting_.insert(waiting_.end(), samples.begin(), samples.end());
        return Pass(std::ssize(waiting_) - heldBack_);
    }

    void Word(std::size_t unit, std::int64_t sample) override
    {
        const std::size_t source = unit < places_.size() ? places_[unit] : part_.text.size();
        Add({SpeechEvent::Kind::Word, begin_ + sample, static_cast<int>(source)});
    }

    void Viseme(int number, std::int64_t sample) override
    {
        Add({SpeechEvent::Kind::Mouth, begin_ + sample, MouthOfViseme(number)});
    }

    /// Passes on what was held back; false when no more is wanted.
    bool Finish()
    {
        if (!Pass(std::ssize(waiting_)))
            return false;
        PassEvents(stretch_.length + 1);
        for (; nextMark_ < part_.marks.size(); ++nextMark_)
            shaper_.Event(SpeechEvent::Kind::Bookmark, stretch_.length, part_.marks[nextMark_].number);
        return true;
    }

private:
    void Add(const SpeechEvent& event)
    {
        const auto later = std::upper_bound(events_.begin(), events_.end(), event,
                                            [](const auto& a, const auto& b) { return a.sample < b.sample; });
        events_.insert(later, event);
    }

    // Passes on this many of the samples that wait, and what falls among them.
    bool Pass(std::int64_t count)
    {
        if (count <= 0 || stopped_)
            return !stopped_;
        PassEvents(stretch_.length + count);
        const std::span<std::int16_t> samples(waiting_.data(), static_cast<std::size_t>(count));
        Stress(samples);
        stopped_ = !(stretch_.flattener ? stretch_.flattener->Samples(samples, shaper_) : shaper_.Samples(samples));
        stretch_.length += count;
        waiting_.erase(waiting_.begin(), waiting_.begin() + count);
        return !stopped_;
    }

    void PassEvents(std::int64_t before)
    {
        std::size_t passed = 0;
        for (; passed < events_.size() && events_[passed].sample < before; ++passed) {
            const SpeechEvent& event = events_[passed];
            const std::int64_t at = std::max(event.sample, stretch_.length);
            if (event.kind == SpeechEvent::Kind::Mouth)
                shaper_.Event(event.kind, at, event.value);
            else
                PassWord(static_cast<std::size_t>(event.value), at);
        }
        events_.erase(events_.begin(), events_.begin() + static_cast<std::ptrdiff_t>(passed));
    }

    void PassWord(std::size_t source, std::int64_t at)
    {
        for (; nextMark_ < part_.marks.size() && part_.marks[nextMark_].at <= source; ++nextMark_)
            shaper_.Event(SpeechEvent::Kind::Bookmark, at, part_.marks[nextMark_].number);
        if (source >= part_.shownWord.size())
            return;
        if (const int shown = part_.shownWord[source]; shown >= 0 && stretch_.words.Advances(shown))
            shaper_.Event(SpeechEvent::Kind::Word, at, shown);
        turns_.emplace_back(static_cast<std::size_t>(at - stretch_.length), part_.emphasised[source]);
    }

    // Makes the stressed words among the next samples louder.
    void Stress(std::span<std::int16_t> samples)
    {
        std::size_t from = 0;
        const auto upTo = [&](std::size_t end) {
            for (; from < end; ++from)
                if (stressed_)
                    samples[from] =
                        static_cast<std::int16_t>(std::clamp(samples[from] * StressGain, -32767.0, 32767.0));
        };
        for (const auto& [at, stressed] : turns_) {
            upTo(std::min(at, samples.size()));
            stressed_ = stressed;
        }
        upTo(samples.size());
        turns_.clear();
    }

    const MarkedText& part_;
    const std::vector<std::size_t>& places_;
    Stretch& stretch_;
    Shaper& shaper_;
    const std::int64_t begin_; ///< samples of the stretch before this piece
    const std::int64_t heldBack_;
    std::vector<std::int16_t> waiting_;
    std::vector<SpeechEvent>
        events_; ///< still to be passed on, in order of time; of a word, the value is its character
    std::size_t nextMark_ = 0;
    bool stressed_ = false; ///< whether the word that is heard is a stressed one
    /// The words among the samples that are passed on next: where each begins, and whether it is stressed.
    std::vector<std::pair<std::size_t, bool>> turns_;
    bool stopped_ = false;
};

class SystemEngine final : public Engine
{
public:
    explicit SystemEngine(std::unique_ptr<SystemVoices> system) : system_(std::move(system)) {}

    const std::vector<Voice>& Voices() override
    {
        if (std::exchange(listed_, true))
            return voices_;
        for (const SystemVoices::Voice& each : system_->List()) {
            Voice voice;
            voice.name = each.Name;
            voice.key = each.Key;
            voice.modeId = ModeIdOf("system", each.Key);
            voice.language = each.Language;
            voices_.push_back(std::move(voice));
        }
        return voices_;
    }

    int SampleRate(const Voice& /*voice*/) override { return system_->SamplesPerSecond(); }

    bool Synthesize(const Voice& voice, std::span<const Segment> segments, SampleSink& sink) override
    {
        const std::optional<Manner> manner = MannerOf(voice.key, sink);
        if (!manner)
            return !sink.Wanted();
        Shaper shaper(system_->SamplesPerSecond(), sink);
        Arranger arranger(segments);
        std::optional<Stretch> stretch;
        while (const auto part = arranger.Next()) {
            if (part->pauseMilliseconds > 0) {
                if (!shaper.Silence(part->pauseMilliseconds))
                    return true;
                continue;
            }
            if (!stretch) {
                stretch.emplace();
                shaper.Begin(PrepareFor(*manner, part->prosody, *stretch));
            }
            bool failed = false;
            if (!Speak(voice.key, *part, *stretch, shaper, sink, failed))
                return !failed;
            if (part->end == MarkedText::End::Stretch) {
                if (!shaper.End())
                    return true;
                stretch.reset();
            }
        }
        shaper.EventHere(SpeechEvent::Kind::Mouth, 0);
        return true;
    }

    void Rest() override { system_->Rest(); }

private:
    // Nothing when the voice failed or was stopped.
    std::optional<Manner> MannerOf(const std::string& key, const SampleSink& sink)
    {
        if (const auto known = manners_.find(key); known != manners_.end())
            return known->second;
        Measure measure(sink);
        if (!system_->Speak(key, MeasuredProse, measure) || !sink.Wanted())
            return std::nullopt;
        return manners_.emplace(key, measure.Result(system_->SamplesPerSecond())).first->second;
    }

    Shape PrepareFor(const Manner& manner, const Prosody& prosody, Stretch& stretch) const
    {
        Shape shape;
        shape.whisper = prosody.whisper;
        shape.gain = std::clamp(prosody.volume, 0, 65535) / 65535.0;
        if (prosody.pitchHz > 0 && !prosody.whisper && manner.hertz > 0)
            shape.rate = std::clamp(prosody.pitchHz / manner.hertz, 0.25, 4.0);
        if (prosody.monotone && !prosody.whisper && manner.hertz > 0) {
            shape.bends = true;
            stretch.flattener.emplace(system_->SamplesPerSecond(), manner.hertz);
        }
        if (prosody.wordsPerMinute > 0)
            shape.speed = prosody.wordsPerMinute / manner.wordsPerMinute;
        // What is played faster for a higher pitch would be too quick.
        shape.speed /= shape.rate;
        return shape;
    }

    // Speaks a piece of a stretch; false when it was stopped or the voice failed (then `failed` is set).
    bool Speak(const std::string& key, const MarkedText& part, Stretch& stretch, Shaper& shaper, const SampleSink& sink,
               bool& failed)
    {
        std::u16string text;
        std::vector<std::size_t> places;
        for (std::size_t i = 0; i < part.text.size(); ++i) {
            const char32_t c = part.text[i];
            if (c > 0xFFFF) {
                text += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
                text += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
                places.push_back(i);
            } else {
                text += static_cast<char16_t>(c);
            }
            places.push_back(i);
        }
        Delivery delivery(part, places, stretch, shaper, system_->SamplesPerSecond());
        const bool hasText = part.text.find_first_not_of(U" \n") != std::u32string::npos;
        if (hasText && !system_->Speak(key, text, delivery)) {
            failed = sink.Wanted();
            return false;
        }
        return sink.Wanted() && delivery.Finish();
    }

    const std::unique_ptr<SystemVoices> system_;
    bool listed_ = false;
    std::vector<Voice> voices_;
    std::map<std::string, Manner> manners_; ///< of the voices that have been used, by their keys
};

} // namespace

std::unique_ptr<Engine> CreateSystemEngine(std::unique_ptr<SystemVoices> voices)
{
    return std::make_unique<SystemEngine>(std::move(voices));
}

} // namespace voxmate::speech
