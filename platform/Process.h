// The shell and the process: folders, the previous instance, starting other programs, ending at once.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>

namespace voxmate
{

class Process
{
public:
    virtual ~Process() = default;
    /// Folder of the program's own data, without a separator at its end.
    virtual std::string ProgramDirectory() = 0;
    /// Writes the Windows directory (on Linux the folder of the shared data) into `buffer`, which has room for `size`
    /// characters, and returns its length. When it does not fit, the needed size is returned and the buffer is
    /// unchanged.
    virtual std::uint32_t GetWindowsDirectoryA(std::string& buffer, std::uint32_t size) = 0;
    /// Whether another copy of the program works on the same data folder. The first call claims the folder for this
    /// process.
    virtual bool PreviousInstance() = 0;
    /// Starts a program and returns its task id. Raises run-time error 53 "File not found" when it cannot be started.
    /// Window style 3 is maximised with focus.
    virtual double Shell(const std::string& command, int windowStyle) = 0;
    /// Ends the process at once, without unloading or saving. In a test it throws a type that only the test catches.
    [[noreturn]] void EndProgram()
    {
        EndProcess();
        std::abort();
    }

    /// Called when the system asks the program to end: a signal has arrived, or the user's session is over. Set by the
    /// program, called from the event loop.
    std::function<void()> EndRequested;

protected:
    /// Does not return.
    virtual void EndProcess() = 0;
};

} // namespace voxmate
