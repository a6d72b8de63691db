#include "readers/text/ListMarks.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace voxmate::readers
{

namespace
{

// "-", "*", and the bullets that word processors print.
constexpr std::array<std::string_view, 14> Bullets{"-",
                                                   "*",
                                                   "\xE2\x80\xA2" /* • */,
                                                   "\xE2\x97\xA6" /* ◦ */,
                                                   "\xE2\x96\xAA" /* ▪ */,
                                                   "\xE2\x97\x8F" /* ● */,
                                                   "\xE2\x97\x8B" /* ○ */,
                                                   "\xE2\x96\xA0" /* ■ */,
                                                   "\xE2\x80\x93" /* – */,
                                                   "\xC2\xB7" /* · */,
                                                   "\xE2\x9E\xA2" /* ➢ */,
                                                   "\xE2\x88\x92" /* − */,
                                                   "\xE2\x80\xA3" /* ‣ */,
                                                   "\xE2\x81\x83" /* ⁃ */};

} // namespace

std::size_t ListMark(std::string_view line)
{
    std::size_t mark = 0;
    for (const std::string_view bullet : Bullets)
        if (line.starts_with(bullet))
            mark = bullet.size();
    if (mark == 0) {
        std::size_t digits = 0;
        while (digits < line.size() && digits < 3 && IsDigit(line[digits]))
            ++digits;
        if (digits == 0 && !line.empty() && IsLetter(line[0]) && line.size() > 1 && line[1] == ')')
            digits = 1;
        if (digits > 0 && digits < line.size() && (line[digits] == '.' || line[digits] == ')'))
            mark = digits + 1;
    }
    const bool blank = mark > 0 && mark < line.size() && (line[mark] == ' ' || line[mark] == '\t');
    return blank && !Trimmed(line.substr(mark), " \t").empty() ? mark : 0;
}

bool IsBullet(std::string_view mark)
{
    return std::find(Bullets.begin(), Bullets.end(), mark) != Bullets.end();
}

} // namespace voxmate::readers
