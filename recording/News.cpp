#include "recording/News.h"

#include <array>
#include <charconv>

namespace voxmate::recording
{

std::string EncodeNews(const News& news)
{
    std::string line = std::to_string(static_cast<int>(news.kind));
    for (const std::uint64_t number : {news.spoken, news.all, news.milliseconds, static_cast<std::uint64_t>(news.files),
                                       static_cast<std::uint64_t>(news.refusal), std::uint64_t{news.otherVoice}})
        line += " " + std::to_string(number);
    return line + "\n";
}

std::optional<News> DecodeNews(std::string_view line)
{
    std::array<std::uint64_t, 7> numbers{};
    const char* at = line.data();
    const char* const end = line.data() + line.size();
    for (std::uint64_t& number : numbers) {
        if (&number != numbers.data() && (at == end || *at++ != ' '))
            return std::nullopt;
        const auto [behind, error] = std::from_chars(at, end, number);
        if (error != std::errc())
            return std::nullopt;
        at = behind;
    }
    if (at != end || numbers[0] > static_cast<std::uint64_t>(News::Kind::NotWritten) || numbers[4] > INT32_MAX ||
        numbers[5] > static_cast<std::uint64_t>(readers::LastRefusal) || numbers[6] > 1)
        return std::nullopt;
    return News{
        static_cast<News::Kind>(numbers[0]),       numbers[1],     numbers[2], numbers[3], static_cast<int>(numbers[4]),
        static_cast<readers::Refusal>(numbers[5]), numbers[6] == 1};
}

} // namespace voxmate::recording
