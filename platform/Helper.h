// A program of ours that reads one file for us and is kept from everything else.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <span>
#include <string>

namespace voxmate
{

/// The program at work. Destroying it ends the program.
class Helper
{
public:
    /// How the program ended: by itself with status 0, otherwise, or because it used up its processor time.
    enum class End { Well, Crashed, OutOfTime };

    virtual ~Helper() = default;
    /// Waits at most `wait` for what the program writes and puts it into the buffer. Returns the number of bytes: 0
    /// when there were none in that time, or when AtEnd.
    virtual std::size_t Read(std::span<char> buffer, std::chrono::milliseconds wait) = 0;
    /// Whether the program has ended and all it wrote has been read.
    virtual bool AtEnd() const = 0;
    /// How it ended; to be asked AtEnd only.
    virtual End Ending() = 0;
};

/// Starts the program of that name, which is beside the running one or where an installation puts such programs, and
/// gives it the file for its input. Raises run-time error 53 "File not found", 70 "Permission denied" when the file may
/// not be read or is a folder, a device or a pipe, 57 "Device I/O error", and 429 when the program cannot be started.
std::unique_ptr<Helper> StartHelper(const std::string& program, const std::string& file);

} // namespace voxmate
