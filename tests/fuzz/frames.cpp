// Fuzzing of what the reader's process tells: any bytes are frames or are refused, and a frame is encoded as it was.
#include "documents.h"

#include "readers/Frames.h"

#include <string>

using namespace voxmate::readers;
using voxmate::fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const voxmate::fuzz::InTime inTime("frames are decoded");
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    FrameDecoder whole;
    whole.Add(bytes);
    std::string again;
    std::size_t count = 0;
    while (const std::optional<Frame> frame = whole.Next()) {
        again += EncodeFrame(*frame);
        ++count;
    }
    Require(bytes.starts_with(again), "frames are encoded as they were");
    FrameDecoder pieces;
    for (const char c : bytes) {
        pieces.Add({&c, 1});
        while (pieces.Next())
            --count;
    }
    Require(count == 0, "frames are the same in whatever pieces they come");
    return 0;
}
