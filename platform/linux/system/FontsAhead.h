// Prepares the desktop's fonts while the program does other things.
#pragma once

#include <thread>

namespace voxmate::linux_platform
{

/// Reads the font configuration, which the first text would have to wait for, on a thread of its own. The toolkit finds
/// it read. Destroying the object waits for that thread. Does nothing where fontconfig is not installed.
class FontsAhead
{
public:
    FontsAhead();
    ~FontsAhead();
    FontsAhead(const FontsAhead&) = delete;
    FontsAhead& operator=(const FontsAhead&) = delete;

private:
    std::thread thread_;
};

} // namespace voxmate::linux_platform
