// What is said for words that are not read as they are written: the user's own list, and short forms of addresses and
// codes. What is shown stays as it is.
#pragma once

#include "platform/WordingControl.h"
#include "speech/VoiceOutput.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace voxmate::speech
{

class Wording
{
public:
    /// See WordingControl::UseWording.
    Wording(const std::vector<WordingRule>& rules, bool shortens);

    /// The segments as they are to be said. The words that are shown keep their numbers. Segments that are already said
    /// otherwise than they are shown, pauses and bookmarks stay as they are.
    std::vector<Segment> Apply(std::vector<Segment> segments) const;

    /// What is said instead of the characters up to `end`.
    struct Replacement {
        std::size_t end = 0;
        std::u32string said;
    };

private:
    struct Compiled {
        std::u32string written;
        std::u32string part; ///< the longest part of it without asterisks and blanks
        std::u32string said;
        bool anyCase = false;
    };
    /// A line of text with its letters as they are, and as capitals.
    struct Line {
        std::u32string_view text;
        std::u32string_view capitals;
        std::vector<const Compiled*> anyBeginning; ///< the rules that begin with an asterisk and may fit in it
    };

    bool shortens_;
    std::unordered_map<char32_t, std::vector<Compiled>> byFirst_; ///< by the first character's capital; longest first

    Line LineOf(std::u32string_view text, std::u32string_view capitals) const;
    std::optional<Replacement> FindAt(const Line& line, std::size_t at) const;
    void Say(Segment& segment, std::vector<Segment>& out) const;
};

} // namespace voxmate::speech
