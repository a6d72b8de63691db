// Installing a character from its file.
#pragma once

#include "modules/Program.h"

#include <cstdint>
#include <functional>
#include <string>

namespace voxmate
{

/// What a character file says about itself.
struct CharacterLook {
    std::string Name;
    std::string Description;
    std::uint64_t Bytes = 0; ///< size of the file
};

class InstallCharacter
{
public:
    /// Reads a character file without doing anything with it. Raises an exception whose text names the file and what is
    /// wrong with it.
    using Look = std::function<CharacterLook(const std::string& path)>;

    InstallCharacter(Program& program, Look look);

    /// Asks, after a look at the file, whether to install it. Copies it into the folder in which the program looks for
    /// characters, and asks whether to load it. Where the user may not write into that folder, a folder of the user's
    /// takes its place, with links to the characters that are in the former one.
    void Ask(const std::string& file);

private:
    Program& program_;
    Look look_;

    bool Describe(const std::string& file);
    std::string Folder();
    void Install(const std::string& file);
    void Complain(const std::string& text);
};

/// A size for people, in units of 1000: "1 byte", "999 bytes", "2 kB", "3.4 MB".
std::string SizeText(std::uint64_t bytes);

} // namespace voxmate
