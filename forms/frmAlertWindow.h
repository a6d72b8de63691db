// A small window without a frame that announces one reminder in the lower right corner of the work area: it comes by
// sliding up or fading in, stays for a while or until it is clicked, and leaves the way it came.
#pragma once

#include "controls/PlacedForm.h"
#include "modules/Windows.h"
#include "platform/Platform.h"

#include <cstdint>
#include <string>

namespace voxmate
{

class Program;

/// Sets a vertex's colour from 0x00BBGGRR: each channel goes into the upper byte of its 16 bits.
void ColorToVertex(TriVertex& vertex, std::int32_t color);

class frmAlertWindow : public PlacedForm, public AlertWindow
{
public:
    explicit frmAlertWindow(Program& program);
    /// Frees the slot of a window that is still loaded; its reminder stays unchanged.
    ~frmAlertWindow() override;

    Label lblMessage{this, "lblMessage"};
    Timer Timer1{this, "Timer1", 1, true};

    // AlertWindow.
    bool Visible() const override { return IsShown(); }
    void DisplayMessage(const std::string& SMessage, std::int16_t bFormId, bool bPreview, std::int32_t DisplaySeconds,
                        bool bFade, bool bAutoFit, bool bSquare, std::int32_t iBackColor, bool bTubeFill) override;
    void SetCloseActivate(bool vNewValue) override;
    bool CloseActivate() const override { return false; }
    void Withdraw() override;

protected:
    void Form_Load() override;
    void Form_Click() override;
    void Form_Unload() override;

private:
    Program& program_;
    WindowSystem& windows_;

    /// What the system can draw; each level can also do what those before it can.
    enum class OsLevels : std::uint8_t { PlainColours, Gradients, TransparentWindows };

    /// The state of one announcement; loading the window resets it.
    struct State {
        std::int16_t FormId = 0;
        bool NoAnswer = false;           ///< closing it does not mark its reminder: a preview, or answered already
        std::int32_t StepValue = 0;      ///< sliding: twips a tick; fading: transparency in percent
        std::int32_t CloseTicks = 0;     ///< ticks left before the window starts to leave
        std::int32_t WorkAreaBottom = 0; ///< twips
        std::int32_t SlotNo = 0;         ///< place in the pile, 1 (lowest) to 8
        bool NoAutoClose = false;
        bool NoClickClose = false;
        bool IsFade = false;
        bool IsOnTop = false; ///< a sliding window has arrived and is held above all others
        OsLevels OsLevel = OsLevels::PlainColours;
    };
    State my_;

    void SetOnTop(bool bOn);
    void SetTransparency(std::int32_t Percent);
    void PaintGradient(bool tube, std::int32_t color);
    void PaintFrame(bool bSquare, std::int32_t iBackColor);
    void TakeSlot(bool bTake);
    void Hold();
    void Leave();
    void Fade();
    void Scroll();

    /// The top of the window once it has arrived, in twips.
    std::int32_t TargetTop() const;
    /// The window's size in whole pixels.
    int ScaleWidth();
    int ScaleHeight();
};

} // namespace voxmate
