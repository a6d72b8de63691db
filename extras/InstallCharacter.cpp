#include "extras/InstallCharacter.h"

#include "base/Text.h"

#include <cmath>
#include <cstdio>
#include <exception>
#include <utility>

namespace voxmate
{

namespace
{

/// More of a description would make a box that fills the screen.
constexpr std::size_t LongestText = 300;

// A text from a stranger's file on one line of a box.
std::string OneLine(const std::string& text)
{
    std::u32string line;
    for (const char32_t c : DecodeUtf8(text)) {
        const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
        // Marks that would turn the direction of what follows.
        const bool turns = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
        if (!turns)
            line += control ? U' ' : c;
        if (line.size() == LongestText) {
            line += U"...";
            break;
        }
    }
    return EncodeUtf8(line);
}

} // namespace

std::string SizeText(std::uint64_t bytes)
{
    constexpr std::uint64_t kilo = 1000;
    constexpr std::uint64_t mega = kilo * kilo;
    if (bytes < kilo)
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    const std::uint64_t thousands = (bytes + kilo / 2) / kilo;
    if (thousands < kilo)
        return std::to_string(thousands) + " kB";
    const std::uint64_t tenths = (bytes + mega / 20) / (mega / 10);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " MB";
}

InstallCharacter::InstallCharacter(Program& program, Look look) : program_(program), look_(std::move(look)) {}

void InstallCharacter::Complain(const std::string& text)
{
    program_.Messages.Announce(text, vbExclamation, "Voxmate - File Error", "Decline");
}

// Shows what the file says of itself, and asks.
bool InstallCharacter::Describe(const std::string& file)
{
    const CharacterLook look = look_(file);
    const std::string lines[] = {
        "Do you want to install this character?",
        "",
        "Name: " + OneLine(look.Name),
        "Description: " + OneLine(look.Description),
        "Size: " + SizeText(look.Bytes),
        "File: " + file,
    };
    return program_.Host.Windows.MsgBox(JoinLines(lines), vbYesNo + vbQuestion, "Voxmate - Install Character") == vbYes;
}

// The folder to install into, made ready.
std::string InstallCharacter::Folder()
{
    FileSystem& files = program_.Host.Files;
    std::string present = program_.Settings.CharacterPath;
    if (files.FolderWritable(present))
        return present;
    std::string own = program_.ProgramPath("Character") + program_.PathSeparator();
    files.CreateFolder(own);
    for (const std::string& name : files.ListFiles(present, "*.acs")) {
        if (!files.FileExists(own + name))
            files.LinkFile(present + name, own + name);
    }
    return own;
}

void InstallCharacter::Install(const std::string& file)
{
    FileSystem& files = program_.Host.Files;
    const std::string name = files.GetBaseName(file);
    const std::string folder = Folder();
    const std::string target = folder + name + ".acs";
    if (target != file) {
        const std::string lines[] = {"A character of this name is installed already:", target,
                                     "Do you want to replace it?"};
        if (files.FileExists(target) &&
            program_.Host.Windows.MsgBox(JoinLines(lines), vbYesNo + vbQuestion + vbDefaultButton2,
                                         "Voxmate - Install Character") != vbYes)
            return;
        files.CopyFile(file, target);
    }
    program_.Characters.ChangeCharacterPath(folder);
    if (program_.Host.Windows.MsgBox(OneLine(name) + " is installed. Do you want to see this character now?",
                                     vbYesNo + vbQuestion, "Voxmate - Install Character") == vbYes)
        program_.Characters.LoadCharacter(name, false);
}

void InstallCharacter::Ask(const std::string& file)
{
    try {
        if (Describe(file))
            Install(file);
    } catch (const RuntimeError& error) {
        Complain("The following character cannot be installed (" + error.Description + "):" + CrLf + file);
    } catch (const std::exception& error) {
        Complain(error.what());
    }
}

} // namespace voxmate
