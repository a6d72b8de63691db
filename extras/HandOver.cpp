#include "extras/HandOver.h"

#include <chrono>

namespace voxmate
{

namespace
{

/// The other copy answers from its event loop, which may be busy for a moment. With a bus that does not answer, the
/// user waits this long to be told that there is another copy.
constexpr std::chrono::seconds Patience{5};

} // namespace

bool HandedOver(const CommandLine& line, Process& system, Activation& activation)
{
    if (!system.PreviousInstance())
        return false;
    if (!line.Call.Files.empty() || !line.Call.Action.empty())
        return activation.PassOn(line.Call, Patience);
    if (line.Quiet)
        return true;
    activation.PassOn(line.Call, {});
    return false;
}

} // namespace voxmate
