// Fuzzing of web page archives: any bytes are an archive or are not, and the page found in one comes from it.
#include "fuzz.h"

#include "base/Text.h"
#include "platform/linux/word/WebArchive.h"

#include <string_view>

using namespace voxmate::linux_platform;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view archive(reinterpret_cast<const char*>(data), size);
    std::optional<WebPage> page;
    {
        const InTime inTime("a page is found in an archive");
        IsWebArchive(archive);
        page = PageOfWebArchive(archive);
    }
    if (!page)
        return 0;
    Require(page->content.size() <= size, "a page is no longer than its archive");
    Require(page->charset.size() <= size, "the name of an encoding stands in the archive");
    if (voxmate::UCase(archive).find("CONTENT-TRANSFER-ENCODING") == std::string::npos)
        Require(archive.find(page->content) != std::string_view::npos, "a page that is not coded stands as it is");
    return 0;
}
