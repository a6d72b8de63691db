#include "forms/frmAlertWindow.h"

#include "base/Checked.h"
#include "base/Text.h"
#include "modules/Program.h"

#include <algorithm>

namespace voxmate
{

namespace
{

// Twips.
constexpr std::int32_t AlertWidth = 2400;
constexpr std::int32_t AlertHeight = 2000;
constexpr std::int32_t SlowStep = 50;
constexpr std::int32_t FastStep = 100;

// Pixels between the text and the window's edges.
constexpr int SideMargin = 5;
constexpr int TopMargin = 10;
constexpr int TopMarginOfNotice = 5;
constexpr int BottomMargin = 15;

constexpr std::int32_t TicksASecond = 100;
constexpr std::int32_t FadeStep = 2; // percent a tick

constexpr std::int32_t LastSlot = 8;
constexpr std::int32_t White = 0xFFFFFF;

TriVertex Vertex(int x, int y, std::int32_t color)
{
    TriVertex vertex;
    vertex.x = x;
    vertex.y = y;
    ColorToVertex(vertex, color);
    return vertex;
}

} // namespace

void ColorToVertex(TriVertex& vertex, std::int32_t color)
{
    vertex.Red = static_cast<std::int16_t>((color & 0xFF) * 256);
    vertex.Green = static_cast<std::int16_t>(color & 0xFF00);
    vertex.Blue = static_cast<std::int16_t>(((color >> 16) & 0xFF) * 256);
    vertex.Alpha = 0;
}

frmAlertWindow::frmAlertWindow(Program& program)
    : PlacedForm(program.Host.Windows, "frmAlertWindow"), program_(program), windows_(program.Host.Windows)
{
    Caption = "frmAlert";
    ShowActivated = false;
    lblMessage.Font = {"Tahoma", 8.25};
    lblMessage.Click = [this] { Form_Click(); };
    Timer1.Tick = [this] { my_.IsFade ? Fade() : Scroll(); };
}

frmAlertWindow::~frmAlertWindow()
{
    if (IsLoaded())
        TakeSlot(false);
}

void frmAlertWindow::Form_Load()
{
    my_ = {};
    OsVersionInfo version;
    version.dwOSVersionInfoSize = sizeof version;
    if (windows_.GetVersionExA(version)) {
        if (version.dwPlatformId == VER_PLATFORM_WIN32_WINDOWS && version.dwMinorVersion >= 10)
            my_.OsLevel = OsLevels::Gradients;
        else if (version.dwPlatformId == VER_PLATFORM_WIN32_NT && version.dwMajorVersion >= 5)
            my_.OsLevel = OsLevels::TransparentWindows;
    }
    WinRect area;
    windows_.SystemParametersInfoA(SPI_GETWORKAREA, 0, area, 0);
    my_.WorkAreaBottom = ToInt32(RoundHalfEven(area.bottom * windows_.TwipsPerPixelY()));
    const std::int32_t right = ToInt32(RoundHalfEven(area.right * windows_.TwipsPerPixelX()));
    Move(right - AlertWidth, my_.WorkAreaBottom, AlertWidth, AlertHeight);
    TakeSlot(true);
}

void frmAlertWindow::TakeSlot(bool bTake)
{
    if (!bTake) {
        // Two windows can share the last slot; when the second of them closes, its bit is set again.
        program_.AlertSlotMask = static_cast<std::uint8_t>(program_.AlertSlotMask ^ (1 << (my_.SlotNo - 1)));
        return;
    }
    my_.SlotNo = 1;
    while (my_.SlotNo < LastSlot && (program_.AlertSlotMask & (1 << (my_.SlotNo - 1))) != 0)
        ++my_.SlotNo;
    program_.AlertSlotMask = static_cast<std::uint8_t>(program_.AlertSlotMask | (1 << (my_.SlotNo - 1)));
}

void frmAlertWindow::SetOnTop(bool bOn)
{
    windows_.SetWindowPos(hWnd(), bOn ? HWND_TOPMOST : HWND_NOTOPMOST, 0, 0, 0, 0,
                          SWP_NOSIZE | SWP_NOMOVE | SWP_NOACTIVATE | SWP_FRAMECHANGED | SWP_SHOWWINDOW |
                              SWP_NOOWNERZORDER);
}

void frmAlertWindow::SetTransparency(std::int32_t Percent)
{
    if (my_.OsLevel != OsLevels::TransparentWindows)
        return;
    const std::int64_t alpha = RoundHalfEven((100 - Percent) / 100.0 * 255);
    if (alpha < 0 || alpha > 255)
        return;
    windows_.SetWindowLongA(hWnd(), GWL_EXSTYLE, windows_.GetWindowLongA(hWnd(), GWL_EXSTYLE) | WS_EX_LAYERED);
    windows_.SetLayeredWindowAttributes(hWnd(), 0, static_cast<std::uint8_t>(alpha), LWA_ALPHA);
}

int frmAlertWindow::ScaleWidth()
{
    return static_cast<int>(RoundHalfEven(Width() / windows_.TwipsPerPixelX()));
}

int frmAlertWindow::ScaleHeight()
{
    return static_cast<int>(RoundHalfEven(Height() / windows_.TwipsPerPixelY()));
}

std::int32_t frmAlertWindow::TargetTop() const
{
    return my_.WorkAreaBottom - Height() * my_.SlotNo;
}

void frmAlertWindow::DisplayMessage(const std::string& SMessage, std::int16_t bFormId, bool bPreview,
                                    std::int32_t DisplaySeconds, bool bFade, bool bAutoFit, bool bSquare,
                                    std::int32_t iBackColor, bool bTubeFill)
{
    Load();
    my_.FormId = bFormId;
    my_.NoAnswer = bPreview;

    std::string text = SMessage;
    my_.NoAutoClose = DisplaySeconds < 1;
    my_.NoClickClose = DisplaySeconds < 0;
    my_.CloseTicks = DisplaySeconds >= 1 ? ToInt32(std::int64_t{DisplaySeconds} * TicksASecond) : 1;
    if (DisplaySeconds == 0)
        text = std::string("(CLICK TO CLOSE)") + CrLf + CrLf + SMessage;

    Rect label;
    label.x = SideMargin;
    label.y = my_.CloseTicks == 1 ? TopMarginOfNotice : TopMargin;
    label.width = ScaleWidth() - 2 * SideMargin;
    label.height = windows_.TextHeight(hWnd(), lblMessage.Font, text, label.width);
    lblMessage.Place = label;
    lblMessage.Caption = text;

    // Only the lowest window grows: the others are placed as if every window below them had the usual height.
    if (my_.SlotNo == 1 && bAutoFit)
        SetHeight(ToInt32(RoundHalfEven((label.y + label.height + BottomMargin) * windows_.TwipsPerPixelY())));

    my_.IsFade = bFade;
    my_.IsOnTop = false;
    if (bFade) {
        my_.StepValue = 100;
        SetTop(std::max(TargetTop(), 0));
        SetTransparency(100);
    } else {
        my_.StepValue = my_.SlotNo <= 1 ? SlowStep : FastStep;
    }

    PaintGradient(bTubeFill, iBackColor);
    PaintFrame(bSquare, iBackColor);

    Show();
    SetOnTop(true);
    Timer1.Enabled = true;
}

void frmAlertWindow::PaintGradient(bool tube, std::int32_t color)
{
    if (my_.OsLevel == OsLevels::PlainColours) {
        windows_.SetBackColor(hWnd(), static_cast<std::uint32_t>(color));
        return;
    }
    windows_.SetAutoRedraw(hWnd(), true);
    const int width = ScaleWidth();
    const int height = ScaleHeight();
    if (tube) {
        const GradientRect mesh[] = {{0, 1}};
        const TriVertex upper[] = {Vertex(0, 0, color), Vertex(width, height / 2, White)};
        windows_.GradientFill(hWnd(), upper, mesh, GRADIENT_FILL_RECT_V);
        const TriVertex lower[] = {Vertex(0, height / 2, White), Vertex(width, height, color)};
        windows_.GradientFill(hWnd(), lower, mesh, GRADIENT_FILL_RECT_V);
    } else {
        const TriVertex vertices[] = {Vertex(0, 0, White), Vertex(width, 0, White), Vertex(width, height, color),
                                      Vertex(0, height, White)};
        const GradientTriangle mesh[] = {{0, 1, 2}, {0, 2, 3}};
        windows_.GradientFill(hWnd(), vertices, mesh, GRADIENT_FILL_TRIANGLE);
    }
}

void frmAlertWindow::PaintFrame(bool bSquare, std::int32_t iBackColor)
{
    const WindowHandle window = hWnd();
    const auto color = static_cast<std::uint32_t>(iBackColor);
    const int width = ScaleWidth();
    const int height = ScaleHeight();
    if (!bSquare) {
        windows_.SetForeColor(window, vbButtonFace);
        windows_.RoundRect(window, 0, 0, width - 1, height - 1, 20, 20);
        windows_.SetForeColor(window, color);
        windows_.RoundRect(window, 1, 1, width - 2, height - 2, 18, 18);
        windows_.SetWindowRgn(window, windows_.CreateRoundRectRgn(0, 0, width, height, 19, 19), true);
        return;
    }
    const auto frame = [&](int inset, std::uint32_t frameColor) {
        const int right = width - 1 - inset;
        const int bottom = height - 1 - inset;
        windows_.Line(window, right, bottom, right, inset, frameColor);
        windows_.Line(window, right, bottom, inset, bottom, frameColor);
        windows_.Line(window, right, inset, inset, inset, frameColor);
        windows_.Line(window, inset, bottom, inset, inset, frameColor);
    };
    frame(0, vbButtonFace);
    frame(1, color);
}

// Counts down the time that the window stays. A window without a time limit stops its timer until Leave(), because its
// ticks would change nothing.
void frmAlertWindow::Hold()
{
    if (my_.NoAutoClose)
        Timer1.Enabled = false;
    else
        --my_.CloseTicks;
}

void frmAlertWindow::Leave()
{
    my_.CloseTicks = 0;
    Timer1.Enabled = true;
}

void frmAlertWindow::Fade()
{
    if (my_.CloseTicks > 0) {
        if (my_.StepValue > 0) {
            my_.StepValue -= FadeStep;
            SetTransparency(my_.StepValue);
        } else {
            Hold();
        }
    }
    if (my_.CloseTicks <= 0) {
        if (my_.StepValue > 100) {
            Unload();
        } else {
            my_.StepValue += FadeStep;
            SetTransparency(my_.StepValue);
        }
    }
}

void frmAlertWindow::Scroll()
{
    if (my_.CloseTicks > 0) {
        if (TargetTop() < Top() && Top() > 0) {
            SetTop(Top() - my_.StepValue);
        } else {
            if (!my_.IsOnTop) {
                SetTop(std::max(TargetTop(), 0));
                my_.IsOnTop = true;
                SetOnTop(true);
            }
            Hold();
        }
    }
    if (my_.CloseTicks <= 0) {
        if (Top() > windows_.ScreenHeight()) {
            Unload();
        } else {
            if (my_.IsOnTop) {
                my_.IsOnTop = false;
                SetOnTop(false);
            }
            SetTop(Top() + my_.StepValue);
        }
    }
}

void frmAlertWindow::Form_Click()
{
    if (!my_.NoClickClose)
        Leave();
}

void frmAlertWindow::SetCloseActivate(bool vNewValue)
{
    if (vNewValue)
        Leave();
}

void frmAlertWindow::Withdraw()
{
    my_.NoAnswer = true;
    Leave();
}

void frmAlertWindow::Form_Unload()
{
    TakeSlot(false);
    if (!my_.NoAnswer)
        program_.Scheduler.FinishReminder(my_.FormId, false, 0);
}

} // namespace voxmate
