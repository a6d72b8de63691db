// Runs a program under guard: whatever happens to it or to us, nothing of it is left behind.
#pragma once

#include <chrono>
#include <string>
#include <sys/types.h>
#include <vector>

namespace voxmate::linux_platform
{

/// A program to start: its full path, its arguments without its name, its complete environment ("NAME=value"), the
/// folder it starts in, the files and folders to remove when everything is over, by how many steps of `nice` its
/// priority is lower than ours, and whether to run it without a network. In that case it gets an empty network
/// namespace, where the system grants one to an ordinary user. Otherwise it is run all the same and must be kept from
/// the network by other means.
struct GuardedCommand {
    std::string program;
    std::vector<std::string> arguments;
    std::vector<std::string> environment;
    std::string folder;
    std::vector<std::string> leavings;
    int niceness = 0;
    bool withoutNetwork = false;
};

/// The texts as the system takes a program's arguments: their pointers, and a null pointer behind the last.
std::vector<char*> Pointers(std::vector<std::string>& texts);

/// A running program with its own process group. A guard process stands between it and us and waits for our destructor
/// or our end, however that comes. Then it kills the program and all its descendants and removes the leavings. The
/// program's input is empty and its output is discarded.
class GuardedProcess
{
public:
    /// A program that cannot be started counts as ended.
    explicit GuardedProcess(const GuardedCommand& command);
    /// Ends everything and waits until that is done.
    ~GuardedProcess();
    GuardedProcess(const GuardedProcess&) = delete;
    GuardedProcess& operator=(const GuardedProcess&) = delete;

    /// Waits at most `wait` for the program to end; returns whether it has. Its children may still run.
    bool Ended(std::chrono::milliseconds wait);
    /// Has the program and its descendants killed and the leavings removed; does not wait for that.
    void End();
    /// Waits at most `wait` until everything requested by `End` is done; returns whether it is.
    bool Gone(std::chrono::milliseconds wait);

private:
    pid_t guard_ = -1;
    int life_ = -1;   ///< write end of a pipe; the guard cleans up once it is closed
    int report_ = -1; ///< read end of a pipe; the guard closes its end when the program has ended
    bool ended_ = false;
};

} // namespace voxmate::linux_platform
