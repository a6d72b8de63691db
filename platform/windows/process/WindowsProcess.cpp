#include "platform/windows/process/WindowsProcess.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/windows/files/Folders.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <string_view>

#include <shellapi.h>

namespace voxmate::windows_platform
{

WindowsProcess::WindowsProcess() : programFolder_(ProgramFolder())
{
    PlaceTips(SharedDataFolder(), programFolder_);
}

WindowsProcess::~WindowsProcess()
{
    if (instance_)
        ::CloseHandle(instance_);
}

std::string WindowsProcess::ProgramDirectory()
{
    return programFolder_;
}

std::uint32_t WindowsProcess::GetWindowsDirectoryA(std::string& buffer, std::uint32_t size)
{
    const std::string folder = SharedDataFolder();
    if (folder.size() <= size)
        buffer.replace(0, folder.size(), folder);
    return static_cast<std::uint32_t>(folder.size());
}

bool WindowsProcess::PreviousInstance()
{
    if (instance_)
        return false;
    // For all of the user's sessions; a name holds at most 260 characters.
    void* const mutex = ::CreateMutexW(nullptr, FALSE, (L"Global\\Voxmate " + NameOfFolder(programFolder_)).c_str());
    const DWORD outcome = ::GetLastError();
    if (mutex && outcome != ERROR_ALREADY_EXISTS) {
        instance_ = mutex;
        return false;
    }
    if (mutex)
        ::CloseHandle(mutex);
    // It is another user's where access is denied. If there can be none, a second copy is better than none.
    return mutex || outcome == static_cast<DWORD>(ERROR_ACCESS_DENIED);
}

double WindowsProcess::Shell(const std::string& command, int windowStyle)
{
    constexpr std::string_view explorer = "explorer.exe ";
    if (EqualNoCase(std::string_view(command).substr(0, explorer.size()), explorer)) {
        const std::wstring address = Wide(std::string_view(command).substr(explorer.size()));
        SHELLEXECUTEINFOW call{};
        call.cbSize = sizeof call;
        call.fMask = SEE_MASK_FLAG_NO_UI | SEE_MASK_NOCLOSEPROCESS;
        call.lpVerb = L"open";
        call.lpFile = address.c_str();
        call.nShow = SW_SHOWNORMAL;
        if (!::ShellExecuteExW(&call))
            throw FileNotFound();
        // A program that runs already takes the address without a process of its own.
        const DWORD process = call.hProcess ? ::GetProcessId(call.hProcess) : ::GetCurrentProcessId();
        if (call.hProcess)
            ::CloseHandle(call.hProcess);
        return process;
    }
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESHOWWINDOW;
    start.wShowWindow = static_cast<WORD>(windowStyle);
    PROCESS_INFORMATION process{};
    std::wstring line = Wide(command);
    if (line.empty() ||
        !::CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
        throw FileNotFound();
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return process.dwProcessId;
}

void WindowsProcess::EndProcess()
{
    if (BeforeEnd)
        BeforeEnd(EndPatience);
    // Not ExitProcess, which lets libraries clean up and can hang in one of them.
    ::TerminateProcess(::GetCurrentProcess(), EXIT_SUCCESS);
}

DateTime WindowsClock::Now()
{
    SYSTEMTIME now{};
    ::GetLocalTime(&now);
    return {now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

std::string WindowsClock::ShortDate(const DateTime& date)
{
    SYSTEMTIME day{};
    day.wYear = static_cast<WORD>(date.year);
    day.wMonth = static_cast<WORD>(date.month);
    day.wDay = static_cast<WORD>(date.day);
    constexpr int longest = 100;
    std::wstring text(longest, L'\0');
    const int length =
        ::GetDateFormatEx(LOCALE_NAME_USER_DEFAULT, DATE_SHORTDATE, &day, nullptr, text.data(), longest, nullptr);
    // The system knows no date before 1601.
    if (length == 0)
        return Padded(date.year, 4) + "-" + Padded(date.month, 2) + "-" + Padded(date.day, 2);
    text.resize(static_cast<std::size_t>(length) - 1);
    return Narrow(text);
}

} // namespace voxmate::windows_platform
