#include "platform/speech/MarkedText.h"

#include "base/Text.h"

#include <cstdint>

namespace voxmate::speech
{

namespace
{

bool IsBlank(char32_t c)
{
    return c == U' ' || c == U'\n' || c == 0xA0;
}

// A line end stays, since it may end a heading without a full stop; other control characters would only confuse.
char32_t Clean(char32_t c)
{
    if (c == U'\n')
        return c;
    if (c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0xFFFD || c == 0xFEFF)
        return U' ';
    return c;
}

void Append(MarkedText& out, const Segment& segment)
{
    std::vector<char32_t> points = DecodeUtf8(segment.text);
    int words = 0;
    bool blank = true;
    for (char32_t& point : points) {
        point = Clean(point);
        if (blank && !IsBlank(point))
            ++words;
        blank = IsBlank(point);
    }

    int word = -1;
    blank = true;
    for (const char32_t point : points) {
        if (blank && !IsBlank(point))
            ++word;
        blank = IsBlank(point);
        int shown = -1;
        if (word >= 0 && segment.shownWords < 0)
            shown = segment.firstWord + word;
        else if (word >= 0 && segment.shownWords > 0)
            shown = segment.firstWord + static_cast<int>(std::int64_t{word} * segment.shownWords / words);
        if (shown < 0 && !out.shownWord.empty())
            shown = out.shownWord.back();
        out.text.push_back(point);
        out.shownWord.push_back(shown);
        out.emphasised.push_back(segment.emphasis && word == 0 && !blank);
    }
}

} // namespace

std::vector<MarkedText> Arrange(std::span<const Segment> segments)
{
    std::vector<MarkedText> arranged;
    for (const Segment& segment : segments) {
        const bool open = !arranged.empty() && arranged.back().pauseMilliseconds == 0;
        switch (segment.kind) {
        case Segment::Kind::Pause:
            if (segment.milliseconds > 0)
                arranged.emplace_back().pauseMilliseconds = segment.milliseconds;
            break;
        case Segment::Kind::Bookmark:
            if (!open)
                arranged.emplace_back();
            arranged.back().marks.push_back({arranged.back().text.size(), segment.bookmark});
            break;
        case Segment::Kind::Text:
            if (!open || (!arranged.back().text.empty() && arranged.back().prosody != segment.prosody))
                arranged.emplace_back();
            arranged.back().prosody = segment.prosody;
            Append(arranged.back(), segment);
            break;
        }
    }
    return arranged;
}

} // namespace voxmate::speech
