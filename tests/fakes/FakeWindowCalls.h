// The fake of the calls on windows: logs each with its arguments, and answers as a system with everything does.
#pragma once

#include "platform/WindowSystem.h"
#include "tests/fakes/Log.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeWindowCalls : public WindowSystem
{
public:
    explicit FakeWindowCalls(Log& log) : log_(log) {}

    bool versionKnown = true; ///< false: GetVersionExA fails
    std::uint32_t platformId = VER_PLATFORM_WIN32_NT;
    std::uint32_t majorVersion = 5;
    std::uint32_t minorVersion = 0;
    WinRect workArea{0, 0, 1024, 738};
    double twipsPerPixelY = 15;
    int screenHeight = 768; ///< pixels
    int lineHeight = 13;    ///< of text, in pixels; a text has as many lines as it says
    bool logWindowCalls = true;
    /// The window that each logged call named, in order.
    std::vector<voxmate::WindowHandle> named;

    bool GetVersionExA(OsVersionInfo& info) override
    {
        Note("GetVersionExA", info.dwOSVersionInfoSize);
        info.dwPlatformId = platformId;
        info.dwMajorVersion = majorVersion;
        info.dwMinorVersion = minorVersion;
        return versionKnown;
    }
    bool SystemParametersInfoA(std::uint32_t action, std::uint32_t parameter, WinRect& rect,
                               std::uint32_t winIni) override
    {
        Note("SystemParametersInfoA", action, parameter, winIni);
        rect = workArea;
        return true;
    }
    bool SetWindowPos(voxmate::WindowHandle window, std::int32_t insertAfter, int x, int y, int width, int height,
                      std::uint32_t flags) override
    {
        On(window, "SetWindowPos", insertAfter, x, y, width, height, Hex(flags));
        return true;
    }
    RegionHandle CreateRoundRectRgn(int left, int top, int right, int bottom, int ellipseWidth,
                                    int ellipseHeight) override
    {
        Note("CreateRoundRectRgn", left, top, right, bottom, ellipseWidth, ellipseHeight);
        return 55;
    }
    int SetWindowRgn(voxmate::WindowHandle window, RegionHandle region, bool redraw) override
    {
        On(window, "SetWindowRgn", region, redraw ? "True" : "False");
        return 1;
    }
    std::int32_t GetWindowLongA(voxmate::WindowHandle window, int index) override
    {
        On(window, "GetWindowLongA", index);
        return extendedStyle[window];
    }
    std::int32_t SetWindowLongA(voxmate::WindowHandle window, int index, std::int32_t value) override
    {
        On(window, "SetWindowLongA", index, Hex(static_cast<std::uint32_t>(value)));
        return std::exchange(extendedStyle[window], value);
    }
    bool SetLayeredWindowAttributes(voxmate::WindowHandle window, std::uint32_t colourKey, std::uint8_t alpha,
                                    std::uint32_t flags) override
    {
        On(window, "SetLayeredWindowAttributes", colourKey, int{alpha}, flags);
        return true;
    }
    bool RoundRect(DeviceContext context, int left, int top, int right, int bottom, int ellipseWidth,
                   int ellipseHeight) override
    {
        On(context, "RoundRect", left, top, right, bottom, ellipseWidth, ellipseHeight);
        return true;
    }
    bool GradientFill(DeviceContext context, std::span<const TriVertex> vertices,
                      std::span<const GradientTriangle> mesh, std::uint32_t mode) override
    {
        std::string triangles;
        for (const GradientTriangle& triangle : mesh)
            triangles += " " + std::to_string(triangle.Vertex1) + "-" + std::to_string(triangle.Vertex2) + "-" +
                         std::to_string(triangle.Vertex3);
        On(context, "GradientFill", mode, Points(vertices), triangles);
        return true;
    }
    bool GradientFill(DeviceContext context, std::span<const TriVertex> vertices, std::span<const GradientRect> mesh,
                      std::uint32_t mode) override
    {
        std::string rects;
        for (const GradientRect& rect : mesh)
            rects += " " + std::to_string(rect.UpperLeft) + "-" + std::to_string(rect.LowerRight);
        On(context, "GradientFill", mode, Points(vertices), rects);
        return true;
    }
    void SetBackColor(voxmate::WindowHandle window, std::uint32_t colour) override
    {
        On(window, "BackColor", Hex(colour));
    }
    void SetForeColor(voxmate::WindowHandle window, std::uint32_t colour) override
    {
        On(window, "ForeColor", Hex(colour));
    }
    void SetAutoRedraw(voxmate::WindowHandle window, bool on) override
    {
        On(window, "AutoRedraw", on ? "True" : "False");
    }
    void Line(voxmate::WindowHandle window, int x1, int y1, int x2, int y2, std::uint32_t colour) override
    {
        On(window, "Line", x1, y1, x2, y2, Hex(colour));
    }
    int TextHeight(voxmate::WindowHandle window, const FontSpec& font, const std::string& text, int width) override
    {
        On(window, "TextHeight", font.Name, font.Size, width);
        return lineHeight * (1 + static_cast<int>(std::count(text.begin(), text.end(), '\n')));
    }
    double TwipsPerPixelY() override { return twipsPerPixelY; }
    std::int32_t ScreenHeight() override { return static_cast<std::int32_t>(screenHeight * twipsPerPixelY); }

    std::map<voxmate::WindowHandle, std::int32_t> extendedStyle;

private:
    Log& log_;

    /// Each as (x, y) and its four channels.
    static std::string Points(std::span<const TriVertex> vertices)
    {
        std::ostringstream text;
        for (const TriVertex& v : vertices)
            text << (&v == vertices.data() ? "" : " ") << '(' << v.x << ',' << v.y << ' ' << v.Red << ',' << v.Green
                 << ',' << v.Blue << ',' << v.Alpha << ')';
        return text.str();
    }
    template <class... Arguments>
    void Note(const char* call, const Arguments&... arguments)
    {
        if (!logWindowCalls)
            return;
        std::ostringstream text;
        text << call;
        ((text << ' ' << arguments), ...);
        log_.push_back(text.str());
    }
    template <class... Arguments>
    void On(voxmate::WindowHandle window, const char* call, const Arguments&... arguments)
    {
        named.push_back(window);
        Note(call, arguments...);
    }
};

} // namespace voxmate::fakes
