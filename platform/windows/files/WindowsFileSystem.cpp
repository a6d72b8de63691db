#include "platform/windows/files/WindowsFileSystem.h"

#include "base/FileName.h"
#include "base/Text.h"
#include "platform/windows/files/CodePage.h"
#include "platform/windows/files/File.h"
#include "platform/windows/files/WindowsTextStream.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <algorithm>

namespace voxmate::windows_platform
{

namespace
{

DWORD AttributesOf(const std::string& path)
{
    return ::GetFileAttributesW(SystemPath(path).c_str());
}

std::string NameOf(const std::string& path)
{
    return path.substr(path.find_last_of("\\/:") + 1);
}

} // namespace

std::string WindowsFileSystem::DecodeText(std::string_view bytes)
{
    return windows_platform::DecodeText(bytes);
}

bool WindowsFileSystem::FolderExists(const std::string& path)
{
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool WindowsFileSystem::FileExists(const std::string& path)
{
    const DWORD attributes = AttributesOf(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::string WindowsFileSystem::GetBaseName(const std::string& path)
{
    const std::string name = NameOf(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 || name == ".." ? name : name.substr(0, dot);
}

std::string WindowsFileSystem::GetExtensionName(const std::string& path)
{
    const std::string name = NameOf(path);
    const std::size_t dot = name.rfind('.');
    return dot == std::string::npos ? "" : name.substr(dot + 1);
}

std::unique_ptr<TextStream> WindowsFileSystem::OpenTextFile(const std::string& path)
{
    return std::make_unique<WindowsTextStream>(path);
}

// All names are listed and matched here: the system's own matching also looks at the short names of old, so that
// "*.acs" would find "Bo.acsx".
std::vector<std::string> WindowsFileSystem::ListFiles(const std::string& folder, const std::string& pattern)
{
    std::vector<std::string> names;
    WIN32_FIND_DATAW found{};
    void* const search = ::FindFirstFileW(SystemPath(folder + "\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE)
        return names;
    do {
        std::string name = Narrow(found.cFileName);
        if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && MatchesPattern(name, pattern))
            names.push_back(std::move(name));
    } while (::FindNextFileW(search, &found));
    ::FindClose(search);
    std::sort(names.begin(), names.end(), [](const std::string& a, const std::string& b) {
        const std::string upperA = UCase(a);
        const std::string upperB = UCase(b);
        return upperA != upperB ? upperA < upperB : a < b;
    });
    return names;
}

std::string WindowsFileSystem::LinkTarget(const std::string& path)
{
    const DWORD attributes = AttributesOf(path);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0)
        return path;
    const File file(path, Opening::Read);
    if (!file.Opens())
        return path;
    std::wstring target(::GetFinalPathNameByHandleW(file.Handle(), nullptr, 0, FILE_NAME_NORMALIZED), L'\0');
    target.resize(::GetFinalPathNameByHandleW(file.Handle(), target.data(), static_cast<DWORD>(target.size()),
                                              FILE_NAME_NORMALIZED));
    if (target.empty())
        return path;
    const std::string full = Narrow(target);
    constexpr std::string_view computer = R"(\\?\UNC\)";
    constexpr std::string_view plain = R"(\\?\)";
    if (full.starts_with(computer))
        return R"(\\)" + full.substr(computer.size());
    return full.starts_with(plain) ? full.substr(plain.size()) : full;
}

} // namespace voxmate::windows_platform
