// Windows that stand where the test puts them, on one screen.
#pragma once

#include "platform/WindowPlaces.h"

#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeWindowPlaces : public WindowPlaces
{
public:
    std::vector<WindowPlace> windows;
    Rect area{0, 0, 1280, 720};

    bool known = true;
    bool Known() const override { return known; }
    std::vector<WindowPlace> Windows() override { return windows; }
    Rect WorkArea(Point) override { return area; }
    /// The windows become others, and that is told.
    void Become(std::vector<WindowPlace> others)
    {
        windows = std::move(others);
        Changed();
    }
};

} // namespace voxmate::fakes
