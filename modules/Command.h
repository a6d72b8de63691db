// One command at a time: what is spoken or asked lets events run, and none of them must begin another command of the
// same form or part.
#pragma once

#include <utility>

namespace voxmate
{

/// Marks a command as running for as long as this lives, unless one runs already.
class Command
{
public:
    /// `running` is the owner's mark, and outlives this.
    explicit Command(bool& running) : running_(running), begun_(!std::exchange(running, true)) {}
    ~Command()
    {
        if (begun_)
            running_ = false;
    }
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    /// False when another command runs: this one must do nothing.
    bool Begun() const { return begun_; }

private:
    bool& running_;
    const bool begun_;
};

} // namespace voxmate
