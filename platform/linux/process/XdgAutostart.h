// Starting at log-in by an entry in the autostart folder that desktops agree on (freedesktop.org).
#pragma once

#include "platform/Autostart.h"

#include <string>
#include <vector>

namespace voxmate::linux_platform
{

/// The entry in the user's folder takes precedence over those of the system under the same name, and Hidden=true in it
/// means that there is none.
class XdgAutostart : public Autostart
{
public:
    /// `userFolder` and `systemFolders` are the configuration folders, which contain autostart/; `program` is the path
    /// of the program to be started.
    XdgAutostart(std::string userFolder, std::vector<std::string> systemFolders, std::string program);

    bool IsOn() override;
    /// Off removes the user's entry, or hides the system's where there is one.
    bool Turn(bool on) override;
    std::string Path() override;

    static constexpr const char* FileName = "org.voxmate.Voxmate.desktop";

private:
    std::string userFolder_;
    std::vector<std::string> systemFolders_;
    std::string program_;

    bool SystemHasIt() const;
    bool Write(bool hidden);
};

/// One for the running program and this user's folders.
XdgAutostart MakeAutostart();

/// An argument as the Exec key of a desktop entry takes it: in double quotes where it needs them, with what is special
/// within them and in a value escaped.
std::string ExecArgument(const std::string& argument);

} // namespace voxmate::linux_platform
