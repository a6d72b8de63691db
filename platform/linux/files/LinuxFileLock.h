// Locks that keep programs from reading and replacing a file at the same time.
#pragma once

#include "platform/FileSystem.h"

#include <memory>
#include <string>

namespace voxmate::linux_platform
{

/// Implements FileSystem::Lock with a lock on a second file, "path.lock", which is never removed: a file that is
/// replaced by another, as a save does, cannot keep a lock across that.
std::unique_ptr<FileLock> LockBeside(const std::string& path);

} // namespace voxmate::linux_platform
