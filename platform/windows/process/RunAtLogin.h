// Starting the program at log-in through the list of the user's in the registry.
#pragma once

#include "platform/Autostart.h"

#include <string>

namespace voxmate::windows_platform
{

class RunAtLogin : public Autostart
{
public:
    /// `program` is the full path of what is to be started, `name` that of the entry.
    explicit RunAtLogin(std::string program, std::string name = "Voxmate");

    /// Off, too, where the user has switched the entry off in the system's own list of such programs.
    bool IsOn() override;
    bool Turn(bool on) override;
    std::string Path() override;

private:
    std::string program_;
    std::wstring name_;
};

} // namespace voxmate::windows_platform
