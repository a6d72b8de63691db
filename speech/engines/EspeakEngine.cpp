// Speaks with eSpeak NG through its library, and offers every voice the library lists.
//
// The library's own pitch parameter reaches at most an octave up and down. A voice definition may set any pitch without
// changing the formants, so a voice is loaded from its own definition with our pitch line appended.
#include "base/Text.h"
#include "speech/Calibration.h"
#include "speech/Engine.h"
#include "speech/engines/EspeakLibrary.h"
#include "speech/engines/EspeakMarkup.h"
#include "speech/engines/EspeakVoiceFile.h"
#include "speech/player/Shaper.h"
#include "speech/sound/Mouths.h"
#include "speech/sound/Resampler.h"
#include "speech/text/Languages.h"
#include "speech/text/MarkedText.h"
#include "speech/text/ModeId.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <exception>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace voxmate::speech
{

namespace
{

// The rate of eSpeak NG's phoneme data and of everything it synthesises.
constexpr int EspeakRate = 22050;
// The block length the library delivers: short, so that sound starts soon and a stop takes effect soon.
constexpr int BlockMilliseconds = 20;
// The library's default rate (espeakRATE_NORMAL).
constexpr int NaturalRate = 175;

// Words per minute heard in English prose (the mean of the British and the American voice) at settings of espeakRATE.
// Below 85 the library's speed hardly falls any more; the setting's upper end is 450.
constexpr std::array<CalibrationPoint, 12> RateHeard{{{102.1, 85},
                                                      {108.1, 90},
                                                      {114.4, 95},
                                                      {120.1, 100},
                                                      {144.1, 120},
                                                      {180.3, 150},
                                                      {240.8, 200},
                                                      {298.4, 250},
                                                      {357.3, 300},
                                                      {418.1, 350},
                                                      {476.4, 400},
                                                      {533.2, 450}}};

// The library's voice variants that are offered. Of its hundred variants, these keep a requested pitch and speed within
// 5 % and the loudness within 3 dB of the voice they are made from, so that voice's calibration holds for them; and
// they differ most from it and from one another.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> Variants{
    {{"f2", "female 2"}, {"steph", "female, Steph"}, {"m3", "male 3"}}};

/// Carries a stretch from the library's callback to the shaper, piece by piece.
struct Delivery {
    Delivery(Shaper& to, bool isMbrola) : shaper(&to), mbrola(isMbrola) {}

    Shaper* shaper;
    bool mbrola;
    WordFollower words;
    std::int64_t received = 0; ///< samples passed on so far
    int mouth = -1;
    bool stopped = false;
    std::exception_ptr error; ///< an exception from the callback, which must not pass through the C library
    // The current piece.
    const EspeakMarkup* markup = nullptr;
    std::size_t nextMark = 0;
    // An MBROLA voice delivers sound at its own rate, but the pauses between its sentences at the library's.
    Resampler resampler{EspeakRate, EspeakRate};
    std::vector<std::int16_t> made;
    std::int64_t given = 0;      ///< samples of the piece, as counted by the library
    std::int64_t rateSince = 0;  ///< the value of `given` where the current rate begins
    std::int64_t rateBegins = 0; ///< that place within the stretch

    void MarksUpTo(std::size_t end, std::int64_t position)
    {
        for (; nextMark < end; ++nextMark)
            shaper->Event(SpeechEvent::Kind::Bookmark, position, markup->marks[nextMark].number);
    }

    void Take(std::span<const std::int16_t> samples)
    {
        given += static_cast<std::int64_t>(samples.size());
        made.clear();
        resampler.Push(samples, made);
        Pass();
    }

    // Passes on what the resampler still holds.
    void Rest()
    {
        made.clear();
        resampler.Flush(made);
        Pass();
    }

    void Pass()
    {
        received += static_cast<std::int64_t>(made.size());
        stopped = stopped || !shaper->Samples(made);
    }

    void ChangeRate(int rate)
    {
        Rest();
        resampler = Resampler(std::max(rate, 1), EspeakRate);
        rateSince = given;
        rateBegins = received;
    }

    void BeginPiece(const EspeakMarkup& text)
    {
        markup = &text;
        nextMark = 0;
        given = 0;
        ChangeRate(EspeakRate);
    }

    void Word(int textPosition, std::int64_t position)
    {
        const int word = markup->ShownWordAt(textPosition);
        if (word >= 0 && words.Advances(word))
            shaper->Event(SpeechEvent::Kind::Word, position, word);
    }

    void Take(const espeak_EVENT& event)
    {
        const std::int64_t position = rateBegins + resampler.Place(std::max<std::int64_t>(event.sample - rateSince, 0));
        switch (event.type) {
        case espeakEVENT_SAMPLERATE:
            ChangeRate(event.id.number);
            break;
        case espeakEVENT_WORD:
            Word(event.text_position, position);
            break;
        case espeakEVENT_MARK:
            if (event.id.name)
                MarksUpTo(
                    std::min<std::size_t>(markup->marks.size(), static_cast<std::size_t>(std::atoi(event.id.name)) + 1),
                    position);
            break;
        case espeakEVENT_PHONEME: {
            const std::size_t length = strnlen(event.id.string, sizeof event.id.string);
            const int next = MouthOfIpa({event.id.string, length});
            if (next != mouth)
                shaper->Event(SpeechEvent::Kind::Mouth, position, next);
            mouth = next;
            // With an MBROLA voice only the first word has an event; for the others, the text position of the first
            // phoneme is used.
            if (mbrola && event.text_position > 0)
                Word(event.text_position, position);
            break;
        }
        default:
            break;
        }
    }
};

// The library's callback takes no context. It is only called inside Synthesize, on the one worker thread.
Delivery* current = nullptr;

int Deliver(short* samples, int count, espeak_EVENT* events)
{
    if (!current || current->stopped)
        return 1;
    try {
        for (; events && events->type != espeakEVENT_LIST_TERMINATED; ++events)
            current->Take(*events);
        if (samples && count > 0)
            current->Take(std::span<const std::int16_t>(samples, static_cast<std::size_t>(count)));
    } catch (...) {
        current->error = std::current_exception();
        current->stopped = true;
    }
    return current->stopped ? 1 : 0;
}

/// The voice currently set in the library, which has only one for all callers.
struct {
    std::string key;
    int hertz = 0;
    bool monotone = false;
} loaded;

/// The library's callback delivers to `delivery` during this object's lifetime.
class Delivering
{
public:
    explicit Delivering(Delivery& delivery) { current = &delivery; }
    ~Delivering()
    {
        current = nullptr;
        // After a </speak> the library switches to a voice of its own choice, with that voice's pitch.
        loaded = {};
    }
    Delivering(const Delivering&) = delete;
    Delivering& operator=(const Delivering&) = delete;
};

/// Has the library speak a text to the delivery. An exception from the callback is rethrown once the library has
/// returned.
espeak_ERROR SpeakTo(Delivery& delivery, const std::string& ssml)
{
    const Delivering delivering(delivery);
    const espeak_ERROR result = Espeak().Synth(ssml.c_str(), ssml.size() + 1, 0, POS_CHARACTER, 0,
                                               espeakCHARS_UTF8 | espeakSSML, nullptr, nullptr);
    if (delivery.error)
        std::rethrow_exception(std::exchange(delivery.error, nullptr));
    return result;
}

// The tag is taken from the name of the voice's file: "roa/fr-BE" is "fr-be", and "roa/fr" stands for all of French,
// whichever tag comes first in the file.
std::string TagOfFile(std::string_view key)
{
    return LowerAscii(key.substr(key.rfind('/') + 1));
}

/// Finds the length in samples from the first sample that is not silence to the last.
struct LengthSink final : SampleSink {
    bool Samples(std::span<const std::int16_t> samples) override
    {
        for (const std::int16_t sample : samples) {
            ++count;
            if (sample > Silence || sample < -Silence) {
                first = first < 0 ? count : first;
                last = count;
            }
        }
        return true;
    }
    void Event(const SpeechEvent&) override {}
    static constexpr std::int16_t Silence = 104; // 50 dB under full scale
    std::int64_t count = 0;
    std::int64_t first = -1;
    std::int64_t last = -1;
};

class EspeakEngine final : public Engine
{
public:
    const std::vector<Voice>& Voices() override
    {
        if (!listed_)
            ListVoices();
        return voices_;
    }

    std::vector<Voice> VariantsOf(const Voice& voice) override
    {
        std::vector<Voice> variants;
        for (const auto& [file, label] : Variants) {
            if (voice.origin != Voice::Origin::Engine || !HasEspeakVariant(file))
                continue;
            Voice& variant = variants.emplace_back(voice);
            variant.origin = Voice::Origin::Variant;
            variant.key += "+" + std::string(file);
            variant.modeId = ModeIdOf("espeak", variant.key);
            if (variant.name.ends_with(')'))
                variant.name.replace(variant.name.size() - 1, 1, ", " + std::string(label) + ")");
            else
                variant.name += " (" + std::string(label) + ")";
        }
        return variants;
    }

    int SampleRate(const Voice&) override { return EspeakRate; }

    bool Synthesize(const Voice& voice, std::span<const Segment> segments, SampleSink& sink) override
    {
        if (!InitialiseEspeak())
            return false;
        loaded = {}; // another engine may have set a voice in the meantime
        Shaper shaper(EspeakRate, sink);
        Arranger arranger(segments);
        std::optional<Delivery> delivery; // of the current stretch
        while (const auto part = arranger.Next()) {
            if (part->pauseMilliseconds > 0) {
                if (!shaper.Silence(part->pauseMilliseconds))
                    return true;
                continue;
            }
            if (!delivery) {
                delivery.emplace(shaper, voice.origin == Voice::Origin::Added);
                const Manner manner = MannerOf(voice, part->prosody);
                // The library turns a rate into lengths by what the voice at hand says of its speed, so the voice
                // first.
                if (!SelectVoice(voice, part->prosody))
                    return false;
                Espeak().SetParameter(espeakRATE, manner.rate, 0);
                shaper.Begin(manner.shape);
            } else if (!SelectVoice(voice, part->prosody)) {
                return false;
            }
            if (!Speak(*part, *delivery))
                return delivery->stopped;
            if (part->end != MarkedText::End::Stretch)
                continue;
            delivery->Rest();
            if (delivery->stopped || !shaper.End())
                return true;
            delivery.reset();
        }
        shaper.EventHere(SpeechEvent::Kind::Mouth, 0);
        return true;
    }

private:
    void ListVoices()
    {
        listed_ = true;
        if (!Espeak())
            return;
        Espeak().InitializePath(nullptr);
        const espeak_VOICE** list = Espeak().ListVoices(nullptr);
        std::map<std::string, int> seen;
        for (; list && *list; ++list) {
            const espeak_VOICE& entry = **list;
            if (!entry.name || !entry.identifier || !entry.languages)
                continue;
            Voice voice;
            voice.name = "eSpeak " + std::string(entry.name);
            while (voice.name.ends_with(' '))
                voice.name.pop_back();
            voice.key = entry.identifier;
            // On Windows the library separates folders as that does; a voice has the same identifier everywhere.
            std::replace(voice.key.begin(), voice.key.end(), '\\', '/');
            voice.modeId = ModeIdOf("espeak", voice.key);
            const std::string firstTag = entry.languages + 1; // behind the priority byte
            if (++seen[voice.name] > 1)
                voice.name += " (" + firstTag + ")";
            voice.language = TagOfFile(voice.key);
            voices_.push_back(std::move(voice));
        }
        ListMbrolaVoices();
    }

    // The library lists MBROLA voices whether or not they are installed.
    void ListMbrolaVoices()
    {
        if (!HasMbrola())
            return;
        espeak_VOICE kind{};
        kind.languages = "mbrola";
        std::vector<Voice> added;
        for (const espeak_VOICE** list = Espeak().ListVoices(&kind); list && *list; ++list) {
            const espeak_VOICE& entry = **list;
            const std::string database = entry.identifier ? MbrolaDatabase(entry.identifier) : "";
            if (database.empty() || !entry.languages)
                continue;
            Voice voice;
            voice.key = entry.identifier;
            voice.modeId = ModeIdOf("espeak", voice.key);
            voice.language = entry.languages + 1;
            voice.name = LanguageName(voice.language);
            voice.name = "eSpeak " + (voice.name.empty() ? entry.name : voice.name) + " (MBROLA " + database + ")";
            voice.origin = Voice::Origin::Added;
            added.push_back(std::move(voice));
        }
        voices_.insert(voices_.end(), added.begin(), added.end());
    }

    // The name of the library's own voice for a language, without its accent.
    std::string LanguageName(const std::string& tag) const
    {
        const auto named = std::find_if(voices_.begin(), voices_.end(), [&](const Voice& voice) {
            return LanguageFamily(voice.language) == LanguageFamily(tag);
        });
        if (named == voices_.end())
            return {};
        const std::size_t begin = std::string_view("eSpeak ").size();
        return named->name.substr(begin, named->name.find(" (") - begin);
    }

    bool SelectVoice(const Voice& voice, const Prosody& prosody)
    {
        const int hertz = prosody.whisper ? 0 : std::clamp(prosody.pitchHz, 0, 1000);
        const bool monotone = prosody.monotone;
        if (voice.key == loaded.key && hertz == loaded.hertz && monotone == loaded.monotone)
            return true;
        loaded = {};
        if (!LoadEspeakVoice(voice.key, hertz, monotone))
            return false;
        loaded = {voice.key, hertz, monotone};
        return true;
    }

    /// The library's rate, and what the shaper has to do for the rest.
    struct Manner {
        int rate = NaturalRate;
        Shape shape;
    };

    // May have other voices selected.
    Manner MannerOf(const Voice& voice, const Prosody& prosody)
    {
        Manner manner;
        Shape& shape = manner.shape;
        shape.whisper = prosody.whisper;
        shape.gain = std::clamp(prosody.volume, 0, 65535) / 65535.0;
        if (prosody.wordsPerMinute > 0) {
            Setting setting = SettingFor(RateHeard, prosody.wordsPerMinute);
            shape.speed = setting.remainder;
            if (voice.origin == Voice::Origin::Added) {
                const double tempo = TempoOf(voice, static_cast<int>(std::lround(setting.value)));
                setting = SettingFor(RateHeard, prosody.wordsPerMinute / tempo);
                shape.speed = setting.remainder * tempo / TempoOf(voice, static_cast<int>(std::lround(setting.value)));
            }
            manner.rate = static_cast<int>(std::lround(setting.value));
        }
        return manner;
    }

    // How much faster an MBROLA voice is, at this library rate, than the library's own voice of its language, for which
    // the table holds. MBROLA voices have sound lengths of their own, which change with the rate differently.
    double TempoOf(const Voice& voice, int rate)
    {
        const auto known = tempos_.find({voice.key, rate});
        if (known != tempos_.end())
            return known->second;
        const Voice* own = nullptr;
        for (const Voice& listed : Voices())
            if (listed.origin == Voice::Origin::Engine &&
                LanguageFamily(listed.language) == LanguageFamily(voice.language) &&
                (!own || listed.language == voice.language))
                own = &listed;
        const double ownLength = own ? MeasureLength(*own, rate) : 0;
        const double length = MeasureLength(voice, rate);
        const double tempo = ownLength > 0 && length > 0 ? std::clamp(ownLength / length, 0.25, 4.0) : 1;
        return tempos_[{voice.key, rate}] = tempo;
    }

    // The samples a voice needs to say some numbers, for which every language has words; 0 when it does not speak.
    double MeasureLength(const Voice& voice, int rate)
    {
        LengthSink length;
        if (!SelectVoice(voice, {}))
            return 0;
        Espeak().SetParameter(espeakRATE, rate, 0);
        Segment numbers;
        numbers.text = "1234567, 9876543, 456, 321";
        Arranger arranger(std::span(&numbers, 1));
        Shaper shaper(EspeakRate, length);
        Delivery delivery(shaper, true);
        shaper.Begin({});
        if (const auto part = arranger.Next(); !part || !Speak(*part, delivery))
            return 0;
        delivery.Rest();
        shaper.End();
        return static_cast<double>(length.last - length.first);
    }

    // Speaks a piece; false when it was stopped or the library failed.
    static bool Speak(const MarkedText& part, Delivery& delivery)
    {
        const EspeakMarkup markup(part);
        delivery.BeginPiece(markup);
        if (part.text.find_first_not_of(U" \n") != std::u32string::npos) {
            const espeak_ERROR result = SpeakTo(delivery, markup.ssml);
            if (delivery.stopped || result != EE_OK)
                return false;
        }
        delivery.MarksUpTo(part.marks.size(), delivery.received);
        return true;
    }

    std::vector<Voice> voices_;
    bool listed_ = false;
    std::map<std::pair<std::string, int>, double> tempos_;
};

} // namespace

// Done once per run and never undone: the library's shutdown (espeak_Terminate) can wait for its threads for ever.
bool InitialiseEspeak()
{
    static const bool initialised = [] {
        if (!Espeak())
            return false;
        const int rate = Espeak().Initialize(AUDIO_OUTPUT_SYNCHRONOUS, BlockMilliseconds, nullptr,
                                             espeakINITIALIZE_PHONEME_EVENTS | espeakINITIALIZE_PHONEME_IPA |
                                                 espeakINITIALIZE_DONT_EXIT);
        Espeak().SetSynthCallback(Deliver);
        return rate == EspeakRate;
    }();
    return initialised;
}

std::unique_ptr<Engine> CreateEspeakEngine()
{
    return std::make_unique<EspeakEngine>();
}

} // namespace voxmate::speech
