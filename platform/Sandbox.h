// Where a program of ours that reads files from strangers can do no harm.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace voxmate
{

struct SandboxLimits {
    std::chrono::seconds time;         ///< of processor time
    std::uint64_t memory;              ///< bytes of address space
    std::vector<std::string> readable; ///< folders whose files libraries may open, to read only
};

/// Takes from this process, which must have one thread, all it does not need to read what is open and to write to its
/// output: the network, other files, other processes. It ends with the process that started it, and at its limits. What
/// is not granted fails; it does not end the process. Where the system cannot limit files to folders, none can be
/// opened any more. Returns false when the system cannot keep this process from the network and other files: then it
/// must not go on.
bool EnterSandbox(const SandboxLimits& limits);

/// A file that is open, as bytes in memory, until the process ends.
struct InputBytes {
    const char* data = nullptr;
    std::uint64_t size = 0;
    bool good = false; ///< false when it could not be mapped; `size` is right all the same when `data` is null
};

/// The process's input, which is a file, mapped into memory unless it is larger than `most` bytes.
InputBytes MapInput(std::uint64_t most);

/// Writes all of the bytes to the process's output; false when nobody reads them any more.
bool WriteOutput(const char* bytes, std::uint64_t size);

/// Ends the process at once, without unloading.
[[noreturn]] void LeaveSandbox(int status);

} // namespace voxmate
