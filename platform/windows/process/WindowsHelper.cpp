#include "base/RuntimeError.h"
#include "platform/Helper.h"

namespace voxmate
{

// Programs that read files from strangers are started only where the system keeps them from everything else. For
// Windows that is not written, so documents and recordings are refused there.
std::unique_ptr<Helper> StartHelper(const std::string& /*program*/, const std::string& /*file*/)
{
    throw CannotCreateObject();
}

} // namespace voxmate
