// Whether the session's bus answers, asked before the toolkit relies on it.
#pragma once

#include <chrono>
#include <string>

namespace voxmate::linux_platform
{

/// Whether the bus at one of these D-Bus addresses answers within `patience` or fails at once. False only for one that
/// takes the connection and then says nothing, as one whose process is stopped. Buses that are not reached by a local
/// socket are not asked and count as answering.
bool BusAnswers(const std::string& addresses, std::chrono::milliseconds patience);

/// Keeps this process, and those it starts, away from a session bus that does not answer within `patience`: the
/// toolkit's accessibility would wait for it without limit, and no window would ever appear. To be called before there
/// are threads.
void AvoidHangingBus(std::chrono::milliseconds patience);

} // namespace voxmate::linux_platform
