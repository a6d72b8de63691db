#include "extras/ReadingText.h"

#include "base/Words.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace voxmate
{

void ReadingText::Clear(std::size_t first)
{
    first_ = first;
    places_ = {};
    view_.Clear();
}

void ReadingText::Add(const SpokenPart& part)
{
    const auto place = [this](std::size_t begin) {
        places_.push_back({static_cast<std::uint32_t>(view_.Paragraphs().size() - 1), static_cast<std::uint32_t>(begin),
                           static_cast<std::uint32_t>(view_.Paragraphs().back().Text.size())});
    };
    const std::string text = part.wave.empty() ? part.text : "";
    if (part.begins || view_.Paragraphs().empty() || view_.Paragraphs().back().Text.size() > LongestParagraph) {
        view_.Append({part.mark + text, part.heading});
        place(part.mark.size());
        return;
    }
    view_.Extend(part.newLine ? "\n" : " ");
    const std::size_t begin = view_.Paragraphs().back().Text.size();
    view_.Extend(text);
    place(begin);
}

TextSpan ReadingText::SpanOf(std::size_t part) const
{
    if (part < first_ || part >= Next())
        return {};
    const Place& place = places_[part - first_];
    return {place.paragraph, place.begin, place.end};
}

TextSpan ReadingText::WordOf(std::size_t part, int word) const
{
    const TextSpan span = SpanOf(part);
    if (span.Empty() || word < 0)
        return {};
    const std::string_view text =
        std::string_view(view_.Paragraphs()[span.Paragraph].Text).substr(span.Begin, span.End - span.Begin);
    std::size_t at = 0;
    for (;; --word) {
        while (const std::size_t blank = BlankAt(text, at))
            at += blank;
        if (at >= text.size())
            return {};
        const std::size_t begin = at;
        while (at < text.size() && BlankAt(text, at) == 0)
            at += CharacterAt(text, at);
        if (word == 0)
            return {span.Paragraph, span.Begin + begin, span.Begin + at};
    }
}

std::optional<std::size_t> ReadingText::PartAt(const TextPlace& place) const
{
    if (places_.empty())
        return std::nullopt;
    const auto behind =
        std::upper_bound(places_.begin(), places_.end(), place, [](const TextPlace& at, const Place& each) {
            return std::pair<std::size_t, std::size_t>(at.Paragraph, at.At) <
                   std::pair<std::size_t, std::size_t>(each.paragraph, each.begin);
        });
    // In front of a paragraph's first part there is only its bullet.
    if (behind == places_.begin() || (behind != places_.end() && std::prev(behind)->paragraph < place.Paragraph))
        return first_ + static_cast<std::size_t>(behind - places_.begin());
    return first_ + static_cast<std::size_t>(behind - places_.begin()) - 1;
}

} // namespace voxmate
