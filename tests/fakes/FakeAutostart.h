// The log-in switch's fake.
#pragma once

#include "platform/Autostart.h"

#include <string>

namespace voxmate::fakes
{

class FakeAutostart : public Autostart
{
public:
    bool on = false;
    bool fails = false;

    bool IsOn() override { return on; }
    bool Turn(bool to) override
    {
        if (!fails)
            on = to;
        return !fails;
    }
    std::string Path() override { return "C:\\Autostart\\Voxmate"; }
};

} // namespace voxmate::fakes
