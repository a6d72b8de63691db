// The text of a document as it is shown while it is read: where each spoken part stands in it.
#pragma once

#include "controls/DocumentView.h"
#include "extras/Spoken.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace voxmate
{

class ReadingText
{
public:
    explicit ReadingText(DocumentView& view) : view_(view) {}

    /// Takes all text away. The next part that is added has the number `first`.
    void Clear(std::size_t first);
    /// Puts a part behind the others. A recording has no text, and shows none.
    void Add(const SpokenPart& part);
    /// The number of the first part, and of the part to be added next.
    std::size_t First() const { return first_; }
    std::size_t Next() const { return first_ + places_.size(); }

    /// Where a part stands; nothing where it has not been added.
    TextSpan SpanOf(std::size_t part) const;
    /// Where a word of it stands, counted from 0; nothing where it has no such word.
    TextSpan WordOf(std::size_t part, int word) const;
    /// The part that stands at a place or, between two, before it; nothing as long as there are none.
    std::optional<std::size_t> PartAt(const TextPlace& place) const;

    /// The most bytes of a paragraph on show, some ten pages: a paragraph is laid out as a whole before any of it can
    /// be seen. A longer one is broken behind a part.
    static constexpr std::size_t LongestParagraph = std::size_t{32} << 10;

private:
    struct Place {
        std::uint32_t paragraph;
        std::uint32_t begin;
        std::uint32_t end;
    };

    DocumentView& view_;
    std::size_t first_ = 0;
    std::vector<Place> places_;
};

} // namespace voxmate
