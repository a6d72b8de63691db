// eSpeak NG through its library. Every voice the library lists is one of ours.
//
// Pitch: the library's own pitch parameter reaches an octave up and down at most. A voice definition may name any
// pitch, and the formants stay where they are, so a voice is loaded from its own definition with a pitch line of ours
// behind it.
#include "platform/speech/Calibration.h"
#include "platform/speech/Engine.h"
#include "platform/speech/EspeakMarkup.h"
#include "platform/speech/EspeakVoiceFile.h"
#include "platform/speech/MarkedText.h"
#include "platform/speech/ModeId.h"
#include "platform/speech/Mouths.h"
#include "platform/speech/Shaper.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <string_view>

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>

namespace voxmate::speech
{

namespace
{

// eSpeak NG's phoneme data is made for this rate, and so is all it synthesises.
constexpr int EspeakRate = 22050;
// What the library is asked to deliver at a time: short, so that the first sound comes soon and a stop is obeyed soon.
constexpr int BlockMilliseconds = 20;
// The library's own rate when none is asked for (espeakRATE_NORMAL).
constexpr int NaturalRate = 175;

// Words per minute heard in English prose (the mean of the British and the American voice) at settings of espeakRATE.
// Under 85 the library's own rate hardly falls any more; its upper end is 450.
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

/// A stretch's way from the library's callback to the shaper, piece by piece.
struct Delivery {
    explicit Delivery(Shaper& to) : shaper(&to) {}

    Shaper* shaper;
    WordFollower words;
    std::int64_t received = 0;
    int mouth = -1;
    bool stopped = false;
    // The piece at hand.
    const EspeakMarkup* markup = nullptr;
    std::int64_t begin = 0; ///< its first sample within the stretch
    std::size_t nextMark = 0;

    void MarksUpTo(std::size_t end, std::int64_t position)
    {
        for (; nextMark < end; ++nextMark)
            shaper->Event(SpeechEvent::Kind::Bookmark, position, markup->marks[nextMark].number);
    }

    void Take(const espeak_EVENT& event)
    {
        const std::int64_t position = begin + std::max<std::int64_t>(event.sample, 0);
        switch (event.type) {
        case espeakEVENT_WORD: {
            const int word = markup->ShownWordAt(event.text_position);
            if (word >= 0 && words.Advances(word))
                shaper->Event(SpeechEvent::Kind::Word, position, word);
            break;
        }
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
            break;
        }
        default:
            break;
        }
    }
};

// The library's callback knows no context; it is only ever called inside Synthesize, on the one worker thread.
Delivery* current = nullptr;

int Deliver(short* samples, int count, espeak_EVENT* events)
{
    if (!current || current->stopped)
        return 1;
    for (; events && events->type != espeakEVENT_LIST_TERMINATED; ++events)
        current->Take(*events);
    if (samples && count > 0) {
        current->received += count;
        current->stopped = !current->shaper->Samples({samples, static_cast<std::size_t>(count)});
    }
    return current->stopped ? 1 : 0;
}

/// The voice the library is going to use; it has only one, whoever asks.
struct {
    std::string key;
    int hertz = 0;
    bool monotone = false;
} loaded;

// Done once in a run and never undone: the library's own end (espeak_Terminate) can wait for its threads for ever.
bool InitialiseLibrary()
{
    static const bool initialised = [] {
        const int rate = espeak_Initialize(AUDIO_OUTPUT_SYNCHRONOUS, BlockMilliseconds, nullptr,
                                           espeakINITIALIZE_PHONEME_EVENTS | espeakINITIALIZE_PHONEME_IPA |
                                               espeakINITIALIZE_DONT_EXIT);
        espeak_SetSynthCallback(Deliver);
        return rate == EspeakRate;
    }();
    return initialised;
}

// The library's files are named after their language: "roa/fr-BE" is "fr-be", and "roa/fr" speaks for all of French,
// whichever tag stands first in it.
std::string TagOfFile(std::string_view key)
{
    std::string tag(key.substr(key.rfind('/') + 1));
    for (char& c : tag)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return tag;
}

class EspeakEngine final : public Engine
{
public:
    const std::vector<Voice>& Voices() override
    {
        if (!listed_)
            ListVoices();
        return voices_;
    }

    int SampleRate(const Voice&) override { return EspeakRate; }

    bool Synthesize(const Voice& voice, std::span<const Segment> segments, SampleSink& sink) override
    {
        if (!InitialiseLibrary())
            return false;
        Shaper shaper(EspeakRate, sink);
        Arranger arranger(segments);
        std::optional<Delivery> delivery; // of the stretch at hand
        while (const auto part = arranger.Next()) {
            if (part->pauseMilliseconds > 0) {
                if (!shaper.Silence(part->pauseMilliseconds))
                    return true;
                continue;
            }
            if (!SelectVoice(voice, part->prosody))
                return false;
            if (!delivery) {
                delivery.emplace(shaper);
                shaper.Begin(PrepareFor(part->prosody));
            }
            if (!Speak(*part, *delivery))
                return delivery->stopped;
            if (part->end != MarkedText::End::Stretch)
                continue;
            if (!shaper.End())
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
        espeak_ng_InitializePath(nullptr);
        const espeak_VOICE** list = espeak_ListVoices(nullptr);
        std::map<std::string, int> seen;
        for (; list && *list; ++list) {
            const espeak_VOICE& entry = **list;
            if (!entry.name || !entry.identifier || !entry.languages)
                continue;
            // Voices of the MBROLA synthesiser are listed whether or not it is installed.
            if (std::strncmp(entry.identifier, "mb/", 3) == 0)
                continue;
            Voice voice;
            voice.name = "eSpeak " + std::string(entry.name);
            while (voice.name.ends_with(' '))
                voice.name.pop_back();
            voice.key = entry.identifier;
            voice.modeId = ModeIdOf("espeak", voice.key);
            const std::string firstTag = entry.languages + 1; // behind the priority byte
            if (++seen[voice.name] > 1)
                voice.name += " (" + firstTag + ")";
            voice.language = TagOfFile(voice.key);
            voices_.push_back(std::move(voice));
        }
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

    // Sets the library's rate; what is left to do is returned.
    static Shape PrepareFor(const Prosody& prosody)
    {
        Shape shape;
        shape.whisper = prosody.whisper;
        shape.gain = std::clamp(prosody.volume, 0, 65535) / 65535.0;
        int rate = NaturalRate;
        if (prosody.wordsPerMinute > 0) {
            const Setting setting = SettingFor(RateHeard, prosody.wordsPerMinute);
            rate = static_cast<int>(std::lround(setting.value));
            shape.speed = setting.remainder;
        }
        espeak_SetParameter(espeakRATE, rate, 0);
        return shape;
    }

    // Speaks a piece; false when it was stopped or the library failed.
    static bool Speak(const MarkedText& part, Delivery& delivery)
    {
        const EspeakMarkup markup(part);
        delivery.markup = &markup;
        delivery.begin = delivery.received;
        delivery.nextMark = 0;
        if (part.text.find_first_not_of(U" \n") != std::u32string::npos) {
            current = &delivery;
            const espeak_ERROR result = espeak_Synth(markup.ssml.c_str(), markup.ssml.size() + 1, 0, POS_CHARACTER, 0,
                                                     espeakCHARS_UTF8 | espeakSSML, nullptr, nullptr);
            current = nullptr;
            // Behind the end of a <speak> element the library goes back to a voice of its own choice, at that one's pitch.
            loaded = {};
            if (delivery.stopped || result != EE_OK)
                return false;
        }
        delivery.MarksUpTo(part.marks.size(), delivery.received);
        return true;
    }

    std::vector<Voice> voices_;
    bool listed_ = false;
};

} // namespace

std::unique_ptr<Engine> CreateEspeakEngine()
{
    return std::make_unique<EspeakEngine>();
}

} // namespace voxmate::speech
