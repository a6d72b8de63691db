#include "agent/EventQueue.h"

#include <utility>

namespace voxmate::agent
{

void EventQueue::Post(std::function<void()> event)
{
    waiting_.push_back(std::move(event));
    if (!timer_)
        timer_ = stage_.After(0, [this] { Deliver(); });
}

void EventQueue::Deliver()
{
    timer_.reset();
    if (waiting_.empty())
        return;
    const std::function<void()> event = std::move(waiting_.front());
    waiting_.pop_front();
    // The next event is scheduled before this one runs, so that a modal box inside a handler does not hold it up.
    if (!waiting_.empty())
        timer_ = stage_.After(0, [this] { Deliver(); });
    event();
}

} // namespace voxmate::agent
