#include "platform/windows/process/Console.h"

#include "platform/windows/system/WindowsApi.h"

#include <cstdio>
#include <initializer_list>
#include <iostream>
#include <utility>

namespace voxmate::windows_platform
{

namespace
{

/// Whether somebody takes what is written there.
bool Goes(DWORD which)
{
    void* const handle = ::GetStdHandle(which);
    return handle && handle != INVALID_HANDLE_VALUE && ::GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

} // namespace

void UseParentsConsole()
{
    const bool output = Goes(STD_OUTPUT_HANDLE);
    const bool errors = Goes(STD_ERROR_HANDLE);
    if ((output && errors) || !::AttachConsole(ATTACH_PARENT_PROCESS))
        return;
    ::SetConsoleOutputCP(CP_UTF8);
    for (const auto& [goes, stream] : {std::pair{output, stdout}, std::pair{errors, stderr}}) {
        if (!goes && !std::freopen("CONOUT$", "w", stream))
            return;
    }
    std::cout.clear();
    std::cerr.clear();
}

} // namespace voxmate::windows_platform
