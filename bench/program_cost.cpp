// Measures the program's own steps in one process with all real parts: the start-up sequence, one dragged pitch change
// with its settings write, and the time from SpeakText to the first sample at the sink, compared with the speech
// library alone.
//
// Usage: program_cost startup | pitch | speech      (needs a display; speech needs a sound server, too)
#include "agent/Server.h"
#include "bench/Statistics.h"
#include "forms/frmMain.h"
#include "modules/Program.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/files/LinuxFileSystem.h"
#include "platform/linux/process/LinuxProcess.h"
#include "platform/linux/settings/FileSettingsStore.h"
#include "platform/linux/sound/PulseDevice.h"
#include "platform/linux/word/LibreOfficeWord.h"
#include "qt/character/QtStage.h"
#include "qt/system/QtApplication.h"
#include "qt/system/QtAudioOutput.h"
#include "qt/system/QtWindowSystem.h"
#include "speech/VoiceCatalog.h"
#include "speech/player/VoicePlayer.h"

#include <espeak-ng/speak_lib.h>

#include <atomic>
#include <cstring>
#include <iostream>
#include <memory>
#include <utility>
#include <vector>

using namespace voxmate;

namespace
{

using bench::NowMs;
using bench::Report;

// Records when the sink first gets samples.
class Watched : public speech::AudioOutput
{
public:
    explicit Watched(speech::AudioOutput& real) : real_(real) {}
    std::atomic<double> firstSample{0};

    AudioStatus Check() override { return real_.Check(); }
    std::unique_ptr<speech::AudioStream> Open(int rate, std::shared_ptr<speech::SampleSource> source,
                                              std::function<void()> drained, std::function<void()> failed) override
    {
        return real_.Open(rate, std::make_shared<Source>(*this, std::move(source)), std::move(drained),
                          std::move(failed));
    }
    void Post(std::function<void()> action) override { real_.Post(std::move(action)); }
    void PostAfter(int milliseconds, std::function<void()> action) override
    {
        real_.PostAfter(milliseconds, std::move(action));
    }

private:
    class Source : public speech::SampleSource
    {
    public:
        Source(Watched& owner, std::shared_ptr<speech::SampleSource> real) : owner_(owner), real_(std::move(real)) {}
        std::size_t Pull(std::span<std::int16_t> samples, bool& ended) override
        {
            const std::size_t got = real_->Pull(samples, ended);
            double none = 0;
            if (got > 0)
                owner_.firstSample.compare_exchange_strong(none, NowMs());
            return got;
        }

    private:
        Watched& owner_;
        std::shared_ptr<speech::SampleSource> real_;
    };
    speech::AudioOutput& real_;
};

// The program assembled as in main().
struct WholeProgram {
    std::unique_ptr<linux_platform::FileSettingsStore> settings = linux_platform::MakeSettingsStore();
    linux_platform::LinuxFileSystem files;
    linux_platform::LinuxProcess process;
    linux_platform::LinuxClock clock;
    speech::VoiceCatalog voices{Engines(), "en"};
    qt::QtWindowSystem windows{linux_platform::SharedDataFolder()};
    qt::QtAudioOutput<voxmate::speech::PulseDevice> sound;
    Watched watched{sound};
    speech::VoicePlayer voice{voices, watched};
    qt::QtStage stage{watched};
    agent::Server server{stage, voice};
    linux_platform::LibreOfficeWord word;
    Platform platform{*settings, server, voices, windows, files, process, clock, word};
    Program parts{platform};
    frmMain form{parts};

    WholeProgram()
    {
        form.Show();
        windows.DoEvents();
    }
    static std::vector<std::unique_ptr<speech::Engine>> Engines()
    {
        std::vector<std::unique_ptr<speech::Engine>> engines;
        engines.push_back(speech::CreateEspeakEngine());
        engines.push_back(speech::CreateFliteEngine());
        return engines;
    }
    void RunEvents(double milliseconds)
    {
        for (const double end = NowMs() + milliseconds; NowMs() < end;)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    }
    bool RunUntil(const std::function<bool()>& done, double milliseconds)
    {
        for (const double end = NowMs() + milliseconds; NowMs() < end;) {
            if (done())
                return true;
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 5);
        }
        return done();
    }
};

void MeasureStartUp()
{
    WholeProgram program;
    const double begin = NowMs();
    program.parts.RunStartUp();
    std::printf("%.3f\n", NowMs() - begin);
}

void MeasurePitch()
{
    WholeProgram program;
    program.parts.RunStartUp();
    std::vector<double> times;
    for (int i = 0; i < 1000; ++i) {
        const int value = 41 + i % 350;
        const double begin = NowMs();
        program.form.scrPitch.UserScroll(value);
        times.push_back(NowMs() - begin);
    }
    Report("one dragged pitch change with its settings write", times, "ms", "under 1 ms");
}

double libraryFirst = 0;

int LibraryCallback(short* samples, int count, espeak_EVENT* /*events*/)
{
    if (samples && count > 0 && libraryFirst == 0)
        libraryFirst = NowMs();
    return 0;
}

void MeasureSpeech()
{
    const std::string text = "The quick brown fox jumps over the lazy dog, and the dog does not mind at all.";
    constexpr int rounds = 21;
    std::vector<double> whole;
    {
        WholeProgram program;
        program.parts.RunStartUp();
        program.RunUntil([&] { return program.form.stsBar.Panels()[0].text == StatusIdle; }, 3000);
        program.RunEvents(3000);
        for (int i = 0; i < rounds; ++i) {
            program.watched.firstSample = 0;
            const double begin = NowMs();
            program.parts.Voice.SpeakText(text, "");
            program.RunUntil([&] { return program.watched.firstSample != 0; }, 5000);
            whole.push_back(program.watched.firstSample - begin);
            program.RunEvents(150);
            program.parts.Character->StopAll("");
            program.RunEvents(400);
        }
    }
    // The first round also loads the voice; it is left out on both sides.
    const double cold = whole.front();
    whole.erase(whole.begin());
    Report("SpeakText to first sample at the sink", whole, "ms", "within 1.3 times of the library alone");
    std::printf("  the first one, which loads the voice: %.3f ms\n", cold);

    // The library has been initialised by the program and keeps its voice and parameters.
    espeak_SetSynthCallback(LibraryCallback);
    std::vector<double> library;
    for (int i = 0; i < rounds; ++i) {
        libraryFirst = 0;
        const double begin = NowMs();
        espeak_Synth(text.c_str(), text.size() + 1, 0, POS_CHARACTER, 0, espeakCHARS_UTF8, nullptr, nullptr);
        espeak_Synchronize();
        library.push_back(libraryFirst - begin);
    }
    library.erase(library.begin());
    Report("the engine's library alone to its first samples", library, "ms");
    std::printf("  ratio of the medians: %.2f\n", bench::Median(whole) / bench::Median(library));
}

} // namespace

int main(int argc, char** argv)
{
    qt::QtApplication application(argc, argv);
    const std::string what = argc == 2 ? argv[1] : "";
    if (what == "startup")
        MeasureStartUp();
    else if (what == "pitch")
        MeasurePitch();
    else if (what == "speech")
        MeasureSpeech();
    else {
        std::cerr << "usage: program_cost startup | pitch | speech\n";
        return 2;
    }
    std::fflush(stdout);
    std::_Exit(0);
}
