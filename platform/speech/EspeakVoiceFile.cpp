#include "platform/speech/EspeakVoiceFile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <espeak-ng/espeak_ng.h>
#include <espeak-ng/speak_lib.h>
#include <sys/mman.h>
#include <unistd.h>

namespace voxmate::speech
{

namespace
{

// A definition's line "pitch LOW HIGH" gives a tone between LOW - 8 hertz and some way up to HIGH; the median of
// English sentences lies this share of HIGH - LOW above its bottom (measured by speech_calibration from 40 to 400 Hz).
constexpr double BottomOffset = 8;
constexpr double MedianShare = 0.75;
// The library's own line when a definition has none (its default voice).
constexpr int DefaultLow = 82;
constexpr int DefaultHigh = 118;

// The definition's text; empty when there is none.
std::string ReadDefinition(const std::string& key)
{
    const char* data = nullptr;
    espeak_Info(&data);
    if (!data)
        return {};
    for (const char* folder : {"lang", "voices"}) {
        std::ifstream file(std::filesystem::path(data) / folder / key, std::ios::binary);
        if (file)
            return {std::istreambuf_iterator<char>(file), {}};
    }
    return {};
}

// A melody as wide as the voice's own, in proportion to its pitch.
std::string PitchLine(const std::string& definition, int hertz, bool monotone)
{
    int low = DefaultLow;
    int high = DefaultHigh;
    for (std::size_t at = definition.find("pitch"); at != std::string::npos; at = definition.find("pitch", at + 1))
        if (at == 0 || definition[at - 1] == '\n')
            std::sscanf(definition.c_str() + at, "pitch %d %d", &low, &high);
    const double span = std::max(high - low, 0);
    const double median = low - BottomOffset + MedianShare * span;
    const double target = hertz > 0 ? hertz : median;
    const long newSpan = monotone ? 0 : std::lround(span * target / median);
    const long newLow = std::lround(target + BottomOffset - MedianShare * static_cast<double>(newSpan));
    return "pitch " + std::to_string(newLow) + " " + std::to_string(newLow + newSpan);
}

} // namespace

bool LoadEspeakVoice(const std::string& key, int hertz, bool monotone)
{
    if (hertz <= 0 && !monotone)
        return espeak_SetVoiceByName(key.c_str()) == EE_OK;
    const std::string definition = ReadDefinition(key);
    if (definition.empty())
        return espeak_SetVoiceByName(key.c_str()) == EE_OK;

    // The library reads definitions from files only; this one lives in memory and is gone when closed.
    const std::string text = definition + "\n" + PitchLine(definition, hertz, monotone) + "\n";
    const int file = memfd_create("voice", MFD_CLOEXEC);
    if (file < 0)
        return espeak_SetVoiceByName(key.c_str()) == EE_OK;
    bool loaded = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    loaded = loaded && espeak_ng_SetVoiceByFile(path.c_str()) == ENS_OK;
    close(file);
    return loaded || espeak_SetVoiceByName(key.c_str()) == EE_OK;
}

} // namespace voxmate::speech
