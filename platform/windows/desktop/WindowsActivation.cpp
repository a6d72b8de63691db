#include "platform/windows/desktop/WindowsActivation.h"

#include "platform/windows/files/Folders.h"
#include "platform/windows/system/WindowsApi.h"

#include <QCoreApplication>
#include <QMetaObject>

#include <chrono>
#include <cstddef>
#include <thread>

namespace voxmate::windows_platform
{

namespace
{

/// Tells our messages from those of other programs: "VoxC".
constexpr ULONG_PTR Ours = 0x566F7843;
/// Thousands of files, and more than any menu of files hands over.
constexpr DWORD Longest = 1U << 20;
/// How long a call that nobody waits for may take to be answered.
constexpr std::chrono::seconds CallPatience{20};

bool Send(HWND window, const std::string& bytes, std::chrono::milliseconds patience)
{
    // Only the program that the user has just started may let another come to the front.
    DWORD process = 0;
    ::GetWindowThreadProcessId(window, &process);
    ::AllowSetForegroundWindow(process);
    COPYDATASTRUCT data{Ours, static_cast<DWORD>(bytes.size()), const_cast<char*>(bytes.data())};
    DWORD_PTR answer = 0;
    return ::SendMessageTimeoutW(window, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&data), SMTO_NORMAL,
                                 static_cast<UINT>(patience.count()), &answer) != 0 &&
           answer != 0;
}

} // namespace

// Texts with a zero byte behind each, the action first: no path and no action has one.
std::string EncodeCall(const Call& call)
{
    std::string bytes = call.Action + '\0';
    for (const std::string& file : call.Files)
        bytes += file + '\0';
    return bytes;
}

std::optional<Call> DecodeCall(std::string_view bytes)
{
    if (bytes.empty() || bytes.back() != '\0' || bytes.size() > Longest)
        return std::nullopt;
    Call call;
    const std::size_t end = bytes.find('\0');
    call.Action = bytes.substr(0, end);
    for (bytes.remove_prefix(end + 1); !bytes.empty();) {
        const std::size_t next = bytes.find('\0');
        call.Files.emplace_back(bytes.substr(0, next));
        bytes.remove_prefix(next + 1);
    }
    return call;
}

WindowsActivation::WindowsActivation() : title_(L"Voxmate " + NameOfFolder(ProgramFolder())) {}

void WindowsActivation::Listen()
{
    window_.emplace(
        title_, [this](unsigned message, std::uintptr_t /*from*/, std::intptr_t last) -> std::optional<std::intptr_t> {
            if (message != WM_COPYDATA)
                return std::nullopt;
            const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(last);
            const std::optional<Call> call = data && data->dwData == Ours && data->lpData
                                                 ? DecodeCall({static_cast<const char*>(data->lpData), data->cbData})
                                                 : std::nullopt;
            if (!call)
                return FALSE;
            QMetaObject::invokeMethod(
                QCoreApplication::instance(),
                [this, call = *call] {
                    if (Called)
                        Called(call);
                },
                Qt::QueuedConnection);
            return TRUE;
        });
}

bool WindowsActivation::PassOn(const Call& call, std::chrono::milliseconds patience)
{
    auto* const window = static_cast<HWND>(MessageWindow::Find(title_));
    std::string bytes = EncodeCall(call);
    if (!window || bytes.size() > Longest)
        return false;
    if (patience.count() > 0)
        return Send(window, bytes, patience);
    std::thread([window, bytes = std::move(bytes)] { Send(window, bytes, CallPatience); }).detach();
    return false;
}

} // namespace voxmate::windows_platform
