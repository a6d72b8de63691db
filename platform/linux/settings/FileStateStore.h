// What the program remembers, in a text file with one NAME=VALUE a line.
#pragma once

#include "platform/StateStore.h"
#include "platform/linux/files/FileSaver.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::linux_platform
{

/// In the file a backslash of a value is written as \\, a line feed as \n and a carriage return as \r. Lines of other
/// programs or later versions are kept as they are. Where a name occurs several times, its last line counts.
class FileStateStore : public StateStore
{
public:
    /// Reads the file; one that is missing or cannot be read counts as empty. A file of more than LargestFile bytes is
    /// none of ours: it is neither read nor replaced.
    explicit FileStateStore(const std::string& path);

    std::string Get(const std::string& name) override;
    void Set(const std::string& name, const std::string& value) override;

    /// Waits at most `patience` until everything set so far is in the file or could not be saved. False when that was
    /// not done in time. Callable from any thread.
    bool Flush(std::chrono::milliseconds patience) { return saver_.Flush(patience); }

    static constexpr std::uint64_t LargestFile = 1U << 20;
    /// A window that is being dragged reports a new place at each step; it is saved when it rests.
    static constexpr std::chrono::milliseconds Rest{1000};

private:
    std::vector<std::string> lines_;
    bool foreign_ = false; ///< the file is too large to be ours
    FileSaver saver_;

    std::string* Find(const std::string& name);
};

/// Makes the store in the place of the XDG base directory standard: $XDG_STATE_HOME/voxmate/state.
std::unique_ptr<FileStateStore> MakeStateStore();

} // namespace voxmate::linux_platform
