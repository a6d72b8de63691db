// Fuzzes recordings of the kinds other than wave files. Any bytes either are a recording or are not, and are the same
// one every time.
#include "fuzz.h"
#include "sounds.h"

#include "speech/sound/WaveFile.h"

#include <span>

using namespace voxmate;
using voxmate::fuzz::Require;

namespace
{

struct Heard {
    std::size_t samples = 0;
    std::uint32_t sum = 0;
    bool operator==(const Heard&) const = default;
};

// The beginning of a recording: silence of days takes few bytes, and is decoded a block at a time as it is played.
Heard Listen(speech::WaveReader& reader)
{
    constexpr std::size_t most = 100'000;
    constexpr std::size_t longest = 4096;
    Heard heard;
    for (auto samples = reader.Next(); !samples.empty() && heard.samples < most; samples = reader.Next()) {
        Require(samples.size() <= longest, "a recording comes in blocks");
        heard.samples += samples.size();
        for (const std::int16_t sample : samples)
            heard.sum = heard.sum * 31 + static_cast<std::uint16_t>(sample);
    }
    return heard;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const fuzz::InTime inTime("a recording's beginning is decoded twice");
    const auto reader = speech::WaveReader::Of({data, size});
    if (!reader)
        return 0;
    Require(reader->SamplesPerSecond() >= 1000 && reader->SamplesPerSecond() <= 384000,
            "a rate is one of 1 to 384 kHz");
    const Heard heard = Listen(*reader);
    const auto again = speech::WaveReader::Of({data, size});
    Require(again && Listen(*again) == heard, "a file is the same sound every time");
    fuzz::Count(heard.samples / 256);
    fuzz::CountWhatIsLogged(std::span(data, size));
    return 0;
}
