#include "forms/frmAbout.h"

#include "modules/Program.h"

#include <array>
#include <charconv>

namespace voxmate
{

namespace
{

// Window style of Shell: normal, with focus (vbNormalFocus).
constexpr int normalFocus = 1;
// winreg.h and winnt.h.
constexpr std::uint32_t localMachine = 0x80000002;
constexpr std::uint32_t keyAllAccess = 0x2003F;
constexpr std::size_t bufferSize = 1024;

// The number in these bytes, lowest byte first, as decimal text.
std::string NumberText(const std::string& bytes)
{
    constexpr const char* digits = "0123456789ABCDEF";
    std::string hex;
    for (auto byte = bytes.rbegin(); byte != bytes.rend(); ++byte) {
        hex += digits[static_cast<unsigned char>(*byte) >> 4];
        hex += digits[static_cast<unsigned char>(*byte) & 0xFu];
    }
    std::uint32_t number = 0;
    std::from_chars(hex.data(), hex.data() + hex.size(), number, 16);
    // The registry's 32-bit numbers are signed, as everywhere in the program.
    return std::to_string(static_cast<std::int32_t>(number));
}

} // namespace

frmAbout::frmAbout(Program& program) : Form(program.Host.Windows, "frmAbout"), program_(program)
{
    cmdOK.IsDefault = true;
    cmdOK.IsCancel = true;
    Picture1.AccessibleName = "Voxmate's logo";
    lblTitle.Heading = true;
    Arrangement = Column({
        Row({Item(Picture1), Column({Space(), Item(lblTitle), Item(lblVersion), Space()}).Stretch(1)}).Spacing(20),
        Row({Item(cmdSysInfo).Min(116, 0), Space(), Item(cmdOK)}),
    });
    cmdOK.Click = [this] { Unload(); };
    cmdSysInfo.Click = [this] { StartSysInfo(); };
}

void frmAbout::Form_Load()
{
    Caption = "About Voxmate \u00AE";
    lblTitle.Caption = "Voxmate \u00AE";
    lblVersion.Caption = "Version " + VersionText() + "  - Windows NT/98 and above";
}

void frmAbout::StartSysInfo()
{
    std::string path;
    if (GetKeyValue(localMachine, "SOFTWARE\\Microsoft\\Shared Tools\\MSINFO", "PATH", path)) {
        program_.Host.System.Shell(path, normalFocus);
        return;
    }
    if (GetKeyValue(localMachine, "SOFTWARE\\Microsoft\\Shared Tools Location", "MSINFO", path)) {
        const std::string program = path + program_.PathSeparator() + "MSINFO32.EXE";
        if (program_.Host.Files.FileExists(program)) {
            program_.Host.System.Shell(program, normalFocus);
            return;
        }
    }
    program_.Host.Windows.MsgBox("System Information Is Unavailable At This Time", vbOKOnly, "Voxmate");
}

bool frmAbout::GetKeyValue(std::uint32_t KeyRoot, const std::string& KeyName, const std::string& SubKeyRef,
                           std::string& KeyVal)
{
    SettingsStore& store = program_.Host.Settings;
    std::uint32_t key = 0;
    std::array<std::uint8_t, bufferSize> buffer{};
    std::uint32_t type = 0;
    std::uint32_t size = bufferSize;
    std::int32_t code = store.RegOpenKeyExA(KeyRoot, KeyName, 0, keyAllAccess, key);
    if (code == ERROR_SUCCESS)
        code = store.RegQueryValueExA(key, SubKeyRef, type, buffer, size);
    store.RegCloseKey(key);
    if (code != ERROR_SUCCESS)
        return false;
    std::string data(buffer.begin(), buffer.begin() + size);
    if (data.ends_with('\0'))
        data.pop_back();
    KeyVal = type == REG_DWORD ? NumberText(data) : data;
    return true;
}

} // namespace voxmate
