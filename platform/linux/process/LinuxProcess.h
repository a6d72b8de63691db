// The process and the shell on Linux.
#pragma once

#include "platform/Clock.h"
#include "platform/Process.h"

#include <chrono>
#include <functional>
#include <future>
#include <string>

namespace voxmate::linux_platform
{

class LinuxProcess : public Process
{
public:
    /// Creates the program's folder if it is missing, and puts the shipped tips in it.
    LinuxProcess();
    ~LinuxProcess() override;
    LinuxProcess(const LinuxProcess&) = delete;
    LinuxProcess& operator=(const LinuxProcess&) = delete;

    std::string ProgramDirectory() override;
    std::uint32_t GetWindowsDirectoryA(std::string& buffer, std::uint32_t size) override;
    /// Uses a lock on a file in the program's folder, because two copies of the program would overwrite each other's
    /// reminders there. The kernel releases it when the process ends, however it ends.
    bool PreviousInstance() override;
    /// "explorer.exe ADDRESS" opens the address with the desktop's own opener. The opener starts even where there is no
    /// browser, so it counts as failed, too, when it exits with an error within OpenerPatience. Any other command is a
    /// program and its arguments; those with blanks are in double quotes.
    double Shell(const std::string& command, int windowStyle) override;

    /// Called before the process ends, to finish within the given time: settings on their way to the disk.
    std::function<void(std::chrono::milliseconds patience)> BeforeEnd;
    /// Ends the process as EndProgram does, but gives BeforeEnd `patience`; EndProgram gives it EndPatience. Callable
    /// from any thread.
    [[noreturn]] void EndWithin(std::chrono::milliseconds patience);
    /// A busy disk may need seconds for a save, but one that does not answer must not block the program for ever.
    static constexpr std::chrono::milliseconds EndPatience{5000};
    /// From this call until this object is destroyed, exit() ends the process as EndProgram does. The toolkit calls
    /// exit() when the display has gone, for example at the end of a session without a manager, at any point of the
    /// program.
    void EndAtExit();
    /// Keeps the windows responsive while the opener is waited for; called every 10 ms.
    std::function<void()> WhileWaiting;
    /// An opener that cannot open an address reports that within 0.3 to 0.8 s on an idle machine.
    static constexpr std::chrono::milliseconds OpenerPatience{2000};

protected:
    void EndProcess() override;

private:
    bool EndsInError(std::future<int>& status) const;

    std::string programFolder_;
    int lock_ = -1;
};

class LinuxClock : public Clock
{
public:
    /// Must be constructed before other threads start, because it may remove TZ from the environment.
    LinuxClock();

    /// In the system's time zone, even if that was changed while the program runs.
    DateTime Now() override;
    std::string ShortDate(const DateTime& date) override;
};

} // namespace voxmate::linux_platform
