#include "platform/linux/process/EndSignals.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

constexpr std::array Signals{SIGTERM, SIGINT, SIGHUP};

// What the signal handler needs; it may do little more than write to a pipe. A child shares the pipe until it becomes
// another program, so the handler checks the process.
volatile sig_atomic_t pipeEnd = -1;
volatile sig_atomic_t owner = 0;

std::array<struct sigaction, Signals.size()> before;

constexpr char Signal = 's';
constexpr char Stop = 'x';

void Handle(int /*signal*/)
{
    const int error = errno;
    if (::getpid() == owner) [[maybe_unused]]
        const ssize_t written = ::write(pipeEnd, &Signal, 1);
    errno = error;
}

} // namespace

EndSignals::EndSignals(std::function<void()> arrived, std::function<void()> overdue, std::chrono::milliseconds patience)
{
    std::array<int, 2> ends{-1, -1};
    // Without a pipe the signals end the program as usual.
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return;
    wake_ = ends[0];
    pipeEnd = ends[1];
    owner = ::getpid();
    waiter_ = std::thread([this, arrived = std::move(arrived), overdue = std::move(overdue), patience] {
        Wait(arrived, overdue, patience);
    });
    for (std::size_t i = 0; i < Signals.size(); ++i) {
        struct sigaction take {
        };
        take.sa_handler = Handle;
        take.sa_flags = SA_RESTART;
        ::sigaction(Signals[i], nullptr, &before[i]);
        if (before[i].sa_handler != SIG_IGN)
            ::sigaction(Signals[i], &take, nullptr);
    }
}

EndSignals::~EndSignals()
{
    if (wake_ < 0)
        return;
    for (std::size_t i = 0; i < Signals.size(); ++i)
        ::sigaction(Signals[i], &before[i], nullptr);
    [[maybe_unused]] const ssize_t written = ::write(pipeEnd, &Stop, 1);
    waiter_.join();
    ::close(wake_);
    ::close(std::exchange(pipeEnd, -1));
}

void EndSignals::Wait(const std::function<void()>& arrived, const std::function<void()>& overdue,
                      std::chrono::milliseconds patience) const
{
    bool told = false;
    const auto forever = std::chrono::steady_clock::time_point::max();
    auto deadline = forever;
    while (true) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        pollfd wake{wake_, POLLIN, 0};
        const int ready =
            ::poll(&wake, 1, deadline == forever ? -1 : static_cast<int>(std::max<std::int64_t>(left.count(), 0)));
        if (ready == 0) {
            deadline = forever;
            overdue();
            continue;
        }
        char what = 0;
        if (ready < 0 || ::read(wake_, &what, 1) != 1)
            continue;
        if (what == Stop)
            return;
        if (!std::exchange(told, true)) {
            deadline = std::chrono::steady_clock::now() + patience;
            arrived();
        }
    }
}

} // namespace voxmate::linux_platform
