#include "platform/Trial.h"

namespace voxmate
{

// Windows cannot copy a process. What has to be tried is not tried, and callers then do without it.
std::optional<bool> TryInProcess(const std::function<bool()>& /*act*/, const TrialLimits& /*limits*/,
                                 const std::function<bool()>& /*wanted*/)
{
    return std::nullopt;
}

} // namespace voxmate
