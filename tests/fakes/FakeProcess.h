// The process's fake: logs the commands it is asked to start, and throws where the program would end.
#pragma once

#include "base/RuntimeError.h"
#include "platform/Process.h"
#include "tests/fakes/Log.h"

#include <cstdint>
#include <string>
#include <vector>

namespace voxmate::fakes
{

/// What ending the program throws in a test. It is no exception of the program's own, so nothing there catches it.
struct ProgramEnded {
};

class FakeProcess : public Process
{
public:
    explicit FakeProcess(Log& log) : log_(log) {}

    std::string windowsDirectory = "C:\\WINDOWS";
    bool previousInstance = false;
    std::vector<std::string> commands;
    bool shellFails = false;

    std::string ProgramDirectory() override { return "C:\\Voxmate"; }
    std::uint32_t GetWindowsDirectoryA(std::string& buffer, std::uint32_t size) override
    {
        if (windowsDirectory.size() <= size)
            buffer.replace(0, windowsDirectory.size(), windowsDirectory);
        return static_cast<std::uint32_t>(windowsDirectory.size());
    }
    bool PreviousInstance() override { return previousInstance; }
    double Shell(const std::string& command, int windowStyle) override
    {
        commands.push_back(command + " style " + std::to_string(windowStyle));
        log_.push_back("Shell " + command);
        if (shellFails)
            throw FileNotFound();
        return 4711;
    }

protected:
    void EndProcess() override
    {
        log_.push_back("EndProgram");
        throw ProgramEnded{};
    }

private:
    Log& log_;
};

} // namespace voxmate::fakes
