// A user who is there or away as the test says.
#pragma once

#include "platform/Presence.h"

namespace voxmate::fakes
{

class FakePresence : public Presence
{
public:
    std::optional<std::chrono::milliseconds> idle;

    std::optional<std::chrono::milliseconds> Idle() override { return idle; }
};

} // namespace voxmate::fakes
