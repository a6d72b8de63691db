// Work on a thread of its own. The event loop reports its end.
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
    /// Starts the work at once; parameters as for Stage::InBackground.
    Background(std::function<void(std::stop_token)> work, std::function<void()> done);
    ~Background() override;

private:
    void Done(const std::exception_ptr& error);

    std::function<void()> done_;
    QObject* context_; ///< receives the report; a separate object, because this one may be destroyed while the report
                       ///< is being delivered
    std::jthread thread_;
};

} // namespace voxmate::qt
