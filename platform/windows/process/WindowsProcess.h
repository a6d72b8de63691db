// The process, the shell and the clock on Windows.
#pragma once

#include "platform/Clock.h"
#include "platform/Process.h"

#include <chrono>
#include <functional>
#include <string>

namespace voxmate::windows_platform
{

class WindowsProcess : public Process
{
public:
    /// Creates the program's folder if it is missing, and puts the shipped tips in it.
    WindowsProcess();
    ~WindowsProcess() override;
    WindowsProcess(const WindowsProcess&) = delete;
    WindowsProcess& operator=(const WindowsProcess&) = delete;

    std::string ProgramDirectory() override;
    /// Gives the folder of the shared data, as on other systems.
    std::uint32_t GetWindowsDirectoryA(std::string& buffer, std::uint32_t size) override;
    /// Uses a mutex named after the program's folder, which the system releases when the process ends, however it ends.
    bool PreviousInstance() override;
    /// "explorer.exe ADDRESS" opens the address with the program the user has chosen for such. Any other command is a
    /// program and its arguments; those with blanks are in double quotes.
    double Shell(const std::string& command, int windowStyle) override;

    /// Called before the process ends, to finish within the given time.
    std::function<void(std::chrono::milliseconds patience)> BeforeEnd;
    static constexpr std::chrono::milliseconds EndPatience{5000};

protected:
    void EndProcess() override;

private:
    std::string programFolder_;
    void* instance_ = nullptr; ///< the mutex, once it is this process's
};

class WindowsClock : public Clock
{
public:
    DateTime Now() override;
    std::string ShortDate(const DateTime& date) override;
};

} // namespace voxmate::windows_platform
