// The process and the shell on Linux.
#pragma once

#include "platform/Clock.h"
#include "platform/Process.h"

#include <functional>
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
    /// A lock on a file of this user's: the kernel lets go of it when the process ends, however it ends.
    bool PreviousInstance() override;
    /// "explorer.exe ADDRESS" opens the address with the desktop's own opener; any other command is a program and its
    /// arguments, with double quotes round those that hold blanks.
    double Shell(const std::string& command, int windowStyle) override;

    /// What must still be done before the process ends: settings on their way to the disk.
    std::function<void()> BeforeEnd;

protected:
    void EndProcess() override;

private:
    std::string programFolder_;
    int lock_ = -1;
};

class LinuxClock : public Clock
{
public:
    DateTime Now() override;
    std::string ShortDate(const DateTime& date) override;
};

} // namespace voxmate::linux_platform
