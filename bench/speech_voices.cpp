// Prints a table of the installed voices that speak English, each measured in a process of its own: how long its first
// use takes, how soon a sentence is heard after that, how long a second of speech takes to make, how much memory the
// voice needs, how far the pitch and the speed heard are from those asked for, and when its words are heard.
//
//   speech_voices [part of a voice's name] [folder with neural voices; the program's own without]
#include "bench/speech_prose.h"
#include "platform/linux/files/Folders.h"
#include "speech/VoiceCatalog.h"
#include "speech/sound/SpeechMeasure.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

using namespace voxmate::speech;
using namespace voxmate::speech::measure;

namespace
{

using Clock = std::chrono::steady_clock;

constexpr int NoMoreVoices = 3;

double Since(Clock::time_point begin)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

struct Recorder final : SampleSink {
    Clock::time_point begin = Clock::now();
    std::optional<double> first; ///< milliseconds from the beginning to the first sound
    double all = 0;              ///< milliseconds to the end
    std::vector<std::int16_t> samples;
    std::vector<std::int64_t> words; ///< the first sample of each

    bool Samples(std::span<const std::int16_t> more) override
    {
        if (!first && std::any_of(more.begin(), more.end(), [](std::int16_t sample) { return std::abs(sample) > 100; }))
            first = Since(begin);
        samples.insert(samples.end(), more.begin(), more.end());
        return true;
    }
    void Event(const SpeechEvent& event) override
    {
        if (event.kind == SpeechEvent::Kind::Word)
            words.push_back(event.sample);
    }
};

Recorder Speak(const VoiceCatalog::Entry& entry, std::string_view text, int pitch = 0, int speed = 0)
{
    Segment segment;
    segment.text = text;
    segment.prosody.pitchHz = pitch;
    segment.prosody.wordsPerMinute = speed;
    Recorder recorder;
    if (!entry.engine->Synthesize(entry.voice, {&segment, 1}, recorder)) {
        std::fprintf(stderr, "%s does not speak\n", entry.voice.name.c_str());
        std::_Exit(1);
    }
    recorder.all = Since(recorder.begin);
    return recorder;
}

// A figure of this process in megabytes: VmRSS or VmHWM.
double Memory(const std::string& figure)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with(figure + ":"))
            return std::stod(line.substr(figure.size() + 1)) / 1024;
    return 0;
}

double Worse(double worst, double heard, double asked)
{
    const double off = (heard / asked - 1) * 100;
    return std::abs(off) > std::abs(worst) ? off : worst;
}

// Sentences of one word each: how far the time told for a word is from the nearest beginning of sound, at the worst, in
// milliseconds.
double WordsOff(const VoiceCatalog::Entry& entry, int rate)
{
    const Recorder heard = Speak(entry, "Moon. Lion. Mellow. Nine. Wall. Yellow. Room. Lemon.", 0, 120);
    double worst = 0;
    for (const std::int64_t word : heard.words) {
        double nearest = 1e9;
        for (const std::int64_t onset : Onsets(heard.samples, rate)) {
            const double off = static_cast<double>(word - onset) * 1000 / rate;
            if (std::abs(off) < std::abs(nearest))
                nearest = off;
        }
        if (std::abs(nearest) > std::abs(worst))
            worst = nearest;
    }
    return worst;
}

int Measure(int number, const std::string& part, const std::string& folder)
{
    const auto ignore = [](const std::string& what) { std::fprintf(stderr, "%s\n", what.c_str()); };
    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(CreateEspeakEngine());
    engines.push_back(CreateFliteEngine());
    engines.push_back(CreatePiperEngine(folder, voxmate::linux_platform::DataFolder(),
                                        voxmate::linux_platform::HomeFolder(), ignore, ignore));
    VoiceCatalog catalog(std::move(engines), "en-US");
    int seen = 0;
    const VoiceCatalog::Entry* entry = nullptr;
    for (int i = 1; i <= catalog.CountEngines() && !entry; ++i) {
        const VoiceCatalog::Entry* one = catalog.Find(catalog.ModeID(i));
        if (one && one->voice.language.starts_with("en") && one->voice.name.find(part) != std::string::npos &&
            seen++ == number)
            entry = one;
    }
    if (!entry)
        return NoMoreVoices;
    const int rate = entry->engine->SampleRate(entry->voice);
    const double before = Memory("VmRSS");
    const std::string sentence = "The rain had stopped at last, and every leaf in the garden was shining.";
    const double firstUse = Speak(*entry, sentence).first.value_or(0);
    std::vector<double> soon(5);
    for (double& milliseconds : soon)
        milliseconds = Speak(*entry, sentence).first.value_or(0);
    std::sort(soon.begin(), soon.end());
    double milliseconds = 0;
    double sound = 0;
    std::size_t words = 0;
    for (const std::string_view text : CheckProse) {
        const Recorder heard = Speak(*entry, text);
        milliseconds += heard.all;
        sound += static_cast<double>(heard.samples.size()) * 1000 / rate;
        words += CountWords(text);
    }
    const double most = Memory("VmHWM") - before;
    double pitchOff = 0;
    for (const int asked : {90, 150, 220}) {
        PitchTrack all;
        for (const std::string_view text : CheckProse) {
            const PitchTrack track = TrackPitch(Speak(*entry, text, asked, 156).samples, rate);
            all.hertz.insert(all.hertz.end(), track.hertz.begin(), track.hertz.end());
        }
        pitchOff = Worse(pitchOff, all.Median(), asked);
    }
    double speedOff = 0;
    for (const int asked : {100, 156, 300}) {
        double seconds = 0;
        for (const std::string_view text : CheckProse)
            seconds += SpeakingSeconds(Speak(*entry, text, 0, asked).samples, rate);
        speedOff = Worse(speedOff, static_cast<double>(words) * 60 / seconds, asked);
    }
    std::printf("%-46s %7.0f %7.0f %9.3f %8.0f %+8.1f %+8.1f %+8.0f\n", entry->voice.name.c_str(), firstUse,
                soon[soon.size() / 2], milliseconds / sound, most, pitchOff, speedOff, WordsOff(*entry, rate));
    return 0;
}

} // namespace

int main(int count, char** arguments)
{
    const std::string part = count > 1 ? arguments[1] : "";
    const std::string folder = count > 2 ? arguments[2] : voxmate::linux_platform::ProgramFolder() + "/voices";
    std::printf("%-46s %7s %7s %9s %8s %8s %8s %8s\n", "voice", "1st use", "sound", "real time", "memory", "pitch",
                "speed", "words");
    std::printf("%-46s %7s %7s %9s %8s %8s %8s %8s\n", "", "ms", "ms", "s/s", "MB", "% off", "% off", "ms off");
    std::fflush(stdout);
    for (int number = 0;; ++number) {
        const pid_t child = fork();
        if (child == 0) {
            const int status = Measure(number, part, folder);
            std::fflush(stdout);
            std::_Exit(status);
        }
        int status = 0;
        if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
            return 1;
        if (WEXITSTATUS(status) != 0)
            return WEXITSTATUS(status) == NoMoreVoices && number > 0 ? 0 : 1;
    }
}
