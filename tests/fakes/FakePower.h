// A computer that runs on mains or battery as the test says.
#pragma once

#include "platform/Power.h"

namespace voxmate::fakes
{

class FakePower : public Power
{
public:
    bool onBattery = false;

    bool OnBattery() override { return onBattery; }
};

} // namespace voxmate::fakes
