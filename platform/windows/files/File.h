// An open file of Windows, and paths as its calls take them.
#pragma once

#include "base/RuntimeError.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace voxmate::windows_platform
{

/// A path for the system's calls: in UTF-16, and where it is too long for them as it is, full and with the prefix that
/// lifts that limit (\\?\, or \\?\UNC\ for another computer's).
std::wstring SystemPath(const std::string& path);

/// What opening a file is for; others may not have it open in a way that contradicts.
enum class Opening {
    Read,     ///< others may write to it, rename it and delete it meanwhile
    ReadOnly, ///< to read, and nobody else may have it open
    Write,    ///< an existing one, to read and write; nobody else may have it open
    Create,   ///< the same, and a missing one is created
};

/// Owns the handle of an open file and closes it.
class File
{
public:
    /// Opens a file; waits half a second while another program uses it. Opens() tells whether that succeeded, Error()
    /// otherwise why not (winerror.h).
    File(const std::string& path, Opening how);
    ~File() { Close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;

    bool Opens() const { return handle_ != nullptr; }
    std::uint32_t Error() const { return error_; }
    /// Whether it is neither a folder nor a device or pipe.
    bool IsRegular() const;
    /// Raises run-time error 57 "Device I/O error".
    std::int64_t Size() const;
    /// Fills the buffer from a position on and returns the number of bytes read: less than the buffer's size only at
    /// the end of the file. Raises run-time error 57.
    std::size_t Read(std::int64_t position, std::span<char> buffer) const;
    /// Each returns false, with Error() set, when it fails.
    bool Write(std::int64_t position, std::string_view bytes);
    bool Resize(std::int64_t size);
    bool Flush();
    /// Gives the file another name in its folder while it stays open; never replaces another file.
    bool Rename(const std::string& path);
    void Close();
    void* Handle() const { return handle_; }

private:
    bool Note(bool good);

    void* handle_ = nullptr;
    std::uint32_t error_ = 0;
};

/// The run-time error for a failed call: `OpenErrorOf` when opening to read, `WriteErrorOf` to write, `ChangeErrorOf`
/// when creating, deleting or renaming.
RuntimeError OpenErrorOf(std::uint32_t error);
RuntimeError WriteErrorOf(std::uint32_t error);
RuntimeError ChangeErrorOf(std::uint32_t error);

} // namespace voxmate::windows_platform
