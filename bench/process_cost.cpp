// Measures the start and idle cost of a program with windows from outside: the time from its start to its first window
// on the screen, and its resident memory, processor time and wake-ups while idle.
//
// Usage: process_cost start COUNT PROGRAM       time to the first mapped window, COUNT times
//        process_cost idle SETTLE SECONDS PROGRAM   after SETTLE seconds: memory; processor time and wake-ups over
//        SECONDS
#include "bench/Statistics.h"

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

// Processor time used so far in milliseconds: utime and stime of /proc/PID/stat, in clock ticks.
double CpuMs(pid_t process)
{
    std::ifstream in("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(in, text);
    std::istringstream fields(text.substr(text.rfind(')') + 2));
    std::string field;
    double ticks = 0;
    for (int i = 3; i <= 15 && fields >> field; ++i) {
        if (i >= 14)
            ticks += std::stod(field);
    }
    return ticks * 1000 / static_cast<double>(::sysconf(_SC_CLK_TCK));
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

int MeasureIdle(int settle, int seconds, const char* program)
{
    const pid_t child = Start(program);
    std::this_thread::sleep_for(std::chrono::seconds(settle));
    const double memory = StatusMb(child, "VmRSS:");
    const double own = StatusMb(child, "RssAnon:");
    const double before = CpuMs(child);
    std::map<std::string, long> sleptBefore = WakeUps(child);
    std::this_thread::sleep_for(std::chrono::seconds(seconds));
    const double used = CpuMs(child) - before;
    // Those of a thread that has ended meanwhile are not known.
    long slept = 0;
    for (const auto& [thread, count] : WakeUps(child))
        slept += count - sleptBefore[thread];
    if (::waitpid(child, nullptr, WNOHANG) != 0) {
        std::cerr << program << " ended by itself\n";
        return 1;
    }
    std::printf("%s: resident %.1f MB (%.1f MB of its own), processor %.2f %%, %.0f wake-ups in 10 s, over %d s\n",
                program, memory, own, used / (seconds * 10.0), static_cast<double>(slept) * 10 / seconds, seconds);
    End(child);
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
