#include "platform/SharedLibrary.h"

#include "platform/windows/system/WindowsApi.h"

namespace voxmate
{

std::string SharedLibrary::FileName(std::string_view name, int /*version*/)
{
    return "lib" + std::string(name) + ".dll";
}

// A file name alone is looked for beside the program and among the system's libraries, never in the current folder or
// those of PATH, where a stranger's file may lie.
std::optional<SharedLibrary> SharedLibrary::Load(const std::filesystem::path& name)
{
    const DWORD places = name.is_absolute() ? LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS
                                            : LOAD_LIBRARY_SEARCH_DEFAULT_DIRS;
    void* const handle = ::LoadLibraryExW(name.c_str(), nullptr, places);
    return handle ? std::optional(SharedLibrary(handle)) : std::nullopt;
}

void* SharedLibrary::Address(const char* name) const
{
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(handle_), name));
}

std::filesystem::path SharedLibrary::Folder() const
{
    constexpr DWORD longest = 32768; // of any path
    std::wstring path(longest, L'\0');
    path.resize(::GetModuleFileNameW(static_cast<HMODULE>(handle_), path.data(), longest));
    return std::filesystem::path(path).parent_path();
}

} // namespace voxmate
