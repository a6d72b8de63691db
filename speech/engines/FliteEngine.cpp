// Flite's American English voices through its library: kal (diphones, 8 kHz), slt, awb and rms (statistical, 16 kHz).
#include "speech/Calibration.h"
#include "speech/Engine.h"
#include "speech/engines/FliteLibrary.h"
#include "speech/engines/FliteText.h"
#include "speech/player/Shaper.h"
#include "speech/sound/Mouths.h"
#include "speech/text/ModeId.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <map>
#include <optional>
#include <utility>

namespace voxmate::speech
{

namespace
{

struct VoiceData {
    const char* key;
    const char* name;
    int sampleRate;
    double naturalHertz; ///< the voice's own "int_f0_target_mean"; 0: taken from its database
    /// Hertz heard (median of English prose) at settings of the feature "int_f0_target_mean".
    std::array<CalibrationPoint, 9> pitch;
    /// Words per minute heard in English prose at "duration_stretch" 1; the rate is this divided by the stretch.
    double wordsPerMinute;
};

constexpr std::array<VoiceData, 4> VoiceTable{{
    {"kal",
     "Flite KAL (American English)",
     8000,
     95,
     {{{55.2, 60},
       {73.3, 80},
       {92.7, 100},
       {143.6, 150},
       {199.2, 200},
       {258.1, 250},
       {320.7, 300},
       {382.1, 350},
       {437.1, 400}}},
     214.5},
    {"slt",
     "Flite SLT (American English)",
     16000,
     0,
     {{{58.2, 60},
       {77.6, 80},
       {98.0, 100},
       {145.6, 150},
       {194.1, 200},
       {242.5, 250},
       {290.8, 300},
       {340.5, 350},
       {388.6, 400}}},
     205},
    {"awb",
     "Flite AWB (Scottish English)",
     16000,
     0,
     {{{56.3, 60},
       {75.7, 80},
       {94.3, 100},
       {140.7, 150},
       {187.6, 200},
       {233.3, 250},
       {279.6, 300},
       {326.8, 350},
       {373.9, 400}}},
     204.5},
    {"rms",
     "Flite RMS (American English)",
     16000,
     0,
     {{{56.4, 60},
       {75.4, 80},
       {94.4, 100},
       {142.0, 150},
       {188.2, 200},
       {234.8, 250},
       {281.7, 300},
       {331.2, 350},
       {381.4, 400}}},
     183.6},
}};

// The share of a set pitch that a voice file is assumed to be heard at, since its pitch is not measured. It lies
// between the shares of the three statistical voices above, 0.935 to 0.98. The voice's words per minute are measured
// when it is loaded.
constexpr double HeardOfSet = 0.955;
// The text for that measurement. The voices above say it at MeasuredShare times their words per minute in the
// calibration's prose (each within 0.976 to 1.024 of that).
constexpr const char* MeasuredProse = "When the rain had stopped at last, the old man took his stick from behind the "
                                      "door and went out to look at the garden. "
                                      "Every leaf was shining. Members said that more than four hundred people had "
                                      "signed the petition, and the additional "
                                      "cost will be paid from the budget for public buildings.";
constexpr int MeasuredWords = 54;
constexpr double MeasuredShare = 1.055;

VoiceData DataOfFile(int sampleRate)
{
    VoiceData data{"", "", sampleRate, 0, {}, 200};
    for (std::size_t i = 0; i < data.pitch.size(); ++i) {
        const double setting = VoiceTable[1].pitch[i].setting;
        data.pitch[i] = {setting * HeardOfSet, setting};
    }
    return data;
}

// The range of "duration_stretch" within which Flite's speed follows it; beyond it the sonic library does the rest.
constexpr double ShortestStretch = 0.5;
constexpr double LongestStretch = 2.5;
// The "duration_stretch" that kal is registered with; the other voices have none, which means 1.
constexpr double NaturalStretchOfKal = 1.1;
// Seconds of silence kept before the first and after the last word. Flite puts about a fifth of a second at each end.
constexpr double KeptSilence = 0.03;
// A stressed word is amplified by this factor (5 dB).
constexpr double StressGain = 1.78;

struct LoadedVoice {
    VoiceData data{};
    cst_voice* voice = nullptr;
    cst_cg_db* database = nullptr; ///< the database, writable (a copy for an installed voice); null for kal
    int ownMelody = 0;             ///< the database's flag for an intonation model that ignores the target pitch
    cst_audio_streaming_info* streaming = nullptr;
};

/// The registered voices and their data. They last for the rest of the run, whichever engine asked for them first.
struct LoadedLibrary {
    FliteLibrary flite;
    bool loaded = false;
    std::map<std::string, LoadedVoice> voices;
    std::vector<std::unique_ptr<cst_cg_db>> databases;
};
/// Never destroyed, because the library's voices are not destroyed either.
LoadedLibrary& loadedLibrary = *new LoadedLibrary;

/// State of the current stretch that is carried from one piece to the next.
struct Stretch {
    WordFollower words;
    bool inside = false;     ///< the next sentence follows another one of the stretch
    std::int64_t length = 0; ///< samples so far
};

/// Carries one sentence from Flite to the shaper.
struct Delivery {
    const FliteLibrary* flite = nullptr;
    Shaper* shaper = nullptr;
    const MarkedText* text = nullptr;
    const FliteSentence* sentence = nullptr;
    WordFollower* words = nullptr;
    std::size_t* nextMark = nullptr;
    bool first = false;
    bool last = false;
    bool planned = false;
    bool stopped = false;
    std::exception_ptr error; ///< an exception from the callback, which must not pass through C code
    std::int64_t from = 0;    ///< samples of the sentence before this one are left out
    std::int64_t to = 0;      ///< samples from this one on are left out
    std::int64_t offset = 0;  ///< position of sample `from` in the stretch
    std::int64_t given = 0;   ///< samples for the shaper so far; kal ends a sentence before its last pause does
    std::vector<std::pair<std::int64_t, std::int64_t>> stressed;
    std::vector<std::int16_t> block;

    void Plan(const cst_utterance* utterance, int rate);
    bool Take(const cst_wave* wave, int start, int count);
};

void Delivery::Plan(const cst_utterance* utterance, int rate)
{
    planned = true;
    const auto sampleAt = [rate](float seconds) {
        return static_cast<std::int64_t>(std::lround(static_cast<double>(seconds) * rate));
    };
    const auto keptSilence = static_cast<std::int64_t>(KeptSilence * rate);
    std::vector<SpeechEvent> events;
    std::int64_t begin = 0;
    std::int64_t lastBegin = 0;
    int mouth = -1;
    bool firstPhone = true;
    bool endsInPause = false;
    to = 0;
    for (const cst_item* phone = flite->relationHead(flite->uttRelation(utterance, "Segment")); phone;
         phone = flite->itemNext(phone)) {
        const char* name = flite->featureString(phone, "name");
        const std::int64_t end = sampleAt(flite->featureFloat(phone, "end"));
        const bool pause = std::string_view(name) == "pau";
        if (firstPhone && pause && first)
            from = std::max<std::int64_t>(0, end - keptSilence);
        if (const int next = MouthOfFlitePhone(name); next != mouth) {
            events.push_back({SpeechEvent::Kind::Mouth, begin, next});
            mouth = next;
        }
        firstPhone = false;
        endsInPause = pause;
        lastBegin = begin;
        begin = end;
        to = end;
    }
    if (endsInPause && last)
        to = std::min(to, lastBegin + keptSilence);

    for (const cst_item* word = flite->relationHead(flite->uttRelation(utterance, "Word")); word;
         word = flite->itemNext(word)) {
        const std::int64_t at =
            sampleAt(flite->featureFloat(word, "R:SylStructure.daughter1.daughter1.R:Segment.p.end"));
        const std::size_t source = sentence->SourceOfToken(flite->featureInt(word, "R:Token.parent.file_pos"));
        for (; *nextMark < text->marks.size() && text->marks[*nextMark].at <= source; ++*nextMark)
            events.push_back({SpeechEvent::Kind::Bookmark, at, text->marks[*nextMark].number});
        const int shown = text->shownWord[source];
        if (shown >= 0 && words->Advances(shown))
            events.push_back({SpeechEvent::Kind::Word, at, shown});
        if (text->emphasised[source])
            stressed.emplace_back(
                at, sampleAt(flite->featureFloat(word, "R:SylStructure.daughtern.daughtern.R:Segment.end")));
    }
    std::stable_sort(events.begin(), events.end(),
                     [](const SpeechEvent& a, const SpeechEvent& b) { return a.sample < b.sample; });
    for (const SpeechEvent& event : events)
        shaper->Event(event.kind, offset + std::clamp(event.sample, from, to) - from, event.value);
}

bool Delivery::Take(const cst_wave* wave, int start, int count)
{
    const std::int64_t begin = std::max<std::int64_t>(start, from);
    const std::int64_t end = std::min<std::int64_t>(start + count, to);
    if (begin >= end)
        return true;
    block.assign(wave->samples + begin, wave->samples + end);
    given += end - begin;
    for (const auto& [loudFrom, loudTo] : stressed)
        for (std::int64_t i = std::max(begin, loudFrom); i < std::min(end, loudTo); ++i) {
            std::int16_t& sample = block[static_cast<std::size_t>(i - begin)];
            sample = static_cast<std::int16_t>(std::clamp(sample * StressGain, -32767.0, 32767.0));
        }
    return shaper->Samples(block);
}

int Deliver(const cst_wave* wave, int start, int count, int, cst_audio_streaming_info* info)
{
    Delivery& delivery = *static_cast<Delivery*>(info->userdata);
    try {
        if (!delivery.planned)
            delivery.Plan(info->utt, wave->sample_rate);
        if (!delivery.stopped)
            delivery.stopped = !delivery.Take(wave, start, count);
    } catch (...) {
        delivery.error = std::current_exception();
        delivery.stopped = true;
    }
    return delivery.stopped ? CST_AUDIO_STREAM_STOP : CST_AUDIO_STREAM_CONT;
}

// Measures a text's duration: it is known from the first block, and no more is synthesised.
int MeasureSeconds(const cst_wave*, int, int, int, cst_audio_streaming_info* info)
{
    const FliteLibrary& flite = loadedLibrary.flite;
    double first = -1;
    double last = 0;
    double begin = 0;
    for (const cst_item* phone = flite.relationHead(flite.uttRelation(info->utt, "Segment")); phone;
         phone = flite.itemNext(phone)) {
        const double end = static_cast<double>(flite.featureFloat(phone, "end"));
        if (std::string_view(flite.featureString(phone, "name")) != "pau") {
            first = first < 0 ? begin : first;
            last = end;
        }
        begin = end;
    }
    *static_cast<double*>(info->userdata) = last - first;
    return CST_AUDIO_STREAM_STOP;
}

class FliteEngine final : public Engine
{
public:
    /// With an empty folder it lists the library's own voices, otherwise those of the folder's files.
    explicit FliteEngine(std::filesystem::path folder) : folder_(std::move(folder)) {}

    const std::vector<Voice>& Voices() override
    {
        if (!std::exchange(listed_, true))
            folder_.empty() ? ListOwn() : ListFiles();
        return voices_;
    }

    int SampleRate(const Voice& voice) override
    {
        if (const auto file = rates_.find(voice.key); file != rates_.end())
            return file->second;
        const VoiceData* data = DataOf(voice.key);
        return data ? data->sampleRate : 16000;
    }

    bool Synthesize(const Voice& voice, std::span<const Segment> segments, SampleSink& sink) override
    {
        LoadedVoice* const loaded = Load(voice.key, sink);
        if (!loaded)
            return !sink.Wanted();
        Shaper shaper(loaded->data.sampleRate, sink);
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
                shaper.Begin(PrepareFor(*loaded, part->prosody));
            }
            bool failed = false;
            if (!Speak(*loaded, *part, *stretch, shaper, failed))
                return !failed;
            if (part->end == MarkedText::End::Stretch)
                stretch.reset();
        }
        shaper.EventHere(SpeechEvent::Kind::Mouth, 0);
        return true;
    }

private:
    void ListOwn()
    {
        for (const VoiceData& data : VoiceTable)
            if (FliteLibrary::HasVoice(data.key))
                voices_.push_back({data.name, ModeIdOf("flite", data.key), "en-us", data.key});
    }

    void ListFiles()
    {
        std::error_code error;
        if (FliteLibrary::Folder().empty())
            return;
        for (std::filesystem::directory_iterator file(folder_, error), end; !error && file != end;
             file.increment(error)) {
            if (file->path().extension() != ".flitevox")
                continue;
            const std::optional<FlitevoxHead> head = ReadFlitevoxHead(file->path());
            if (!head || head->language != "eng")
                continue;
            Voice voice;
            voice.name = "Flite " + file->path().stem().string();
            voice.key = file->path().string();
            voice.modeId = ModeIdOf("flitevox", file->path().filename().string());
            voice.language = head->country == "UK" || head->country == "GB" ? "en-gb" : "en-us";
            voice.origin = Voice::Origin::Added;
            rates_[voice.key] = head->sampleRate;
            voices_.push_back(std::move(voice));
        }
    }

    static const VoiceData* DataOf(const std::string& key)
    {
        const auto found =
            std::find_if(VoiceTable.begin(), VoiceTable.end(), [&](const VoiceData& data) { return key == data.key; });
        return found == VoiceTable.end() ? nullptr : found;
    }

    LoadedVoice* Load(const std::string& key, const SampleSink& sink)
    {
        if (const auto found = loadedLibrary.voices.find(key); found != loadedLibrary.voices.end())
            return &found->second;
        const auto file = rates_.find(key);
        const VoiceData* const own = DataOf(key);
        if ((!own && file == rates_.end()) || (!loadedLibrary.loaded && !flite_.Load()))
            return nullptr;
        loadedLibrary.loaded = true;
        LoadedVoice loaded;
        loaded.data = own ? *own : DataOfFile(file->second);
        loaded.voice = own ? flite_.LoadVoice(key) : flite_.LoadFile(key, [&sink] { return sink.Wanted(); });
        if (!loaded.voice)
            return nullptr;
        loaded.streaming = flite_.newStreamingInfo();
        loaded.streaming->asc = Deliver;
        flite_.featSet(loaded.voice->features, "streaming_info", flite_.streamingInfoVal(loaded.streaming));
        if (flite_.featPresent(loaded.voice->features, "cg_db")) {
            loaded.database = flite_.valCgDb(flite_.featVal(loaded.voice->features, "cg_db"));
            // A voice file's database belongs to its voice, and would be freed if another replaced it.
            if (own)
                loaded.database = ReplaceDatabase(loaded);
            loaded.ownMelody = loaded.database->spamf0;
        }
        if (!own)
            MeasureRate(loaded);
        return &loadedLibrary.voices.emplace(key, loaded).first->second;
    }

    // The database of an installed voice is read-only, so the voice gets a copy.
    cst_cg_db* ReplaceDatabase(const LoadedVoice& loaded)
    {
        loadedLibrary.databases.push_back(std::make_unique<cst_cg_db>(*loaded.database));
        cst_cg_db* const copy = loadedLibrary.databases.back().get();
        copy->freeable = 0;
        flite_.featSet(loaded.voice->features, "cg_db", flite_.cgDbVal(copy));
        return copy;
    }

    void MeasureRate(LoadedVoice& loaded)
    {
        double seconds = 0;
        loaded.streaming->asc = MeasureSeconds;
        loaded.streaming->userdata = &seconds;
        if (cst_utterance* const utterance = flite_.synthText(MeasuredProse, loaded.voice))
            flite_.deleteUtterance(utterance);
        loaded.streaming->asc = Deliver;
        loaded.streaming->userdata = nullptr;
        if (seconds > 0)
            loaded.data.wordsPerMinute = MeasuredWords * 60 / seconds / MeasuredShare;
    }

    // Sets pitch and intonation, and returns the pitch factor that is left for the shaper. Flite's own pitch ends at 50
    // Hz.
    double SetPitch(const LoadedVoice& loaded, const Prosody& prosody)
    {
        const double naturalMean = loaded.database ? loaded.database->f0_mean : loaded.data.naturalHertz;
        // kal's own "int_f0_target_stddev" is 11.
        const double naturalSpread = loaded.database ? loaded.database->f0_stddev : 11;
        const bool own = prosody.pitchHz <= 0 || prosody.whisper;
        Setting setting{naturalMean, 1};
        if (!own)
            setting = SettingFor(loaded.data.pitch, prosody.pitchHz);
        const double spread = prosody.monotone ? 0 : naturalSpread * setting.value / naturalMean;
        flite_.featSetFloat(loaded.voice->features, "int_f0_target_mean", static_cast<float>(setting.value));
        flite_.featSetFloat(loaded.voice->features, "int_f0_target_stddev", static_cast<float>(spread));
        if (loaded.database)
            loaded.database->spamf0 = own && !prosody.monotone ? loaded.ownMelody : 0;
        return setting.remainder;
    }

    // Sets pitch and rate and returns what the shaper has to do for the rest.
    Shape PrepareFor(const LoadedVoice& loaded, const Prosody& prosody)
    {
        Shape shape;
        shape.whisper = prosody.whisper;
        shape.gain = std::clamp(prosody.volume, 0, 65535) / 65535.0;
        // Pitches below Flite's range are reached by playing the sound more slowly, so the words are made shorter in
        // proportion.
        shape.rate = SetPitch(loaded, prosody);
        double wanted = loaded.database ? 1 : NaturalStretchOfKal;
        if (prosody.wordsPerMinute > 0)
            wanted = loaded.data.wordsPerMinute / prosody.wordsPerMinute;
        wanted *= shape.rate;
        const double stretch = std::clamp(wanted, ShortestStretch, LongestStretch);
        shape.speed = stretch / wanted;
        flite_.featSetFloat(loaded.voice->features, "duration_stretch", static_cast<float>(stretch));
        return shape;
    }

    // Has Flite speak the delivery's sentence; false when it failed. An exception from the callback is rethrown once
    // Flite has returned and its utterance is deleted.
    bool SpeakTo(const LoadedVoice& loaded, Delivery& delivery)
    {
        loaded.streaming->userdata = &delivery;
        cst_utterance* const utterance = flite_.synthText(delivery.sentence->text.c_str(), loaded.voice);
        loaded.streaming->userdata = nullptr;
        if (utterance)
            flite_.deleteUtterance(utterance);
        if (delivery.error)
            std::rethrow_exception(delivery.error);
        return utterance || delivery.stopped;
    }

    // Speaks a piece of a stretch; false when it was stopped or Flite failed (then `failed` is set).
    bool Speak(const LoadedVoice& loaded, const MarkedText& part, Stretch& stretch, Shaper& shaper, bool& failed)
    {
        const bool isLast = part.end == MarkedText::End::Stretch;
        const std::vector<FliteSentence> sentences = SplitForFlite(part);
        std::size_t nextMark = 0;
        for (std::size_t i = 0; i < sentences.size(); ++i) {
            Delivery delivery;
            delivery.flite = &flite_;
            delivery.shaper = &shaper;
            delivery.text = &part;
            delivery.sentence = &sentences[i];
            delivery.words = &stretch.words;
            delivery.nextMark = &nextMark;
            delivery.first = !std::exchange(stretch.inside, true);
            delivery.last = part.end != MarkedText::End::Sentence && i + 1 == sentences.size();
            delivery.offset = stretch.length;
            if (!SpeakTo(loaded, delivery)) {
                failed = true;
                return false;
            }
            if (delivery.stopped)
                return false;
            stretch.length += delivery.given;
        }
        // When the cut is inside a sentence, Flite takes its halves for two sentences; the silence it puts between them
        // is left out.
        if (part.end == MarkedText::End::Inside)
            stretch.inside = false;
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

    const std::filesystem::path folder_;
    bool listed_ = false;
    std::vector<Voice> voices_;
    std::map<std::string, int> rates_; ///< of the files' voices
    FliteLibrary& flite_ = loadedLibrary.flite;
};

} // namespace

std::unique_ptr<Engine> CreateFliteEngine()
{
    return std::make_unique<FliteEngine>(std::filesystem::path());
}

std::unique_ptr<Engine> CreateFlitevoxEngine(std::filesystem::path folder)
{
    return std::make_unique<FliteEngine>(std::move(folder));
}

} // namespace voxmate::speech
