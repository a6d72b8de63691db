#include "sounds.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <string_view>

#include <sndfile.h>

// libsndfile forgets to free libvorbis' memory of a damaged file, some six kilobytes each.
extern "C" const char* __lsan_default_suppressions(); // NOLINT(bugprone-reserved-identifier): the sanitizer's name
extern "C" const char* __lsan_default_suppressions()  // NOLINT(bugprone-reserved-identifier)
{
    return "leak:vorbis_info_init\n";
}

namespace voxmate::fuzz
{

namespace
{

// The fuzzer takes each of these counters that is set for the first time for a branch not seen before.
__attribute__((section("__libfuzzer_extra_counters"), used)) std::array<std::uint8_t, 1u << 8> counters;

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

} // namespace

void Count(std::size_t event)
{
    counters[event % counters.size()] = 1;
}

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

} // namespace voxmate::fuzz
