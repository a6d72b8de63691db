// Measures the start and idle cost of a program with windows from outside: the time from its start to its first window
// on the screen, and its resident memory, processor time and wake-ups while idle.
//
// Usage: process_cost start COUNT PROGRAM       time to the first mapped window, COUNT times
//        process_cost idle SETTLE SECONDS PROGRAM   after SETTLE seconds, over SECONDS: memory (median and most),
//        processor time and wake-ups, these also for the quietest two seconds
#include "bench/Statistics.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>
#include <xcb/xcb.h>

namespace
{

using voxmate::bench::NowMs;
using voxmate::bench::Report;

pid_t Start(const char* program)
{
    const pid_t child = ::fork();
    if (child == 0) {
        ::execlp(program, program, nullptr);
        ::_exit(127);
    }
    return child;
}

void End(pid_t child)
{
    ::kill(child, SIGTERM);
    ::waitpid(child, nullptr, 0);
}

// The time until the next window is mapped below the root; a window manager's frame counts, too.
double TimeToWindow(xcb_connection_t* connection, const char* program)
{
    while (xcb_generic_event_t* old = xcb_poll_for_event(connection))
        std::free(old);
    const double begin = NowMs();
    const pid_t child = Start(program);
    double shown = 0;
    while (shown == 0) {
        xcb_generic_event_t* event = xcb_wait_for_event(connection);
        if (!event) {
            std::cerr << "the display is gone\n";
            std::exit(1);
        }
        if ((event->response_type & 0x7F) == XCB_MAP_NOTIFY)
            shown = NowMs() - begin;
        std::free(event);
    }
    End(child);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    return shown;
}

int MeasureStart(int count, const char* program)
{
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection)) {
        std::cerr << "no display\n";
        return 1;
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection);
    std::vector<double> times;
    times.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        times.push_back(TimeToWindow(connection, program));
    Report(std::string("start to first window: ") + program, times, "ms");
    xcb_disconnect(connection);
    return 0;
}

// The value in megabytes of a field of /proc/PID/status ("VmRSS:").
double StatusMb(pid_t process, const std::string& field)
{
    std::ifstream in("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(in, line);) {
        if (line.starts_with(field))
            return std::stod(line.substr(field.size())) / 1024;
    }
    return 0;
}

// Processor time in milliseconds that the threads of a process have used so far, exact to the nanosecond: the first
// number of their schedstat. /proc/PID/stat counts by ticks and misses what wakes up briefly.
double CpuMs(pid_t process)
{
    double nanoseconds = 0;
    std::error_code gone;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", gone)) {
        std::ifstream in(task.path() / "schedstat");
        double used = 0;
        if (in >> used)
            nanoseconds += used;
    }
    return nanoseconds / 1e6;
}

// How often each thread of a process has gone to sleep so far, which is how often it has woken up.
std::map<std::string, long> WakeUps(pid_t process)
{
    const std::string field = "voluntary_ctxt_switches:";
    std::map<std::string, long> counts;
    std::error_code gone;
    for (const auto& task : std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task", gone)) {
        std::ifstream in(task.path() / "status");
        for (std::string line; std::getline(in, line);) {
            if (line.starts_with(field))
                counts[task.path().filename()] = std::stol(line.substr(field.size()));
        }
    }
    return counts;
}

// What a process has cost up to a moment.
struct Cost {
    double resident = 0, own = 0; // megabytes
    double cpu = 0;               // milliseconds of processor time since its start
    double wakeUps = 0;           // since the measurement's start; those of threads that have ended are not known
};

int MeasureIdle(int settle, int seconds, const char* program)
{
    constexpr int PerSecond = 2;
    constexpr int Quiet = 2 * PerSecond; // samples in which nothing need be moving
    const pid_t child = Start(program);
    std::this_thread::sleep_for(std::chrono::seconds(settle));
    std::map<std::string, long> slept = WakeUps(child);
    std::vector<Cost> costs;
    double wakeUps = 0;
    auto next = std::chrono::steady_clock::now();
    for (int i = 0; i <= seconds * PerSecond; ++i, next += std::chrono::milliseconds(1000 / PerSecond)) {
        std::this_thread::sleep_until(next);
        for (const auto& [thread, count] : WakeUps(child)) {
            wakeUps += static_cast<double>(count - slept[thread]);
            slept[thread] = count;
        }
        costs.push_back({StatusMb(child, "VmRSS:"), StatusMb(child, "RssAnon:"), CpuMs(child), wakeUps});
    }
    if (::waitpid(child, nullptr, WNOHANG) != 0) {
        std::cerr << program << " ended by itself\n";
        return 1;
    }
    End(child);

    const auto of = [&costs](double Cost::*part) {
        std::vector<double> values;
        values.reserve(costs.size());
        for (const Cost& cost : costs)
            values.push_back(cost.*part);
        std::sort(values.begin(), values.end());
        return values;
    };
    // The least that the part grew in a span without movement, per second.
    const auto least = [&costs](double Cost::*part) {
        double found = costs.back().*part;
        for (std::size_t i = Quiet; i < costs.size(); ++i)
            found = std::min(found, costs[i].*part - costs[i - Quiet].*part);
        return found * PerSecond / Quiet;
    };
    const auto resident = of(&Cost::resident);
    const auto own = of(&Cost::own);
    std::printf(
        "%s over %d s: resident %.1f MB (%.1f MB of its own), most %.1f MB (%.1f MB of its own); "
        "processor %.2f %%, %.0f wake-ups in 10 s; in its quietest %d s processor %.2f %%, %.0f wake-ups in 10 s\n",
        program, seconds, resident[resident.size() / 2], own[own.size() / 2], resident.back(), own.back(),
        (costs.back().cpu - costs.front().cpu) / (seconds * 10.0), wakeUps * 10 / seconds, Quiet / PerSecond,
        least(&Cost::cpu) / 10, least(&Cost::wakeUps) * 10);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 4 && std::strcmp(argv[1], "start") == 0)
        return MeasureStart(std::atoi(argv[2]), argv[3]);
    if (argc == 5 && std::strcmp(argv[1], "idle") == 0)
        return MeasureIdle(std::atoi(argv[2]), std::atoi(argv[3]), argv[4]);
    std::cerr << "usage: process_cost start COUNT PROGRAM | idle SETTLE SECONDS PROGRAM\n";
    return 2;
}
