#include "recording/Names.h"

#include "base/Text.h"

namespace voxmate::recording
{

std::string FileTitle(std::string_view title)
{
    // File systems here take 255 bytes for a name, which has a number and an extension beside the title.
    constexpr std::size_t longest = 120;
    std::string name;
    for (const char c : title) {
        const bool blank = static_cast<unsigned char>(c) <= ' ' || c == '\x7F';
        if (blank && (name.empty() || name.back() == ' '))
            continue;
        // All but the first mean something on other systems, to which sounds are carried.
        const bool special = std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos;
        name += blank ? ' ' : special ? '-' : c;
    }
    name.resize(WholeUtf8(std::string_view(name).substr(0, longest)));
    return std::string(Trimmed(name, " ."));
}

std::string ChapterName(int number, std::string_view title, std::string_view kind)
{
    const std::string name = FileTitle(title);
    return Padded(number, 2) + (name.empty() ? "" : " " + name) + "." + std::string(kind);
}

} // namespace voxmate::recording
