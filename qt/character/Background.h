// Work on a thread of its own, whose end is told by the event loop.
#pragma once

#include "agent/Stage.h"

#include <QObject>

#include <exception>
#include <functional>
#include <thread>

namespace voxmate::qt
{

class Background : public agent::StageWork
{
public:
    /// Begins at once; as Stage::InBackground.
    Background(std::function<void(std::stop_token)> work, std::function<void()> done);
    ~Background() override;

private:
    void Done(const std::exception_ptr& error);

    std::function<void()> done_;
    QObject* context_; ///< receives the end; it may come in the middle of being destroyed
    std::jthread thread_;
};

} // namespace voxmate::qt
