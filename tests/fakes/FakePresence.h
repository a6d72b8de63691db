// A user who is there or away as the test says.
#pragma once

#include "platform/Presence.h"

namespace voxmate::fakes
{

class FakePresence : public Presence
{
public:
    std::optional<std::chrono::milliseconds> idle;
    std::chrono::milliseconds here{0};

    std::optional<std::chrono::milliseconds> Idle() override { return idle; }
    std::chrono::milliseconds IdleHere() override { return here; }
};

} // namespace voxmate::fakes
