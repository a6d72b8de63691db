// Files for libraries that read from nothing else.
#pragma once

#include <string>
#include <string_view>

namespace voxmate
{

/// A file that lies in memory and is gone with this object.
class MemoryFile
{
public:
    explicit MemoryFile(std::string_view content);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// Where this process can open it; empty when the system gave no memory for it.
    const std::string& Path() const { return path_; }

private:
    int descriptor_ = -1;
    std::string path_;
};

} // namespace voxmate
