// A disk that does not answer.
#pragma once

namespace voxmate::linux_platform
{

/// During this object's lifetime no save of this test program reaches the disk: fdatasync blocks, as it does in a
/// network folder whose server has gone. Only one may exist.
class HangingDisk
{
public:
    HangingDisk();
    /// The disk answers again, and the saves that wait go on.
    ~HangingDisk();
    HangingDisk(const HangingDisk&) = delete;
    HangingDisk& operator=(const HangingDisk&) = delete;

    /// Returns once a save is waiting for the disk.
    static void WaitForASave();
};

} // namespace voxmate::linux_platform
