// A control's peer that notes when the keyboard goes to the control.
#pragma once

#include "controls/Control.h"

#include <string>

namespace voxmate::fakes
{

/// `focused` becomes the name of the control; several peers may share it.
class FocusPeer : public Peer
{
public:
    FocusPeer(Control& control, std::string& focused) : name_(control.Name), focused_(focused)
    {
        control.SetPeer(this);
    }
    void Update(Property) override {}
    void SetFocus() override { focused_ = name_; }

private:
    std::string name_;
    std::string& focused_;
};

} // namespace voxmate::fakes
