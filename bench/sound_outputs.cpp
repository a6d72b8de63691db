// Compares ways to the loudspeaker. Needs a sound server that can be recorded (bench/Monitor.h); bench/sound_outputs.py
// starts one, and disturbs it.
//
//   sound_outputs pulse|cubeb figures [runs=20]   asking to first sample, stop to silence, clock, processor, memory
//   sound_outputs pulse|cubeb events              plays a tone without end and tells, with the time in milliseconds,
//                                                 when it was opened, failed, and tried again
#include "bench/Monitor.h"
#include "bench/Statistics.h"
#include "platform/linux/sound/PulseDevice.h"
#include "qt/system/QtAudioOutput.h"
#ifdef VOXMATE_CUBEB
#include "bench/CubebOutput.h"
#endif

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

using namespace voxmate;
using namespace voxmate::bench;

namespace
{

constexpr int Rate = 22050;

/// A tone that is there at once and does not end.
class Tone final : public speech::SampleSource
{
public:
    std::size_t Pull(std::span<std::int16_t> samples, bool& /*ended*/) override
    {
        for (std::int16_t& sample : samples)
            sample = at_++ / 25 % 2 == 0 ? 8000 : -8000;
        return samples.size();
    }

private:
    std::int64_t at_ = 0;
};

std::unique_ptr<speech::AudioOutput> OutputNamed(const std::string& name)
{
    if (name == "pulse")
        return std::make_unique<qt::QtAudioOutput<voxmate::speech::PulseDevice>>();
#ifdef VOXMATE_CUBEB
    if (name == "cubeb")
        return std::make_unique<CubebOutput>();
#endif
    return nullptr;
}

double ResidentMb()
{
    std::ifstream in("/proc/self/status");
    for (std::string line; std::getline(in, line);)
        if (line.starts_with("VmRSS:"))
            return std::stod(line.substr(6)) / 1024;
    return 0;
}

double ProcessorMs()
{
    return static_cast<double>(std::clock()) * 1000 / CLOCKS_PER_SEC;
}

int Figures(speech::AudioOutput& output, int runs)
{
    const double before = ResidentMb();
    if (output.Check() != AudioStatus::Available) {
        std::printf("no sound\n");
        return 1;
    }
    Monitor monitor("rec.monitor");
    Wait([&] { return monitor.bytes > 44100; }, 3000);
    std::vector<double> starts;
    std::vector<double> stops;
    std::vector<double> calls;
    for (int run = 0; run < runs; ++run) {
        // Varies the waits, so that they do not fall into a rhythm of the server's.
        Wait([] { return false; }, 250 + run * 7 % 50);
        monitor.Reset();
        const Clock::time_point asked = Clock::now();
        auto stream = output.Open(
            Rate, std::make_shared<Tone>(), [] {}, [] {});
        Wait([&] { return monitor.heard; }, 3000);
        if (monitor.heard)
            starts.push_back(Milliseconds(asked, monitor.firstLoud));
        Wait([] { return false; }, 300 + run * 13 % 100);
        const Clock::time_point stopped = Clock::now();
        stream.reset();
        calls.push_back(Milliseconds(stopped, Clock::now()));
        Wait([] { return false; }, 300);
        stops.push_back(std::max(0.0, Milliseconds(stopped, monitor.lastLoud)));
    }
    Report("from asking to the first sample at the sink", starts, "ms");
    Report("from the stop to the last sample at the sink", stops, "ms");
    Report("the stop kept its caller waiting", calls, "ms");
    Report("the clock behind the sound (negative: ahead)", ClockErrors(output, monitor), "ms");
    const auto stream = output.Open(
        Rate, std::make_shared<Tone>(), [] {}, [] {});
    Wait([] { return false; }, 1000);
    const double used = ProcessorMs();
    std::this_thread::sleep_for(std::chrono::seconds(10));
    std::printf("processor while it plays: %.2f %%\n", (ProcessorMs() - used) / 100);
    std::printf("resident memory: %.1f MB more\n", ResidentMb() - before);
    return 0;
}

int Events(speech::AudioOutput& output)
{
    const double begin = NowMs();
    const auto tell = [&](const char* what) {
        std::printf("%.1f %s\n", NowMs() - begin, what);
        std::fflush(stdout);
    };
    std::unique_ptr<speech::AudioStream> stream;
    std::string last;
    tell("begin");
    while (true) {
        bool failed = false;
        stream = output.Open(
            Rate, std::make_shared<Tone>(), [] {}, [&failed] { failed = true; });
        const std::string now = stream ? "opened" : "refused";
        if (now != last)
            tell(now.c_str());
        last = now;
        if (stream) {
            Wait([&] { return failed; }, 1'000'000'000);
            tell("failed");
            last = "failed";
            stream.reset();
        }
        Wait([] { return false; }, 100);
    }
}

} // namespace

int main(int count, char** arguments)
{
    QCoreApplication application(count, arguments);
    const std::string mode = count > 2 ? arguments[2] : "";
    const auto output = OutputNamed(count > 1 ? arguments[1] : "");
    if (!output || (mode != "figures" && mode != "events")) {
        std::fprintf(stderr, "usage: sound_outputs pulse|cubeb figures [RUNS] | events\n");
        return 2;
    }
    return mode == "figures" ? Figures(*output, count > 3 ? std::atoi(arguments[3]) : 20) : Events(*output);
}
