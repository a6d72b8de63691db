// The signals that ask the program to end.
#pragma once

#include <chrono>
#include <functional>
#include <thread>

namespace voxmate::linux_platform
{

/// Takes SIGTERM (sent when a session or the system ends), SIGINT (Ctrl+C in a terminal) and SIGHUP (the terminal was
/// closed) while it lives; one that the program was started to ignore stays ignored. Only one of these may exist.
class EndSignals
{
public:
    /// `arrived` is called for the first signal, on a thread of this object's own; later ones change nothing, because
    /// many who end a program send several. When the program still runs `patience` later, its event loop hangs, and
    /// `overdue` is called on the same thread.
    EndSignals(std::function<void()> arrived, std::function<void()> overdue, std::chrono::milliseconds patience);
    ~EndSignals();
    EndSignals(const EndSignals&) = delete;
    EndSignals& operator=(const EndSignals&) = delete;

private:
    void Wait(const std::function<void()>& arrived, const std::function<void()>& overdue,
              std::chrono::milliseconds patience) const;

    int wake_ = -1; ///< the end of the pipe that a signal's arrival is read from
    std::thread waiter_;
};

} // namespace voxmate::linux_platform
