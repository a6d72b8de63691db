// Runs one command at a time: speaking and asking let events run, and none of these events may begin another command of
// the same form or part.
#pragma once

#include <utility>

namespace voxmate
{

/// Marks a command as running during this object's lifetime, unless another one is already running.
class Command
{
public:
    /// `running` is the owner's flag and must outlive this object.
    explicit Command(bool& running) : running_(running), begun_(!std::exchange(running, true)) {}
    ~Command()
    {
        if (begun_)
            running_ = false;
    }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    /// False when another command is running: this one must then do nothing.
    bool Begun() const { return begun_; }

private:
    bool& running_;
    const bool begun_;
};

} // namespace voxmate
