// The signals that ask the program to end.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace voxmate::linux_platform
{

/// Handles SIGTERM (sent when a session or the system ends), SIGINT (Ctrl+C in a terminal) and SIGHUP (the terminal was
/// closed) during its lifetime. A signal that was ignored at the program's start stays ignored. Only one of these
/// objects may exist.
class EndSignals
{
public:
    /// `arrived` is called for the first signal, on this object's own thread. Later signals change nothing, because
    /// whoever ends a program often sends several. If the program still runs after `patience`, its event loop hangs,
    /// and `overdue` is called on the same thread.
    EndSignals(std::function<void()> arrived, std::function<void()> overdue, std::chrono::milliseconds patience);
    ~EndSignals();

private:
    void Wait(const std::function<void()>& arrived, const std::function<void()>& overdue,
              std::chrono::milliseconds patience) const;

    int wake_ = -1; ///< read end of the pipe through which the signal handler reports
    std::thread waiter_;
};

} // namespace voxmate::linux_platform
