#include "speech/engines/EspeakVoiceFile.h"

#include "platform/FindProgram.h"
#include "platform/MemoryFile.h"
#include "speech/engines/EspeakLibrary.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>

namespace voxmate::speech
{

namespace
{

// A definition's line "pitch LOW HIGH" gives pitches from LOW - 8 hertz to some point short of HIGH. The median pitch
// of English sentences lies this share of HIGH - LOW above that bottom (measured with speech_calibration from 40 to 400
// Hz).
constexpr double BottomOffset = 8;
constexpr double MedianShare = 0.75;
// The library's values for a definition without such a line (its default voice).
constexpr int DefaultLow = 82;
constexpr int DefaultHigh = 118;

// The contents of a file in the library's data folder; empty when there is none.
std::string ReadDataFile(const std::filesystem::path& path)
{
    std::ifstream file(EspeakDataFolder() / path, std::ios::binary);
    return file ? std::string(std::istreambuf_iterator<char>(file), {}) : std::string();
}

// The lines of a variant that describe its sound, without those that describe its identity.
std::string SoundOfVariant(const std::string& variant)
{
    std::string lines;
    std::istringstream text(ReadDataFile(std::filesystem::path("voices/!v") / variant));
    for (std::string line; std::getline(text, line);)
        if (!line.starts_with("language") && !line.starts_with("name") && !line.starts_with("gender"))
            lines += line + "\n";
    return lines;
}

// A voice definition with that of its variant appended; empty when there is none.
std::string ReadDefinition(const std::string& key)
{
    const std::size_t plus = key.find('+');
    const std::string base = key.substr(0, plus);
    std::string definition = ReadDataFile(std::filesystem::path("lang") / base);
    if (definition.empty())
        definition = ReadDataFile(std::filesystem::path("voices") / base);
    if (!definition.empty() && plus != std::string::npos)
        definition += "\n" + SoundOfVariant(key.substr(plus + 1));
    return definition;
}

// The pitch line for a median of `hertz`, with the voice's own range in proportion to it.
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

const EspeakLibrary& Espeak()
{
    static const EspeakLibrary library;
    return library;
}

std::filesystem::path EspeakDataFolder()
{
    const char* data = nullptr;
    if (Espeak())
        Espeak().Info(&data);
    return data ? data : "";
}

bool HasEspeakVariant(std::string_view variant)
{
    std::error_code error;
    return std::filesystem::is_regular_file(EspeakDataFolder() / "voices/!v" / variant, error);
}

bool HasMbrola()
{
    return !FindProgram("mbrola").empty();
}

std::string MbrolaDatabase(const std::string& key)
{
    std::istringstream definition(ReadDataFile(std::filesystem::path("voices") / key));
    std::string keyword;
    std::string database;
    std::string phonemes;
    for (std::string line; std::getline(definition, line);)
        if (std::istringstream words(line); words >> keyword && keyword == "mbrola")
            words >> database >> phonemes;
    const std::filesystem::path data = EspeakDataFolder();
    const std::filesystem::path shared = "/usr/share/mbrola";
    std::error_code error;
    const auto isThere = [&error](const std::filesystem::path& file) {
        return std::filesystem::is_regular_file(file, error);
    };
    if (database.empty() || !isThere(data / "mbrola_ph" / phonemes))
        return {};
    const bool installed = isThere(data / "mbrola" / database) || isThere(shared / database) ||
                           isThere(shared / database / database) || isThere(shared / "voices" / database);
    return installed ? database : "";
}

bool LoadEspeakVoice(const std::string& key, int hertz, bool monotone)
{
    if (hertz <= 0 && !monotone)
        return Espeak().SetVoiceByName(key.c_str()) == EE_OK;
    const std::string definition = ReadDefinition(key);
    if (definition.empty())
        return Espeak().SetVoiceByName(key.c_str()) == EE_OK;

    // The library can read definitions only from files.
    const MemoryFile file(definition + "\n" + PitchLine(definition, hertz, monotone) + "\n");
    const bool loaded = !file.Path().empty() && Espeak().SetVoiceByFile(file.Path().c_str()) == ENS_OK;
    return loaded || Espeak().SetVoiceByName(key.c_str()) == EE_OK;
}

} // namespace voxmate::speech
