#include "platform/windows/files/Folders.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/windows/files/WindowsFileSystem.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include <shlobj.h>

namespace voxmate::windows_platform
{

namespace
{

std::string LocalData()
{
    wchar_t* path = nullptr;
    std::string folder;
    if (::SHGetKnownFolderPath(FOLDERID_LocalAppData, KF_FLAG_CREATE, nullptr, &path) == S_OK)
        folder = Narrow(path);
    ::CoTaskMemFree(path);
    return folder;
}

} // namespace

std::string ProgramFolder()
{
    const wchar_t* const named = ::_wgetenv(L"VOXMATE_HOME"); // NOLINT(concurrency-mt-unsafe): before any thread
    const std::string folder =
        named && std::filesystem::path(named).is_absolute() ? Narrow(named) : LocalData() + "\\Voxmate";
    try {
        WindowsFileSystem().CreateFolder(folder);
    } catch (const RuntimeError&) {
        // What needs the folder says so.
    }
    return folder;
}

// Paths differ at their ends.
std::wstring NameOfFolder(const std::string& folder)
{
    constexpr std::size_t longest = 200;
    std::wstring name = Wide(UCase(folder));
    std::replace(name.begin(), name.end(), L'\\', L'/');
    name.erase(0, name.size() - std::min(name.size(), longest));
    return name;
}

std::string RunningProgram()
{
    constexpr DWORD longest = 32768; // of any path
    std::wstring path(longest, L'\0');
    path.resize(::GetModuleFileNameW(nullptr, path.data(), longest));
    return Narrow(path);
}

std::string SharedDataFolder()
{
    const std::string program = RunningProgram();
    return program.substr(0, program.find_last_of('\\')) + "\\share\\voxmate";
}

void PlaceTips(const std::string& sharedFolder, const std::string& programFolder)
{
    WindowsFileSystem files;
    const std::string target = programFolder + "\\VoxmateTips.txt";
    try {
        if (!files.FileExists(target))
            files.CopyFile(sharedFolder + "\\VoxmateTips.txt", target);
    } catch (const RuntimeError&) {
        // The program then tells that there are no tips.
    }
}

} // namespace voxmate::windows_platform
