// Measures how soon speech is heard after it was requested, how soon it is quiet after a stop, and how exactly the
// clock that moves the mouth follows what is heard. Needs a sound server that can be recorded (bench/Monitor.h).
//
//   speech_latency [monitor=rec.monitor] [runs=20] [folder with neural voices; the program's own without]
#include "bench/Monitor.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/sound/PulseDevice.h"
#include "qt/system/QtAudioOutput.h"
#include "speech/player/VoicePlayer.h"

#include <algorithm>
#include <cstdio>
#include <string>

using namespace voxmate::bench;
using namespace voxmate::speech;

namespace
{

void Print(const char* what, std::vector<double> values)
{
    if (values.empty()) {
        std::printf("%-44s nothing measured\n", what);
        return;
    }
    std::sort(values.begin(), values.end());
    const auto at = [&](double share) {
        return values[static_cast<std::size_t>(share * static_cast<double>(values.size() - 1))];
    };
    std::printf("%-44s median %6.1f  10%% %6.1f  90%% %6.1f  worst %6.1f ms (%zu runs)\n", what, at(0.5), at(0.1),
                at(0.9), values.back(), values.size());
}

} // namespace

int main(int count, char** arguments)
{
    QCoreApplication application(count, arguments);
    const QString source = count > 1 ? arguments[1] : "rec.monitor";
    const int runs = count > 2 ? std::atoi(arguments[2]) : 20;

    std::vector<std::unique_ptr<Engine>> engines;
    engines.push_back(CreateEspeakEngine());
    engines.push_back(CreateFliteEngine());
    const auto tell = [](const std::string& what) { std::fprintf(stderr, "%s\n", what.c_str()); };
    engines.push_back(CreatePiperEngine(count > 3 ? arguments[3] : voxmate::linux_platform::ProgramFolder() + "/voices",
                                        voxmate::linux_platform::DataFolder(), voxmate::linux_platform::HomeFolder(),
                                        tell, tell));
    VoiceCatalog catalog(std::move(engines), "en-GB");
    voxmate::qt::QtAudioOutput<voxmate::speech::PulseDevice> output;
    VoicePlayer player(catalog, output);

    const Clock::time_point checking = Clock::now();
    const voxmate::AudioStatus status = player.Status();
    std::printf("status %d, told after %.1f ms\n", static_cast<int>(status), Milliseconds(checking, Clock::now()));
    if (status != voxmate::AudioStatus::Available)
        return 1;
    const Clock::time_point listing = Clock::now();
    const int voices = catalog.CountEngines();
    std::printf("%d voices, listed in %.1f ms\n", voices, Milliseconds(listing, Clock::now()));

    Monitor monitor(source);
    Wait([&] { return monitor.bytes > 44100; }, 3000);
    if (monitor.bytes == 0) {
        std::printf("nothing can be recorded from %s\n", source.toUtf8().constData());
        return 1;
    }

    // And the first neural voice, where there is one.
    for (const char* name : {"eSpeak English (Great Britain)", "Flite SLT (American English)", "Piper "}) {
        std::string id;
        for (int i = 1; i <= voices && id.empty(); ++i)
            if (catalog.ModeName(i).starts_with(name))
                id = catalog.ModeID(i);
        if (id.empty()) {
            std::printf("%s is not installed\n", name);
            continue;
        }
        Utterance utterance;
        utterance.modeId = id;
        Segment segment;
        segment.text =
            "A quick answer is what everybody likes to hear, and the rest of this long sentence only keeps the "
            "voice busy until it is told to be quiet again.";
        utterance.segments.push_back(segment);

        // Its first use, when it is loaded.
        monitor.Reset();
        player.Start(utterance, {});
        Wait([&] { return monitor.heard; }, 20000);
        player.Stop();
        Wait([] { return false; }, 400);

        std::vector<double> starts;
        std::vector<double> stops;
        std::vector<double> calls;
        for (int run = 0; run < runs; ++run) {
            // Varies the wait, so that it does not fall into a rhythm of the server's.
            Wait([] { return false; }, 250 + run * 7 % 50);
            monitor.Reset();
            const Clock::time_point pressed = Clock::now();
            player.Start(utterance, {});
            Wait([&] { return monitor.heard; }, 3000);
            if (!monitor.heard)
                continue;
            starts.push_back(Milliseconds(pressed, monitor.firstLoud));
            Wait([] { return false; }, 600 + run * 13 % 100);
            const Clock::time_point stopped = Clock::now();
            player.Stop();
            calls.push_back(Milliseconds(stopped, Clock::now()));
            Wait([] { return false; }, 400);
            stops.push_back(std::max(0.0, Milliseconds(stopped, monitor.lastLoud)));
        }
        std::printf("%s\n", name);
        Print("  from the press to the first sound", starts);
        Print("  from the stop to the last sound", stops);
        Print("  the stop itself kept its caller waiting", calls);
    }
    Print("the clock behind the sound (negative: ahead)", ClockErrors(output, monitor));
}
