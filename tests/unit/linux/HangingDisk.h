// A disk that does not answer.
#pragma once

namespace voxmate::linux_platform
{

/// While it lives, no save of this test program gets to the disk: fdatasync waits, as it does in a folder of the
/// network whose server has gone. Only one may exist.
class HangingDisk
{
public:
    HangingDisk();
    /// The disk answers again, and the saves that wait go on.
    ~HangingDisk();
    HangingDisk(const HangingDisk&) = delete;
    HangingDisk& operator=(const HangingDisk&) = delete;

    /// Returns when a save waits for the disk.
    static void WaitForASave();
};

} // namespace voxmate::linux_platform
