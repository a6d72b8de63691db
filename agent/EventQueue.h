// Events on their way to the program. They are delivered from the event loop, in order, never inside the call that
// caused them.
#pragma once

#include "agent/Stage.h"

#include <deque>
#include <functional>
#include <memory>

namespace voxmate::agent
{

class EventQueue
{
public:
    explicit EventQueue(Stage& stage) : stage_(stage) {}

    /// Runs `event` from the event loop, after all events posted before it. An event may post others, show a modal box
    /// (later events still arrive meanwhile) or raise a run-time error (which leaves through the event loop).
    void Post(std::function<void()> event);

private:
    void Deliver();

    Stage& stage_;
    std::deque<std::function<void()>> waiting_;
    std::unique_ptr<StageTimer> timer_;
};

} // namespace voxmate::agent
