#include "platform/linux/process/XdgAutostart.h"

#include "base/Text.h"
#include "platform/FindProgram.h"
#include "platform/linux/files/FileSaver.h"
#include "platform/linux/files/Folders.h"
#include "platform/linux/files/WholeFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

/// More is no desktop entry.
constexpr std::uint64_t LargestEntry = 1U << 20;

/// A key of an entry's main group; nothing when the entry does not have it.
std::optional<std::string> Value(std::string_view entry, std::string_view key)
{
    bool inside = false;
    while (!entry.empty()) {
        const std::size_t end = std::min(entry.find('\n'), entry.size());
        const std::string_view line = Trimmed(entry.substr(0, end), " \t\r");
        entry.remove_prefix(std::min(end + 1, entry.size()));
        if (line.starts_with('[')) {
            inside = line == "[Desktop Entry]";
        } else if (const std::size_t equals = line.find('=');
                   inside && equals != std::string_view::npos && Trimmed(line.substr(0, equals), " \t") == key) {
            return std::string(Trimmed(line.substr(equals + 1), " \t"));
        }
    }
    return std::nullopt;
}

/// Whether this entry starts something at log-in. GNOME's own switch is a key of its own.
bool Starts(const std::string& entry)
{
    const std::string tried = Value(entry, "TryExec").value_or("");
    const bool there =
        tried.empty() || (tried.starts_with('/') ? ::access(tried.c_str(), X_OK) == 0 : !FindProgram(tried).empty());
    return there && Value(entry, "Exec") && Value(entry, "Hidden").value_or("") != "true" &&
           Value(entry, "X-GNOME-Autostart-enabled").value_or("") != "false";
}

std::string EntryIn(const std::string& folder)
{
    return folder + "/autostart/" + XdgAutostart::FileName;
}

} // namespace

// Within quotes a double quote, a grave accent, a dollar sign and a backslash have a backslash in front; in every value
// a backslash is doubled once more; a percent sign begins a field code and is doubled.
std::string ExecArgument(const std::string& argument)
{
    constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`%";
    if (!argument.empty() && argument.find_first_of(reserved) == std::string::npos)
        return argument;
    std::string quoted = "\"";
    for (const char c : argument) {
        if (c == '"' || c == '`' || c == '$')
            quoted += std::string("\\\\") + c;
        else if (c == '\\')
            quoted += "\\\\\\\\";
        else if (c == '%')
            quoted += "%%";
        else if (c == '\n')
            quoted += "\\n";
        else
            quoted += c;
    }
    return quoted + "\"";
}

XdgAutostart::XdgAutostart(std::string userFolder, std::vector<std::string> systemFolders, std::string program)
    : userFolder_(std::move(userFolder)), systemFolders_(std::move(systemFolders)), program_(std::move(program))
{
}

std::string XdgAutostart::Path()
{
    return EntryIn(userFolder_);
}

bool XdgAutostart::IsOn()
{
    std::optional<std::string> entry = ReadWholeFile(Path(), LargestEntry);
    for (std::size_t i = 0; !entry && i < systemFolders_.size(); ++i)
        entry = ReadWholeFile(EntryIn(systemFolders_[i]), LargestEntry);
    return entry && Starts(*entry);
}

bool XdgAutostart::SystemHasIt() const
{
    return std::any_of(systemFolders_.begin(), systemFolders_.end(),
                       [](const std::string& folder) { return ::access(EntryIn(folder).c_str(), F_OK) == 0; });
}

bool XdgAutostart::Write(bool hidden)
{
    // A link to the entry in the menus is replaced, not that entry.
    std::error_code error;
    if (std::filesystem::is_symlink(Path(), error))
        ::unlink(Path().c_str());
    return CanSave(Path()) &&
           SaveFile(Path(), "[Desktop Entry]\n"
                            "Type=Application\n"
                            "Name=Voxmate\n"
                            "Comment=A desktop assistant that talks\n"
                            "Icon=voxmate\n"
                            "Exec=" +
                                ExecArgument(program_) + " --quiet\n" + (hidden ? "Hidden=true\n" : ""));
}

bool XdgAutostart::Turn(bool on)
{
    if (on || SystemHasIt())
        return Write(!on);
    return ::unlink(Path().c_str()) == 0 || errno == ENOENT;
}

XdgAutostart MakeAutostart()
{
    return {ConfigFolder(), SystemConfigFolders(), RunningProgram()};
}

} // namespace voxmate::linux_platform
