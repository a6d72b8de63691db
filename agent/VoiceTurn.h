// Decides whose turn it is to speak: all characters share one voice.
#pragma once

#include <functional>

namespace voxmate::agent
{

class VoiceTurn
{
public:
    /// Gives the voice to `who` if nobody else has it. Returns whether `who` has it now.
    bool Take(const void* who)
    {
        if (!holder_)
            holder_ = who;
        return holder_ == who;
    }

    /// Gives the voice back, if `who` has it.
    void GiveBack(const void* who)
    {
        if (holder_ != who)
            return;
        holder_ = nullptr;
        if (Freed)
            Freed();
    }

    /// Called when the voice has become free for others.
    std::function<void()> Freed;

private:
    const void* holder_ = nullptr;
};

} // namespace voxmate::agent
