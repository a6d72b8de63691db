// What the desktop and its media keys, headsets and panels know of what is being read, and what they ask for.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace voxmate
{

class MediaControls
{
public:
    virtual ~MediaControls() = default;

    struct State {
        std::string Title;
        unsigned Number = 0; ///< tells documents apart that have the same title
        bool Playing = false;
        bool HasParts = false;                ///< one can go forward and back in it
        std::chrono::microseconds Position{}; ///< as far as that is known, as Length
        std::chrono::microseconds Length{};   ///< 0: not known
        bool operator==(const State&) const = default;
    };
    enum class Command { Play, Pause, PlayPause, Stop, Next, Previous, Raise };

    /// Somebody asks for something. Both run in the event loop; the caller does not wait for it.
    std::function<void(Command command)> Called;
    std::function<void(std::chrono::microseconds position)> Sought;

    /// Lets the desktop know of what is being read, and control it, until Withdraw. Returns at once, even where the
    /// desktop does not answer.
    virtual void Show(const State& state) = 0;
    virtual void Withdraw() = 0;
};

} // namespace voxmate
