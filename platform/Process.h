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
    /// characters, and returns its length; when it does not fit, the needed size, and the buffer stays as it is.
    virtual std::uint32_t GetWindowsDirectoryA(std::string& buffer, std::uint32_t size) = 0;
    /// True when another copy of the program works on the same folder of data. The first call claims the place for this
    /// process.
    virtual bool PreviousInstance() = 0;
    /// Starts a program and returns its task id; raises run-time error 53 "File not found" when it cannot be started.
    /// Window style 3 is maximised with focus.
    virtual double Shell(const std::string& command, int windowStyle) = 0;
    /// Ends the process at once: nothing is unloaded or saved. In a test it throws what only the test catches.
    [[noreturn]] void EndProgram()
    {
        EndProcess();
        std::abort();
    }

    /// The system asks the program to end: a signal has come, or the user's session is over. Set by the program, called
    /// from the event loop.
    std::function<void()> EndRequested;

protected:
    /// Does not return.
    virtual void EndProcess() = 0;
};

} // namespace voxmate
