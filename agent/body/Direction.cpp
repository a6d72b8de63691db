#include "agent/body/Direction.h"

#include "base/Text.h"
#include "base/Words.h"

#include <algorithm>
#include <array>

namespace voxmate::agent
{

namespace
{

struct Range {
    char32_t first;
    char32_t last;
};

// The blocks of Unicode whose letters run from right to left: Hebrew, Arabic, Syriac, Thaana, N'Ko and the like.
constexpr std::array<Range, 8> kRightToLeft{{{0x0590, 0x065F},
                                             {0x066D, 0x06EF},
                                             {0x06FA, 0x08FF},
                                             {0x200F, 0x200F},
                                             {0xFB1D, 0xFDFF},
                                             {0xFE70, 0xFEFC},
                                             {0x10800, 0x10FFF},
                                             {0x1E800, 0x1EFFF}}};

// The blocks of letters that run from left to right. Digits, punctuation and symbols are in neither list.
constexpr std::array<Range, 17> kLeftToRight{{{'A', 'Z'},
                                              {'a', 'z'},
                                              {0x00C0, 0x00D6},
                                              {0x00D8, 0x00F6},
                                              {0x00F8, 0x02B8},
                                              {0x0370, 0x058F},
                                              {0x0900, 0x1FFF},
                                              {0x200E, 0x200E},
                                              {0x2C00, 0x2DFF},
                                              {0x3041, 0xA48C},
                                              {0xA4D0, 0xD7FF},
                                              {0xF900, 0xFB1C},
                                              {0xFF21, 0xFF3A},
                                              {0xFF41, 0xFFDC},
                                              {0x10000, 0x107FF},
                                              {0x11000, 0x1E7FF},
                                              {0x20000, 0x3FFFF}}};

template <std::size_t Count>
bool Holds(const std::array<Range, Count>& ranges, char32_t letter)
{
    return std::any_of(ranges.begin(), ranges.end(),
                       [letter](const Range& range) { return letter >= range.first && letter <= range.last; });
}

} // namespace

bool RunsRightToLeft(std::string_view paragraph)
{
    for (std::size_t at = 0; at < paragraph.size();) {
        const std::size_t length = CharacterAt(paragraph, at);
        const char32_t letter = DecodeUtf8(paragraph.substr(at, length)).front();
        if (Holds(kRightToLeft, letter))
            return true;
        if (Holds(kLeftToRight, letter))
            return false;
        at += length;
    }
    return false;
}

} // namespace voxmate::agent
