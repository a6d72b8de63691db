// The desktop as the front end sees it: window styles and regions, and the other programs' windows.
#include "platform/windows/system/WindowsApi.h"
#include "qt/system/Desktop.h"
#include "qt/system/LayerSurface.h"

#include <QGuiApplication>

#include <array>
#include <string_view>
#include <utility>

#include <dwmapi.h>

namespace voxmate::qt
{

namespace
{

HWND Handle(QWindow& window)
{
    return reinterpret_cast<HWND>(window.winId());
}

QRect FromRect(const RECT& rect)
{
    return {QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1)};
}

/// Tells this thread that something on the desktop has changed.
UINT ChangeMessage()
{
    static const UINT message = ::RegisterWindowMessageW(L"VoxmateDesktopChange");
    return message;
}

void CALLBACK Tell(HWINEVENTHOOK /*hook*/, DWORD event, HWND window, LONG object, LONG /*child*/, DWORD /*thread*/,
                   DWORD /*time*/)
{
    // The pointer and carets move all the time, and so may windows behind the one with the keyboard.
    const bool moved = event == EVENT_OBJECT_LOCATIONCHANGE;
    if (!moved || (object == OBJID_WINDOW && window == ::GetForegroundWindow()))
        ::PostThreadMessageW(::GetCurrentThreadId(), ChangeMessage(), 0, 0);
}

/// Has this thread told of the windows of all programs. Called once.
bool Hook()
{
    constexpr DWORD how = WINEVENT_OUTOFCONTEXT | WINEVENT_SKIPOWNPROCESS;
    for (const auto& [first, last] : {std::pair<DWORD, DWORD>{EVENT_SYSTEM_FOREGROUND, EVENT_SYSTEM_FOREGROUND},
                                      {EVENT_SYSTEM_MINIMIZESTART, EVENT_SYSTEM_MINIMIZEEND},
                                      {EVENT_OBJECT_LOCATIONCHANGE, EVENT_OBJECT_LOCATIONCHANGE}})
        ::SetWinEventHook(first, last, nullptr, &Tell, 0, 0, how);
    return true;
}

BOOL CALLBACK AddMonitor(HMONITOR /*monitor*/, HDC /*context*/, RECT* rect, LPARAM list)
{
    reinterpret_cast<QList<QRect>*>(list)->append(FromRect(*rect));
    return TRUE;
}

bool IsCloaked(HWND window)
{
    DWORD cloaked = 0; // 0: seen; a window of another desktop or a sleeping program is not
    return ::DwmGetWindowAttribute(window, DWMWA_CLOAKED, &cloaked, sizeof cloaked) == S_OK && cloaked != 0;
}

/// The windows that belong to the desktop itself.
bool IsShell(HWND window)
{
    std::array<wchar_t, 32> name{};
    ::GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    const std::wstring_view type(name.data());
    return window == ::GetShellWindow() || type == L"Progman" || type == L"WorkerW" || type == L"Shell_TrayWnd" ||
           type == L"Shell_SecondaryTrayWnd";
}

BOOL CALLBACK AddWindow(HWND window, LPARAM state)
{
    auto& seen = *reinterpret_cast<DesktopState*>(state);
    RECT rect{};
    if (!::IsWindowVisible(window) || ::IsIconic(window) || IsCloaked(window) || IsShell(window) ||
        !::GetWindowRect(window, &rect))
        return TRUE;
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    ListedWindow listed;
    listed.rect = FromRect(rect);
    const auto style = static_cast<DWORD>(::GetWindowLongPtrW(window, GWL_STYLE));
    const auto extended = static_cast<DWORD>(::GetWindowLongPtrW(window, GWL_EXSTYLE));
    // A maximised window is larger than its screen, too, but has a title.
    listed.fullScreen = (style & WS_CAPTION) != WS_CAPTION && seen.monitors.contains(listed.rect);
    listed.ordinary = listed.fullScreen || (extended & (WS_EX_TOOLWINDOW | WS_EX_TOPMOST | WS_EX_NOACTIVATE)) == 0;
    listed.own = process == ::GetCurrentProcessId();
    listed.active = window == ::GetForegroundWindow();
    seen.windows.prepend(listed); // they come with the uppermost first
    return TRUE;
}

} // namespace

// Windows gives the mouse to what is beneath wherever a translucent window shows nothing at all.
void SetInputShape(QWindow& /*window*/, const QRegion& /*region*/) {}

void SetBoundingShape(QWindow& window, const QRegion& region)
{
    HRGN whole = ::CreateRectRgn(0, 0, 0, 0);
    for (const QRect& rect : region) {
        HRGN part = ::CreateRectRgn(rect.left(), rect.top(), rect.right() + 1, rect.bottom() + 1);
        ::CombineRgn(whole, whole, part, RGN_OR);
        ::DeleteObject(part);
    }
    // The system owns the region from now on.
    if (!::SetWindowRgn(Handle(window), whole, TRUE))
        ::DeleteObject(whole);
}

void ClearBoundingShape(QWindow& window)
{
    ::SetWindowRgn(Handle(window), nullptr, TRUE);
}

void MakeDesktopCompanion(QWindow& window)
{
    const auto style = ::GetWindowLongPtrW(Handle(window), GWL_EXSTYLE);
    ::SetWindowLongPtrW(Handle(window), GWL_EXSTYLE, (style & ~WS_EX_APPWINDOW) | WS_EX_TOOLWINDOW | WS_EX_NOACTIVATE);
}

void KeepDesktopCompanion(QWindow& window)
{
    MakeDesktopCompanion(window);
}

void BringToFront(QWindow& window)
{
    ::SetForegroundWindow(Handle(window));
}

bool ManagerPlacesWindows()
{
    return true;
}

void Flush() {}

bool TrayIsOfItems()
{
    return false;
}

bool TrayIsEmbedding()
{
    return true;
}

DesktopState LookAtDesktop(const QSet<std::uint32_t>& /*watched*/)
{
    [[maybe_unused]] static const bool hooked = Hook();
    DesktopState seen;
    ::EnumDisplayMonitors(nullptr, nullptr, &AddMonitor, reinterpret_cast<LPARAM>(&seen.monitors));
    ::EnumWindows(&AddWindow, reinterpret_cast<LPARAM>(&seen));
    return seen;
}

bool TellsOfDesktop(const void* event, const QSet<std::uint32_t>& /*watched*/)
{
    return static_cast<const MSG*>(event)->message == ChangeMessage();
}

// The system's own is always there.
Compositor& Compositor::Instance()
{
    static Compositor* const instance = new Compositor(qGuiApp);
    return *instance;
}

Compositor::Compositor(QObject* parent) : QObject(parent) {}

Compositor::~Compositor() = default;

bool Compositor::nativeEventFilter(const QByteArray& /*type*/, void* /*message*/, qintptr* /*result*/)
{
    return false;
}

bool PutInLayer(QWindow& /*window*/)
{
    return false;
}

} // namespace voxmate::qt
