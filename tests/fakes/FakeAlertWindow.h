// The alert window's fake.
#pragma once

#include "modules/Windows.h"
#include "tests/fakes/Log.h"

#include <cstdint>
#include <string>

namespace voxmate::fakes
{

/// Logs what it is asked to announce; visible until a test says otherwise.
class FakeAlertWindow : public AlertWindow
{
public:
    explicit FakeAlertWindow(Log& log) : log_(log) {}
    bool visible = false;

    bool Visible() const override { return visible; }
    void DisplayMessage(const std::string& SMessage, std::int16_t bFormId, bool bPreview, std::int32_t DisplaySeconds,
                        bool bFade, bool bAutoFit, bool bSquare, std::int32_t iBackColor, bool bTubeFill) override
    {
        visible = true;
        log_.push_back("Alert " + std::to_string(bFormId) + (bPreview ? " preview " : " ") +
                       std::to_string(DisplaySeconds) + " s" + (bFade ? " fade" : " scroll") +
                       (bAutoFit ? " fit" : "") + (bSquare ? " square " : " round ") + std::to_string(iBackColor) +
                       (bTubeFill ? " tube: " : " corner: ") + SMessage);
    }
    void SetCloseActivate(bool vNewValue) override
    {
        log_.push_back(std::string("CloseActivate ") + (vNewValue ? "True" : "False"));
    }
    bool CloseActivate() const override { return false; }
    void Withdraw() override { log_.push_back("Withdraw"); }

private:
    Log& log_;
};

} // namespace voxmate::fakes
