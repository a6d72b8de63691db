#include "readers/markup/Numbering.h"

#include <algorithm>
#include <array>
#include <utility>

namespace voxmate::readers
{

namespace
{

std::string Roman(int number, bool capital)
{
    constexpr std::array<std::pair<int, std::string_view>, 13> steps{{{1000, "m"},
                                                                      {900, "cm"},
                                                                      {500, "d"},
                                                                      {400, "cd"},
                                                                      {100, "c"},
                                                                      {90, "xc"},
                                                                      {50, "l"},
                                                                      {40, "xl"},
                                                                      {10, "x"},
                                                                      {9, "ix"},
                                                                      {5, "v"},
                                                                      {4, "iv"},
                                                                      {1, "i"}}};
    std::string text;
    for (const auto& [value, letters] : steps)
        for (; number >= value; number -= value)
            text += letters;
    if (capital)
        std::transform(text.begin(), text.end(), text.begin(), [](char c) { return static_cast<char>(c - 'a' + 'A'); });
    return text;
}

std::string Letters(int number, char first)
{
    std::string text;
    for (; number > 0; number = (number - 1) / 26)
        text.insert(text.begin(), static_cast<char>(first + (number - 1) % 26));
    return text;
}

} // namespace

std::string InFormat(int number, std::string_view format)
{
    constexpr int mostRoman = 3999;
    if (number > 0 && (format == "i" || format == "I") && number <= mostRoman)
        return Roman(number, format == "I");
    if (number > 0 && (format == "a" || format == "A"))
        return Letters(number, format[0]);
    return std::to_string(number);
}

} // namespace voxmate::readers
