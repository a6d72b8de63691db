// A program under guard: whatever becomes of it or of us, nothing of it stays.
#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace voxmate::linux_platform
{

/// What to start: a program by its full path, its arguments behind its name, the whole of its environment
/// ("NAME=value"), the folder it starts in, the files and folders that are removed when all is over, and whether it
/// shall have no network: then it gets a network namespace with nothing in it, where the system grants one to an
/// ordinary user. Where it doesn't, the program runs all the same and has to be kept from the network by other means.
struct GuardedCommand {
    std::string program;
    std::vector<std::string> arguments;
    std::vector<std::string> environment;
    std::string folder;
    std::vector<std::string> leavings;
    bool withoutNetwork = false;
};

/// A running program with a process group of its own. Between it and us stands a guard, a process that waits for our
/// destructor or for our own end, however that comes: then it kills the program with everything that descends from it
/// and removes the leavings. The program's input and output are nothing.
class GuardedProcess
{
public:
    /// A program that cannot be started counts as one that has ended.
    explicit GuardedProcess(const GuardedCommand& command);
    /// Ends all and waits until it is gone.
    ~GuardedProcess();
    GuardedProcess(const GuardedProcess&) = delete;
    GuardedProcess& operator=(const GuardedProcess&) = delete;

    /// Waits until the program has ended, but no longer than this; whether it has. Its children may still run.
    bool Ended(std::chrono::milliseconds wait);
    /// Has the program and its descendants killed and the leavings removed; doesn't wait for it.
    void End();
    /// Waits until all that `End` asked for is done, but no longer than this; whether it is.
    bool Gone(std::chrono::milliseconds wait);

private:
    pid_t guard_ = -1;
    int life_ = -1;   ///< the guard does its work once this end of the pipe is closed
    int report_ = -1; ///< the guard tells here that the program has ended
    bool ended_ = false;
};

} // namespace voxmate::linux_platform
