// How other programs call this one: the desktop's launcher, a file manager, a second start of the program.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace voxmate
{

/// What the program is called for. Neither files nor an action: it is to come to the front.
struct Call {
    std::vector<std::string> Files; ///< full paths; addresses where a file is not on this computer
    std::string Action;             ///< one of the desktop entry's actions
};

class Activation
{
public:
    virtual ~Activation() = default;

    /// The program is called. Runs in the event loop; the caller does not wait for it.
    std::function<void(const Call& call)> Called;

    /// Lets the program be called from now on. Returns at once, even where the desktop does not answer.
    virtual void Listen() = 0;
    /// Passes a call on to the program that listens already. Waits for its answer, but for `patience` at most; with 0
    /// it returns at once and the call is passed on all the same. True when that program has taken the call.
    virtual bool PassOn(const Call& call, std::chrono::milliseconds patience) = 0;
};

} // namespace voxmate
