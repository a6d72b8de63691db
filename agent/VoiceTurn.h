// Whose turn it is to speak: there is one voice for all characters.
#pragma once

#include <functional>

namespace voxmate::agent
{

class VoiceTurn
{
public:
    /// Gives the voice to `who` if nobody else has it; says whether `who` has it now.
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

    /// The voice is free for others.
    std::function<void()> Freed;

private:
    const void* holder_ = nullptr;
};

} // namespace voxmate::agent
