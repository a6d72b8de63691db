// Locks that programs hold against one another while they read and replace a file.
#pragma once

#include "platform/FileSystem.h"

#include <memory>
#include <string>

namespace voxmate::linux_platform
{

/// What FileSystem::Lock promises, on a file beside the one to be held ("path.lock"), which stays there: a file that is
/// replaced by another, as a save does, cannot hold a lock over that.
std::unique_ptr<FileLock> LockBeside(const std::string& path);

} // namespace voxmate::linux_platform
