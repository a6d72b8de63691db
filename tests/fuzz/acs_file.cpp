// Fuzzing of the character file's reader, for clang's libFuzzer:
//   clang++ -std=c++20 -g -O1 -fsanitize=fuzzer,address,undefined -I. tests/fuzz/acs_file.cpp
//       platform/agent/AcsFile.cpp platform/agent/AcsReader.cpp platform/agent/AcsCompression.cpp base/Text.cpp -o
//       fuzz_acs
// Start it with a folder of small character files; any input may be refused with AcsError, nothing else may happen.
#include "platform/agent/AcsFile.h"

#include <cstddef>
#include <cstdint>
#include <vector>

using namespace voxmate::agent;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try {
        const auto file = AcsFile::Parse(std::vector<std::uint8_t>(data, data + size), "fuzz.acs");
        if (std::size_t{file->width} * file->height > 100000)
            return 0;
        int drawn = 0;
        for (const Animation& animation : file->animations)
            for (const Frame& frame : animation.frames)
                for (int mouth = -1; mouth < MouthCount && drawn < 50; ++mouth, ++drawn)
                    ComposeFrame(*file, frame, mouth);
        for (std::size_t i = 0; i < file->ImageCount() && i < 50; ++i)
            file->DecodeImage(i);
        for (std::size_t i = 0; i < file->SoundCount(); ++i)
            file->Sound(i);
    } catch (const AcsError&) {
        // A refusal is an answer.
    }
    return 0;
}
