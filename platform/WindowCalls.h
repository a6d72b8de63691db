// Calls on windows that keep the names, constants and arguments of the Win32 functions they stand for, so that what is
// called can be checked exactly, and a form's own drawing. Pixels are device-independent: 15 twips at any scale. A
// drawing is kept with its window and painted at the screen's own resolution; its device context is the window's
// handle.
#pragma once

#include "controls/Form.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace voxmate
{

// SystemParametersInfoA, SetWindowPos, GetWindowLongA and SetLayeredWindowAttributes (winuser.h).
inline constexpr std::uint32_t SPI_GETWORKAREA = 48;
inline constexpr std::int32_t HWND_TOPMOST = -1;
inline constexpr std::int32_t HWND_NOTOPMOST = -2;
inline constexpr std::uint32_t SWP_NOSIZE = 0x1;
inline constexpr std::uint32_t SWP_NOMOVE = 0x2;
inline constexpr std::uint32_t SWP_NOACTIVATE = 0x10;
inline constexpr std::uint32_t SWP_FRAMECHANGED = 0x20;
inline constexpr std::uint32_t SWP_SHOWWINDOW = 0x40;
inline constexpr std::uint32_t SWP_NOOWNERZORDER = 0x200;
inline constexpr int GWL_EXSTYLE = -20;
inline constexpr std::int32_t WS_EX_LAYERED = 0x80000;
inline constexpr std::uint32_t LWA_ALPHA = 2;

// GetVersionExA (winnt.h): the family of the system.
inline constexpr std::uint32_t VER_PLATFORM_WIN32_WINDOWS = 1;
inline constexpr std::uint32_t VER_PLATFORM_WIN32_NT = 2;

// GradientFill (wingdi.h).
inline constexpr std::uint32_t GRADIENT_FILL_RECT_V = 1;
inline constexpr std::uint32_t GRADIENT_FILL_TRIANGLE = 2;

/// OSVERSIONINFOA in its fixed layout.
struct OsVersionInfo {
    std::uint32_t dwOSVersionInfoSize = 0;
    std::uint32_t dwMajorVersion = 0;
    std::uint32_t dwMinorVersion = 0;
    std::uint32_t dwBuildNumber = 0;
    std::uint32_t dwPlatformId = 0;
    std::array<char, 128> szCSDVersion{};
};
static_assert(sizeof(OsVersionInfo) == 148);

/// A rectangle by its edges; right and bottom are the first pixels outside.
struct WinRect {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t right = 0;
    std::int32_t bottom = 0;
    bool operator==(const WinRect&) const = default;
};

/// A point of a gradient; each channel is an unsigned 16-bit number (0xFF00 is full) kept in a signed one.
struct TriVertex {
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int16_t Red = 0;
    std::int16_t Green = 0;
    std::int16_t Blue = 0;
    std::int16_t Alpha = 0;
    bool operator==(const TriVertex&) const = default;
};
/// A mesh of a gradient names its vertices by index, from 0.
struct GradientTriangle {
    std::uint32_t Vertex1 = 0;
    std::uint32_t Vertex2 = 0;
    std::uint32_t Vertex3 = 0;
    bool operator==(const GradientTriangle&) const = default;
};
struct GradientRect {
    std::uint32_t UpperLeft = 0;
    std::uint32_t LowerRight = 0;
    bool operator==(const GradientRect&) const = default;
};

/// Handle of a region; 0: none.
using RegionHandle = std::uint32_t;
/// What a drawing goes to: the handle of the window.
using DeviceContext = WindowHandle;

class WindowCalls
{
public:
    virtual ~WindowCalls() = default;

    /// The system's version; false when the record does not say its own size of 148 bytes.
    virtual bool GetVersionExA(OsVersionInfo& info) = 0;
    /// With SPI_GETWORKAREA and two zeros: the part of the primary screen that no panel covers, in pixels. False for
    /// anything else.
    virtual bool SystemParametersInfoA(std::uint32_t action, std::uint32_t parameter, WinRect& rect,
                                       std::uint32_t winIni) = 0;
    /// Puts a window above all others for good (HWND_TOPMOST) or lets them cover it again (HWND_NOTOPMOST). Place and
    /// size stay as they are: SWP_NOMOVE and SWP_NOSIZE must be given. SWP_SHOWWINDOW shows it. False for anything else
    /// and for a window that is not loaded.
    virtual bool SetWindowPos(WindowHandle window, std::int32_t insertAfter, int x, int y, int width, int height,
                              std::uint32_t flags) = 0;
    /// A rectangle from (left, top) to before (right, bottom) whose corners are quarters of an ellipse of that size.
    virtual RegionHandle CreateRoundRectRgn(int left, int top, int right, int bottom, int ellipseWidth,
                                            int ellipseHeight) = 0;
    /// Gives the window the shape of a region, which belongs to the window from then on; 0 when it fails.
    virtual int SetWindowRgn(WindowHandle window, RegionHandle region, bool redraw) = 0;
    /// With GWL_EXSTYLE: the extended style bits of a window; the second sets them and returns what they were.
    virtual std::int32_t GetWindowLongA(WindowHandle window, int index) = 0;
    virtual std::int32_t SetWindowLongA(WindowHandle window, int index, std::int32_t value) = 0;
    /// With LWA_ALPHA: how opaque a layered window is, 0 to 255. False for a window without WS_EX_LAYERED.
    virtual bool SetLayeredWindowAttributes(WindowHandle window, std::uint32_t colourKey, std::uint8_t alpha,
                                            std::uint32_t flags) = 0;
    /// Draws the outline of a rounded rectangle one pixel wide, from (left, top) to before (right, bottom), with the
    /// window's ForeColor. It is not filled.
    virtual bool RoundRect(DeviceContext context, int left, int top, int right, int bottom, int ellipseWidth,
                           int ellipseHeight) = 0;
    /// Fills triangles with colours that change evenly between the vertices (GRADIENT_FILL_TRIANGLE).
    virtual bool GradientFill(DeviceContext context, std::span<const TriVertex> vertices,
                              std::span<const GradientTriangle> mesh, std::uint32_t mode) = 0;
    /// Fills rectangles, right and bottom edges not included, with colours that change from top to bottom
    /// (GRADIENT_FILL_RECT_V).
    virtual bool GradientFill(DeviceContext context, std::span<const TriVertex> vertices,
                              std::span<const GradientRect> mesh, std::uint32_t mode) = 0;

    // A form's own drawing. Colours are 0x00BBGGRR or system-colour values.

    /// Fills the window with a colour; what was drawn before is gone.
    virtual void SetBackColor(WindowHandle window, std::uint32_t colour) = 0;
    /// The colour of outlines drawn from now on.
    virtual void SetForeColor(WindowHandle window, std::uint32_t colour) = 0;
    /// Keeps what is drawn from now on, so that it comes back when the window has been covered.
    virtual void SetAutoRedraw(WindowHandle window, bool on) = 0;
    /// A line one pixel wide from the first point to before the second.
    virtual void Line(WindowHandle window, int x1, int y1, int x2, int y2, std::uint32_t colour) = 0;
    /// Pixels that a text needs in height, broken into lines of `width` pixels.
    virtual int TextHeight(WindowHandle window, const FontSpec& font, const std::string& text, int width) = 0;

    /// Twips a pixel is high, and the lower edge of the primary screen in twips.
    virtual double TwipsPerPixelY() = 0;
    virtual std::int32_t ScreenHeight() = 0;
};

} // namespace voxmate
