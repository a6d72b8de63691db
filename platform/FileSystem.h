// Files and folders as the program's logic sees them.
#pragma once

#include <string>
#include <vector>

namespace voxmate
{

class FileSystem
{
public:
    virtual ~FileSystem() = default;
    /// The separator between the parts of a path: "\" or "/".
    virtual std::string PathSeparator() = 0;
    virtual bool FolderExists(const std::string& path) = 0;
    /// The case of the extension does not matter, here and in the patterns of ListFiles, as people have files from
    /// systems that do not tell it.
    virtual bool FileExists(const std::string& path) = 0;
    /// The file name's part before its last dot, without the folder.
    virtual std::string GetBaseName(const std::string& path) = 0;
    /// Names of the files in a folder that match a pattern such as "*.acs", sorted without regard to case; empty when
    /// the folder cannot be read.
    virtual std::vector<std::string> ListFiles(const std::string& folder, const std::string& pattern) = 0;
};

} // namespace voxmate
