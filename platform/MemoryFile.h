// Files for libraries that can read only files.
#pragma once

#include <string>
#include <string_view>

namespace voxmate
{

/// A file kept in memory; it disappears with this object.
class MemoryFile
{
public:
    explicit MemoryFile(std::string_view content);
    ~MemoryFile();
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    /// The path under which this process can open it; empty when the system had no memory for it.
    const std::string& Path() const { return path_; }

private:
    int descriptor_ = -1;
    std::string path_;
};

} // namespace voxmate
