// Hears what a sound output plays: how late, and how exactly its clock tells it. Needs a sound server whose monitor can
// be recorded, e.g. one with only a null sink:
//
//   pulseaudio -n --exit-idle-time=-1 --load="module-null-sink sink_name=rec" --load=module-native-protocol-unix
#pragma once

#include "speech/AudioOutput.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <memory>
#include <span>
#include <thread>
#include <vector>

namespace voxmate::bench
{

using Clock = std::chrono::steady_clock;

inline double Milliseconds(Clock::time_point from, Clock::time_point to)
{
    return std::chrono::duration<double, std::milli>(to - from).count();
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

/// Runs the event loop until `done` or for so long.
inline void Wait(const std::function<bool()>& done, int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 2);
}

/// Plays one click every 200 ms through the output, to compare its clock with the times at which they come out.
class Clicks final : public speech::SampleSource
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

/// How many milliseconds the output's clock told each of twenty clicks after it came out at the sink (negative:
/// before).
inline std::vector<double> ClockErrors(speech::AudioOutput& output, Monitor& monitor)
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
    // A click that the sink has lost at its start must not put all others against their neighbours.
    for (const Clock::time_point told : said) {
        double nearest = 1000;
        for (const Clock::time_point came : out)
            if (const double late = Milliseconds(came, told); std::abs(late) < std::abs(nearest))
                nearest = late;
        if (std::abs(nearest) < 100)
            errors.push_back(nearest);
    }
    return errors;
}

} // namespace voxmate::bench
