// The program that decodes one recording, its input, and writes the samples to its output. It is started by Voxmate and
// keeps itself from everything else, because recordings come from anywhere.
#include "platform/Sandbox.h"
#include "speech/sound/Recording.h"
#include "speech/sound/SoundFileLibrary.h"
#include "speech/sound/WaveFile.h"

#include <exception>
#include <limits>
#include <memory>
#include <span>

namespace
{

using namespace voxmate;

// Two days of sound take some ten minutes.
constexpr std::chrono::seconds LongestTime{1800};
constexpr std::uint64_t MostMemory = std::uint64_t{256} << 20;

template <typename T>
bool Write(std::span<const T> values)
{
    return WriteOutput(reinterpret_cast<const char*>(values.data()), values.size_bytes());
}

void Decode(std::span<const std::uint8_t> bytes)
{
    speech::RecordingHead head;
    const std::unique_ptr<speech::WaveReader> reader = speech::WaveReader::Of(bytes);
    if (reader)
        head = {reader->SamplesPerSecond(), reader->Length()};
    bool wanted = Write(std::span<const speech::RecordingHead>(&head, 1)) && reader;
    while (wanted) {
        const std::span<const std::int16_t> samples = reader->Next();
        wanted = !samples.empty() && Write(samples);
    }
}

} // namespace

int main()
{
    const InputBytes input = MapInput(std::numeric_limits<std::uint64_t>::max());
    // Libraries cannot be loaded later.
    if (!input.data || !speech::SoundFiles() || !EnterSandbox({LongestTime, MostMemory + input.size, {}}))
        LeaveSandbox(1);
    try {
        Decode({reinterpret_cast<const std::uint8_t*>(input.data), static_cast<std::size_t>(input.size)});
    } catch (const std::exception&) {
        LeaveSandbox(1);
    }
    LeaveSandbox(0);
}
