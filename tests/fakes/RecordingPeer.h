// A control's peer that records which properties it was told of.
#pragma once

#include "controls/Control.h"

#include <vector>

namespace voxmate::fakes
{

class RecordingPeer : public Peer
{
public:
    std::vector<Property> updates;
    void Update(Property property) override { updates.push_back(property); }
};

} // namespace voxmate::fakes
