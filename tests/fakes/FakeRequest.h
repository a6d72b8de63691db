// A request to the character server whose status the test sets.
#pragma once

#include "platform/Agent.h"

namespace voxmate::fakes
{

class FakeRequest : public AgentRequest
{
public:
    RequestStatus Status() const override { return status; }
    RequestStatus status = RequestStatus::Pending;
};

} // namespace voxmate::fakes
