#include "platform/linux/system/FontsAhead.h"

#include "platform/SharedLibrary.h"

#include <system_error>

namespace voxmate::linux_platform
{

namespace
{

void ReadConfiguration()
{
    // Loaded by the toolkit anyway. FcInit returns whether there is a configuration; without one the toolkit copes.
    if (const auto library = SharedLibrary::Load("libfontconfig.so.1")) {
        if (const auto init = library->Find<int (*)()>("FcInit"))
            init();
    }
}

} // namespace

// fontconfig may be used by several threads at once since its version 2.10.91.
FontsAhead::FontsAhead()
{
    try {
        thread_ = std::thread(ReadConfiguration);
    } catch (const std::system_error&) {
        // Without a thread to spare the first text waits.
    }
}

FontsAhead::~FontsAhead()
{
    if (thread_.joinable())
        thread_.join();
}

} // namespace voxmate::linux_platform
