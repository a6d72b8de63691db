#include "platform/MemoryFile.h"

#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <array>
#include <atomic>

namespace voxmate
{

// A temporary file, which Windows keeps in memory as long as it has room. Not one that it deletes by itself: whoever
// opens such a file has to say that he does not mind, and libraries do not.
MemoryFile::MemoryFile(std::string_view content)
{
    static std::atomic<unsigned> number = 0;
    std::array<wchar_t, MAX_PATH + 1> folder{};
    const auto room = static_cast<DWORD>(folder.size());
    if (::GetTempPathW(room, folder.data()) == 0)
        return;
    // As short as it can be: eSpeak NG takes paths of 59 characters at most. Users' names make the folder's long.
    ::GetShortPathNameW(folder.data(), folder.data(), room);
    const std::wstring path = std::wstring(folder.data()) + L"vm" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
                              std::to_wstring(++number) + L".tmp";
    void* const file = ::CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                     FILE_ATTRIBUTE_TEMPORARY, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return;
    DWORD written = 0;
    const bool whole = content.size() <= MAXDWORD &&
                       ::WriteFile(file, content.data(), static_cast<DWORD>(content.size()), &written, nullptr) &&
                       written == content.size();
    ::CloseHandle(file);
    if (whole)
        path_ = windows_platform::Narrow(path);
    else
        ::DeleteFileW(path.c_str());
}

MemoryFile::~MemoryFile()
{
    if (!path_.empty())
        ::DeleteFileW(windows_platform::Wide(path_).c_str());
}

} // namespace voxmate
