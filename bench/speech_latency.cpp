// Measures how soon speech is heard after it was requested, how soon it is quiet after a stop, and how exactly the
// clock that moves the mouth follows what is heard. Needs a sound server whose monitor can be recorded, e.g. one with
// only a null sink:
//
//   pulseaudio -n --exit-idle-time=-1 --load="module-null-sink sink_name=rec" --load=module-native-protocol-unix
//   speech_latency [monitor=rec.monitor] [runs=20]
#include "platform/linux/desktop/QtAudioOutput.h"
#include "speech/player/VoicePlayer.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string>
#include <thread>
#include <vector>

using namespace voxmate::speech;
using Clock = std::chrono::steady_clock;

namespace
{

double Milliseconds(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double, std::milli>(to - from).count();
}

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

/// Records what the sink plays: raw 16-bit mono at 44100 Hz, with the time at which each block arrived.
class Monitor
{
public:
    explicit Monitor(const QString& source)
    {
        QObject::connect(&parec_, &QProcess::readyReadStandardOutput, [this] { Read(); });
        parec_.start("parec", {"-d", source, "--raw", "--format=s16le", "--rate=44100", "--channels=1",
                               "--latency-msec=4", "--process-time-msec=2"});
    }
    ~Monitor()
    {
        parec_.kill();
        parec_.waitForFinished();
    }

    Clock::time_point lastLoud;  ///< time of the last sample that is not silent
    Clock::time_point firstLoud; ///< time of the first such sample since Reset
    bool heard = false;
    std::int64_t bytes = 0;

    void Reset() { heard = false; }

private:
    void Read()
    {
        const QByteArray block = parec_.readAllStandardOutput();
        const Clock::time_point now = Clock::now();
        if (block.isEmpty())
            return;
        bytes += block.size();
        const std::span samples(reinterpret_cast<const std::int16_t*>(block.constData()),
                                static_cast<std::size_t>(block.size()) / 2);
        // A block that has just arrived holds what was played up to now.
        for (std::size_t i = 0; i < samples.size(); ++i) {
            if (std::abs(samples[i]) < 100)
                continue;
            const auto age = std::chrono::duration_cast<Clock::duration>(
                std::chrono::duration<double>(static_cast<double>(samples.size() - i) / 44100));
            lastLoud = now - age;
            if (!heard)
                firstLoud = lastLoud;
            heard = true;
        }
    }

    QProcess parec_;
};

void Wait(const std::function<bool()>& done, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 2);
}

/// Plays one click every 200 ms through the output, to compare its clock with the times at which they come out.
class Clicks final : public SampleSource
{
public:
    static constexpr int Rate = 22050;
    static constexpr std::int64_t Every = Rate / 5;
    static constexpr std::int64_t Total = std::int64_t{Rate} * 4;
    std::size_t Pull(std::span<std::int16_t> samples, bool& ended) override
    {
        std::size_t given = 0;
        for (; given < samples.size() && at_ < Total; ++given, ++at_)
            samples[given] = at_ % Every < 60 ? 16000 : 0;
        ended = given == 0;
        return given;
    }

private:
    std::int64_t at_ = 0;
};

std::vector<double> ClockErrors(voxmate::qt::QtAudioOutput& output, Monitor& monitor)
{
    std::vector<double> errors;
    bool over = false;
    std::vector<Clock::time_point> out;
    std::vector<Clock::time_point> said;
    const auto stream = output.Open(
        Clicks::Rate, std::make_shared<Clicks>(), [&over] { over = true; }, [&over] { over = true; });
    if (!stream)
        return errors;
    monitor.Reset();
    QElapsedTimer timer;
    timer.start();
    while (!over && timer.elapsed() < 8000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
        std::this_thread::sleep_for(std::chrono::microseconds(500));
        const Clock::time_point now = Clock::now();
        while (stream->SamplesHeard() > static_cast<std::int64_t>(said.size()) * Clicks::Every &&
               stream->SamplesHeard() > 0 && static_cast<std::int64_t>(said.size()) * Clicks::Every < Clicks::Total)
            said.push_back(now);
        if (monitor.heard) {
            out.push_back(monitor.firstLoud);
            // Between two clicks there is silence: wait for it before looking for the next click.
            const Clock::time_point until = monitor.firstLoud + std::chrono::milliseconds(100);
            while (Clock::now() < until) {
                QCoreApplication::processEvents(QEventLoop::AllEvents, 1);
                std::this_thread::sleep_for(std::chrono::microseconds(500));
                const Clock::time_point moment = Clock::now();
                while (stream->SamplesHeard() > static_cast<std::int64_t>(said.size()) * Clicks::Every &&
                       static_cast<std::int64_t>(said.size()) * Clicks::Every < Clicks::Total)
                    said.push_back(moment);
            }
            monitor.Reset();
        }
    }
    for (std::size_t i = 0; i < std::min(out.size(), said.size()); ++i)
        errors.push_back(Milliseconds(out[i], said[i]));
    return errors;
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
    VoiceCatalog catalog(std::move(engines), "en-GB");
    voxmate::qt::QtAudioOutput output;
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

    for (const char* name : {"eSpeak English (Great Britain)", "Flite SLT (American English)"}) {
        std::string id;
        for (int i = 1; i <= voices; ++i)
            if (catalog.ModeName(i) == name)
                id = catalog.ModeID(i);
        Utterance utterance;
        utterance.modeId = id;
        Segment segment;
        segment.text =
            "A quick answer is what everybody likes to hear, and the rest of this long sentence only keeps the "
            "voice busy until it is told to be quiet again.";
        utterance.segments.push_back(segment);

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
