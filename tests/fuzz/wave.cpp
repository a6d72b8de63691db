// Fuzzes recorded sounds. Any bytes either are a wave file or are not, and what is decoded is no more than they can
// hold. libsndfile is not instrumented; what it logs of each file stands in for its coverage.
#include "fuzz.h"

#include "speech/sound/WaveFile.h"

#include <algorithm>
#include <array>
#include <functional>
#include <span>
#include <string_view>

#include <sndfile.h>

using namespace voxmate;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

namespace
{

// The fuzzer takes each of these counters that is set for the first time for a branch not seen before.
__attribute__((section("__libfuzzer_extra_counters"), used)) std::array<std::uint8_t, 1u << 8> counters;

void Count(std::size_t event)
{
    counters[event % counters.size()] = 1;
}

// Counts each line of the log by its beginning, without its numbers: which chunks and complaints there were, not what
// they hold.
void CountLog(std::string_view log)
{
    constexpr std::size_t longest = 12;
    const std::hash<std::string> hash;
    std::string line;
    for (const char c : log) {
        if (c == '\n') {
            Count(hash(line));
            line.clear();
        } else if (line.size() < longest && (c < '0' || c > '9')) {
            line += c;
        }
    }
}

struct Input {
    std::span<const std::uint8_t> bytes;
    sf_count_t at = 0;
};

void CountWhatIsLogged(std::span<const std::uint8_t> bytes)
{
    SF_VIRTUAL_IO access{[](void* self) { return static_cast<sf_count_t>(static_cast<Input*>(self)->bytes.size()); },
                         [](sf_count_t offset, int whence, void* self) {
                             Input& input = *static_cast<Input*>(self);
                             const auto size = static_cast<sf_count_t>(input.bytes.size());
                             const sf_count_t base = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? input.at : size;
                             return input.at = std::clamp<sf_count_t>(base + offset, 0, size);
                         },
                         [](void* target, sf_count_t count, void* self) {
                             Input& input = *static_cast<Input*>(self);
                             count = std::clamp<sf_count_t>(static_cast<sf_count_t>(input.bytes.size()) - input.at, 0,
                                                            count);
                             std::copy_n(input.bytes.begin() + input.at, count, static_cast<std::uint8_t*>(target));
                             input.at += count;
                             return count;
                         },
                         [](const void*, sf_count_t, void*) { return sf_count_t{0}; },
                         [](void* self) { return static_cast<Input*>(self)->at; }};
    Input input{bytes};
    SF_INFO info{};
    SNDFILE* file = sf_open_virtual(&access, SFM_READ, &info, &input);
    std::array<char, 16384> log{};
    sf_command(file, SFC_GET_LOG_INFO, log.data(), static_cast<int>(log.size()));
    CountLog(log.data());
    Count(static_cast<std::size_t>(info.format) * 64 + static_cast<std::size_t>(std::clamp(info.channels, 0, 3)));
    sf_close(file);
}

} // namespace

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
