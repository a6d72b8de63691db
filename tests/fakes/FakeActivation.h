// The fake of the calls from and to other programs.
#pragma once

#include "platform/Activation.h"
#include "tests/fakes/Log.h"

#include <string>

namespace voxmate::fakes
{

class FakeActivation : public Activation
{
public:
    explicit FakeActivation(Log& log) : log_(log) {}

    bool answered = true; ///< whether the other program answers in time

    void Listen() override { log_.push_back("Listen"); }
    bool PassOn(const Call& call, std::chrono::milliseconds patience) override
    {
        std::string entry = "PassOn";
        for (const std::string& file : call.Files)
            entry += " " + file;
        log_.push_back(entry + (call.Action.empty() ? "" : " action " + call.Action) +
                       (patience.count() > 0 ? " and wait" : ""));
        return patience.count() > 0 && answered;
    }

private:
    Log& log_;
};

} // namespace voxmate::fakes
