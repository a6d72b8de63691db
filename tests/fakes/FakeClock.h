// A clock that the test sets.
#pragma once

#include "platform/Clock.h"

#include <array>
#include <cstdio>
#include <string>

namespace voxmate::fakes
{

class FakeClock : public Clock
{
public:
    DateTime now{1975, 3, 17, 14, 5, 9};
    DateTime Now() override { return now; }
    std::string ShortDate(const DateTime& date) override
    {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "%02d/%02d/%04d", date.day, date.month, date.year);
        return text.data();
    }
};

} // namespace voxmate::fakes
