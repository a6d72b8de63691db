// The desktop's media controls, which note what they are shown.
#pragma once

#include "platform/MediaControls.h"

#include <optional>
#include <vector>

namespace voxmate::fakes
{

class FakeMediaControls : public MediaControls
{
public:
    std::optional<State> shown; ///< what they show now
    int withdrawn = 0;

    void Show(const State& state) override { shown = state; }
    void Withdraw() override
    {
        shown.reset();
        ++withdrawn;
    }
};

} // namespace voxmate::fakes
