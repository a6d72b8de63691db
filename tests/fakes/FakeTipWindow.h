// The tip window's fake.
#pragma once

#include "modules/Windows.h"
#include "tests/fakes/Log.h"

#include <string>

namespace voxmate::fakes
{

class FakeTipWindow : public TipWindow
{
public:
    explicit FakeTipWindow(Log& log) : log_(log) {}
    std::string text;

    void ShowTip() override { log_.push_back("Tip shown"); }
    void SetChecks(int showAtStartUp, int autoRead) override
    {
        log_.push_back("Tip checks " + std::to_string(showAtStartUp) + " " + std::to_string(autoRead));
    }
    void SetTipText(const std::string& newText) override { text = newText; }
    std::string TipText() const override { return text; }
    void DisplayCurrentTip() override { log_.push_back("DisplayCurrentTip"); }

private:
    Log& log_;
};

} // namespace voxmate::fakes
