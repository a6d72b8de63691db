#include "platform/windows/files/SaveFile.h"

#include "platform/windows/files/File.h"
#include "platform/windows/files/WhileInUse.h"
#include "platform/windows/files/WindowsFileSystem.h"
#include "platform/windows/system/WindowsApi.h"

namespace voxmate::windows_platform
{

bool SaveFile(const std::string& path, const std::string& text)
{
    // A link stays: what it leads to is replaced.
    const std::string target = WindowsFileSystem().LinkTarget(path);
    const std::wstring old = SystemPath(target);
    const DWORD attributes = ::GetFileAttributesW(old.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0)
        return false;
    const std::string beside = target + "." + std::to_string(::GetCurrentProcessId()) + ".new";
    const std::wstring made = SystemPath(beside);
    bool good = false;
    {
        File file(beside, Opening::Create);
        good = file.Opens() && file.Resize(0) && file.Write(0, text) && file.Flush();
    }
    good = good && WhileInUse([&] {
                       constexpr DWORD how = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
                       return ::MoveFileExW(made.c_str(), old.c_str(), how) ? DWORD{0} : ::GetLastError();
                   }) == 0;
    if (!good)
        ::DeleteFileW(made.c_str());
    return good;
}

} // namespace voxmate::windows_platform
