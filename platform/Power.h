// What the computer runs on.
#pragma once

namespace voxmate
{

class Power
{
public:
    virtual ~Power() = default;
    /// Whether it runs on a battery just now; false where the system does not tell. Returns at once.
    virtual bool OnBattery() = 0;
};

} // namespace voxmate
