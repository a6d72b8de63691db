// Fuzzes recorded sounds. Any bytes either are a wave file or are not, and what is decoded is no more than they can
// hold.
#include "fuzz.h"
#include "sounds.h"

#include "speech/sound/WaveFile.h"

#include <span>
#include <string_view>

using namespace voxmate;
using voxmate::fuzz::CountWhatIsLogged;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span<const std::uint8_t> bytes(data, size);
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const bool riff = size >= 12 && text.starts_with("RIF") && text.substr(8, 4) == "WAVE";
    std::optional<speech::WaveData> wave;
    {
        const InTime inTime("a wave file is decoded");
        wave = speech::DecodeWave(bytes);
    }
    if (wave) {
        Require(riff, "what is not a wave file is refused");
        Require(wave->samplesPerSecond >= 1000 && wave->samplesPerSecond <= 384000, "a rate is one of 1 to 384 kHz");
        Require(!wave->samples.empty(), "a sound holds samples");
        Require(wave->samples.size() <= size * speech::MostSamplesPerByte, "no samples come from behind the file");
        Require(wave->samples.size() <= static_cast<std::size_t>(wave->samplesPerSecond) * 600,
                "a sound is no longer than ten minutes");
        const std::optional<speech::WaveFormat> format = speech::DescribeWave(bytes);
        Require(format && format->samplesPerSecond == wave->samplesPerSecond && format->channels > 0,
                "a sound that can be decoded can be described");
        Require(speech::DecodeWave(bytes)->samples == wave->samples, "a file is the same sound every time");
    }
    if (riff)
        CountWhatIsLogged(bytes);
    return 0;
}
