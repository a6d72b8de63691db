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
    /// Makes the program's folder if it is missing, with the shipped tips in it.
    LinuxProcess();
    ~LinuxProcess() override;
    LinuxProcess(const LinuxProcess&) = delete;
    LinuxProcess& operator=(const LinuxProcess&) = delete;

    std::string ProgramDirectory() override;
    std::uint32_t GetWindowsDirectoryA(std::string& buffer, std::uint32_t size) override;
    /// A lock on a file in the program's folder, because two copies would write over each other's reminders there. The
    /// kernel lets go of it when the process ends, however it ends.
    bool PreviousInstance() override;
    /// "explorer.exe ADDRESS" opens the address with the desktop's own opener, which has failed, too, when it ends with
    /// an error within OpenerPatience: it starts even where there is no browser. Any other command is a program and its
    /// arguments, with double quotes round those that hold blanks.
    double Shell(const std::string& command, int windowStyle) override;

    /// What must still be done before the process ends, within a time: settings on their way to the disk.
    std::function<void(std::chrono::milliseconds patience)> BeforeEnd;
    /// Ends the process as EndProgram does, which gives BeforeEnd the time EndPatience. From any thread.
    [[noreturn]] void EndWithin(std::chrono::milliseconds patience);
    /// A busy disk may need seconds for a save, and one that does not answer must not hold the program for ever.
    static constexpr std::chrono::milliseconds EndPatience{5000};
    /// While this object lives, exit() ends the process as EndProgram does. The toolkit calls it when the display has
    /// gone, as it does at the end of a session without a manager, in the middle of everything.
    void EndAtExit();
    /// Lets the windows live while the opener is waited for; run every 10 ms.
    std::function<void()> WhileWaiting;
    /// An opener that knows no way says so within 0.3 to 0.8 s on an idle machine.
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
    /// To be made before there are other threads: it may take TZ out of the environment.
    LinuxClock();

    /// In the system's time zone, also when that has been changed meanwhile.
    DateTime Now() override;
    std::string ShortDate(const DateTime& date) override;
};

} // namespace voxmate::linux_platform
