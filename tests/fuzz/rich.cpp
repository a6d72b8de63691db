// Fuzzing of rich text: any bytes behind its signature are read or refused.
#include "documents.h"

#include "readers/rtf/Rtf.h"

#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = "{\\rtf1" + std::string(reinterpret_cast<const char*>(data), size);
    voxmate::fuzz::ReadAndCheck(
        "rich text is read", [&](const voxmate::readers::BlockSink& sink) { voxmate::readers::ReadRtf(text, sink); });
    return 0;
}
