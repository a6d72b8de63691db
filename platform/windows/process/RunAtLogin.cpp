#include "platform/windows/process/RunAtLogin.h"

#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <array>
#include <utility>

namespace voxmate::windows_platform
{

namespace
{

constexpr const wchar_t* Run = LR"(Software\Microsoft\Windows\CurrentVersion\Run)";
// What the system's list of start-up programs writes beside it: an odd first byte switches an entry off.
constexpr const wchar_t* Approved = LR"(Software\Microsoft\Windows\CurrentVersion\Explorer\StartupApproved\Run)";

bool Removed(const wchar_t* key, const std::wstring& name)
{
    const LSTATUS code = ::RegDeleteKeyValueW(HKEY_CURRENT_USER, key, name.c_str());
    return code == ERROR_SUCCESS || code == ERROR_FILE_NOT_FOUND;
}

} // namespace

RunAtLogin::RunAtLogin(std::string program, std::string name) : program_(std::move(program)), name_(Wide(name)) {}

std::string RunAtLogin::Path()
{
    return "HKEY_CURRENT_USER\\" + Narrow(Run);
}

bool RunAtLogin::IsOn()
{
    if (::RegGetValueW(HKEY_CURRENT_USER, Run, name_.c_str(), RRF_RT_REG_SZ, nullptr, nullptr, nullptr) !=
        ERROR_SUCCESS)
        return false;
    std::array<BYTE, 64> approved{};
    DWORD size = static_cast<DWORD>(approved.size());
    return ::RegGetValueW(HKEY_CURRENT_USER, Approved, name_.c_str(), RRF_RT_REG_BINARY, nullptr, approved.data(),
                          &size) != ERROR_SUCCESS ||
           (approved.front() & 1U) == 0;
}

bool RunAtLogin::Turn(bool on)
{
    if (!on)
        return Removed(Run, name_) && Removed(Approved, name_);
    const std::wstring command = L"\"" + Wide(program_) + L"\" --quiet";
    return Removed(Approved, name_) &&
           ::RegSetKeyValueW(HKEY_CURRENT_USER, Run, name_.c_str(), REG_SZ, command.c_str(),
                             static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

} // namespace voxmate::windows_platform
