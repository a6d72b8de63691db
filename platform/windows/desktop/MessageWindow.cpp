#include "platform/windows/desktop/MessageWindow.h"

#include "platform/windows/system/WindowsApi.h"

#include <utility>

namespace voxmate::windows_platform
{

namespace
{

constexpr const wchar_t* ClassName = L"VoxmateMessages";

} // namespace

std::intptr_t MessageWindow::Take(void* window, unsigned message, std::uintptr_t wide, std::intptr_t last)
{
    auto* const handle = static_cast<HWND>(window);
    const auto* own = reinterpret_cast<const MessageWindow*>(::GetWindowLongPtrW(handle, GWLP_USERDATA));
    if (own) {
        if (const std::optional<std::intptr_t> answer = own->handler_(message, wide, last))
            return *answer;
    }
    return ::DefWindowProcW(handle, message, wide, last);
}

MessageWindow::MessageWindow(const std::wstring& title, Handler handler) : handler_(std::move(handler))
{
    static const bool registered = [] {
        WNDCLASSW type{};
        type.lpfnWndProc = reinterpret_cast<WNDPROC>(&MessageWindow::Take);
        type.hInstance = ::GetModuleHandleW(nullptr);
        type.lpszClassName = ClassName;
        return ::RegisterClassW(&type) != 0;
    }();
    if (!registered)
        return;
    HWND const window = ::CreateWindowExW(0, ClassName, title.c_str(), 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                          ::GetModuleHandleW(nullptr), nullptr);
    if (window)
        ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    handle_ = window;
}

MessageWindow::~MessageWindow()
{
    if (handle_)
        ::DestroyWindow(static_cast<HWND>(handle_));
}

void* MessageWindow::Find(const std::wstring& title)
{
    return ::FindWindowExW(HWND_MESSAGE, nullptr, ClassName, title.c_str());
}

} // namespace voxmate::windows_platform
