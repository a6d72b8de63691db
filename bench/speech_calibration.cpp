// Prints what is heard from the engines' default voices and their variants: the median fundamental for each pitch asked
// for, the word rate for each rate asked for, and the voiced share that is left in a whisper.
//
//   speech_calibration [check]     with "check": on the passages that were not used for calibrating
//
// The tables in the engines (CalibrationPoint) list what is heard at each setting. To measure them anew, ask for the
// `heard` values of the table (they select exactly its settings) and replace them by what is heard now.
#include "bench/speech_prose.h"
#include "speech/Engine.h"
#include "speech/sound/SpeechMeasure.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>
#include <vector>

using namespace voxmate::speech;
using namespace voxmate::speech::measure;

namespace
{

struct Recorder final : SampleSink {
    std::vector<std::int16_t> samples;
    bool Samples(std::span<const std::int16_t> more) override
    {
        samples.insert(samples.end(), more.begin(), more.end());
        return true;
    }
    void Event(const SpeechEvent&) override {}
};

std::vector<std::int16_t> Speak(Engine& engine, const Voice& voice, std::string_view text, const Prosody& prosody)
{
    Segment segment;
    segment.text = text;
    segment.prosody = prosody;
    Recorder recorder;
    if (!engine.Synthesize(voice, std::span(&segment, 1), recorder)) {
        std::fprintf(stderr, "%s does not speak\n", voice.name.c_str());
        std::exit(1);
    }
    return recorder.samples;
}

void Measure(Engine& engine, const Voice& voice, std::span<const std::string_view> prose)
{
    const int rate = engine.SampleRate(voice);
    std::printf("\n%s\n", voice.name.c_str());
    std::printf("  pitch asked  heard     off   |  words/min asked  heard     off\n");
    std::vector<double> steps;
    for (const double asked : {40., 50., 60., 80., 100., 120., 150., 180., 200., 220., 250., 300., 350., 400.}) {
        PitchTrack all;
        std::size_t words = 0;
        double seconds = 0;
        for (const std::string_view text : prose) {
            Prosody pitched;
            pitched.pitchHz = static_cast<int>(asked);
            const PitchTrack track = TrackPitch(Speak(engine, voice, text, pitched), rate);
            all.hertz.insert(all.hertz.end(), track.hertz.begin(), track.hertz.end());
            Prosody timed;
            timed.wordsPerMinute = static_cast<int>(asked);
            seconds += SpeakingSeconds(Speak(engine, voice, text, timed), rate);
            words += CountWords(text);
        }
        const double pitch = all.Median();
        const double wordRate = static_cast<double>(words) * 60 / seconds;
        std::printf("  %8.0f  %8.1f  %+5.1f%%   |  %12.0f  %8.1f  %+5.1f%%\n", asked, pitch, (pitch / asked - 1) * 100,
                    asked, wordRate, (wordRate / asked - 1) * 100);
    }

    Prosody whisper;
    const std::vector<std::int16_t> voiced = Speak(engine, voice, prose[0], {});
    whisper.whisper = true;
    const std::vector<std::int16_t> whispered = Speak(engine, voice, prose[0], whisper);
    std::printf("  voiced share: speaking %.3f, whispering %.3f; level: speaking %.0f, whispering %.0f\n",
                TrackPitch(voiced, rate).VoicedShare(), TrackPitch(whispered, rate).VoicedShare(),
                SpeechLevel(voiced, rate), SpeechLevel(whispered, rate));
}

} // namespace

int main(int count, char** arguments)
{
    const bool check = count > 1 && std::strcmp(arguments[1], "check") == 0;
    const std::span<const std::string_view> prose =
        check ? std::span<const std::string_view>(CheckProse) : std::span<const std::string_view>(CalibrationProse);
    const auto espeak = CreateEspeakEngine();
    for (const Voice& voice : espeak->Voices())
        if (voice.key == "gmw/en" || voice.key == "gmw/en-US") {
            Measure(*espeak, voice, prose);
            for (const Voice& variant : espeak->VariantsOf(voice))
                Measure(*espeak, variant, prose);
        }
    const auto flite = CreateFliteEngine();
    for (const Voice& voice : flite->Voices())
        Measure(*flite, voice, prose);
}
