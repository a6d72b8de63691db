#include "speech/sound/Mouths.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace voxmate::speech
{

namespace
{

constexpr int Closed = 0;
constexpr int WideAh = 1;
constexpr int WideEh = 2;
constexpr int WideOh = 3;
constexpr int WideEe = 4;
constexpr int Medium = 5;
constexpr int Narrow = 6;

int MouthOfIpaLetter(char32_t letter)
{
    switch (letter) {
    case U'm':
    case U'b':
    case U'p':
    case U'ɓ':
    case U'ʘ':
        return Closed;
    case U'a':
    case U'ɑ':
    case U'æ':
    case U'ɐ':
    case U'ɶ':
        return WideAh;
    case U'e':
    case U'ɛ':
    case U'ʌ':
    case U'ɜ':
    case U'ɝ':
    case U'œ':
    case U'ɞ':
        return WideEh;
    case U'o':
    case U'ɔ':
    case U'ɒ':
    case U'ɵ':
    case U'ø':
    case U'ɤ':
        return WideOh;
    case U'i':
    case U'ɪ':
    case U'ɨ':
        return WideEe;
    case U'u':
    case U'ʊ':
    case U'ʉ':
    case U'y':
    case U'ʏ':
    case U'ɯ':
    case U'w':
    case U'ʍ':
    case U'ɥ':
    case U'f':
    case U'v':
    case U'ɸ':
    case U'β':
    case U'ʋ':
    case U's':
    case U'z':
    case U'ʃ':
    case U'ʒ':
    case U'ɕ':
    case U'ʑ':
    case U'ʂ':
    case U'ʐ':
        return Narrow;
    default:
        return Medium;
    }
}

} // namespace

int MouthOfIpa(std::string_view name)
{
    // Stress and length marks say nothing about the lips, nor does the stop at the beginning of tʃ and dʒ.
    std::u32string letters = DecodeUtf8(name);
    std::erase_if(letters, [](char32_t c) { return c == U'ˈ' || c == U'ˌ' || c == U'_' || c == U'ʔ'; });
    if (letters.empty())
        return Closed;
    if (letters == U"əʊ")
        return WideOh;
    if (letters.size() > 1 && (letters[0] == U't' || letters[0] == U'd'))
        return MouthOfIpaLetter(letters[1]) == Narrow ? Narrow : Medium;
    return MouthOfIpaLetter(letters[0]);
}

int MouthOfFlitePhone(std::string_view name)
{
    static constexpr std::array<std::pair<std::string_view, int>, 40> mouths{{
        {"aa", WideAh},  {"ae", WideAh}, {"ah", WideEh}, {"ao", WideOh}, {"aw", WideAh}, {"ax", Medium},
        {"axr", Medium}, {"ay", WideAh}, {"b", Closed},  {"ch", Narrow}, {"d", Medium},  {"dh", Medium},
        {"eh", WideEh},  {"er", WideEh}, {"ey", WideEh}, {"f", Narrow},  {"g", Medium},  {"hh", Medium},
        {"ih", WideEe},  {"iy", WideEe}, {"jh", Narrow}, {"k", Medium},  {"l", Medium},  {"m", Closed},
        {"n", Medium},   {"ng", Medium}, {"ow", WideOh}, {"oy", WideOh}, {"p", Closed},  {"pau", Closed},
        {"r", Medium},   {"s", Narrow},  {"sh", Narrow}, {"t", Medium},  {"th", Medium}, {"uh", Narrow},
        {"uw", Narrow},  {"v", Narrow},  {"w", Narrow},  {"zh", Narrow},
    }};
    if (name == "z")
        return Narrow;
    const auto found =
        std::find_if(mouths.begin(), mouths.end(), [name](const auto& entry) { return entry.first == name; });
    return found == mouths.end() ? Medium : found->second;
}

int MouthOfLoudness(double level, double loudest)
{
    const double share = loudest > 0 ? level / loudest : 0;
    if (share < 0.06)
        return Closed;
    if (share < 0.18)
        return Narrow;
    if (share < 0.36)
        return Medium;
    return share < 0.62 ? WideEh : WideAh;
}

} // namespace voxmate::speech
