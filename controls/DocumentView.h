// Shows a long text in which the user can follow what is being spoken, and choose where to go on.
#pragma once

#include "controls/Control.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <string>
#include <utility>

namespace voxmate
{

/// A place in a text: the paragraph, counted from 0, and the byte in it.
struct TextPlace {
    std::size_t Paragraph = 0;
    std::size_t At = 0;
    bool operator==(const TextPlace&) const = default;
};

/// A stretch of one paragraph, in bytes; none where it ends where it begins.
struct TextSpan {
    std::size_t Paragraph = 0;
    std::size_t Begin = 0;
    std::size_t End = 0;
    bool operator==(const TextSpan&) const = default;
    bool Empty() const { return End <= Begin; }
};

/// The view scrolls so that what is spoken stays in sight. Where the user has scrolled it stays for a short while.
class DocumentView : public Control
{
public:
    using Control::Control;

    struct Paragraph {
        std::string Text; ///< UTF-8; "\n" is a forced line end
        int Heading = 0;  ///< from 1, the highest, to 9; 0: no heading
    };

    const std::deque<Paragraph>& Paragraphs() const { return paragraphs_; }
    /// Puts a paragraph behind the others. The window shows it at the next Flush, so that many come at once.
    void Append(Paragraph paragraph) { paragraphs_.push_back(std::move(paragraph)); }
    /// Puts text behind that of the last paragraph, which must be there.
    void Extend(const std::string& text) { paragraphs_.back().Text += text; }
    void Flush() { Changed(Property::Items); }
    /// Takes all text away, and the marks.
    void Clear()
    {
        paragraphs_.clear();
        spoken_ = word_ = selected_ = {};
        Changed(Property::Items);
    }

    /// Marks the sentence that is being spoken, and the word of it; either may be none.
    void Mark(const TextSpan& spoken, const TextSpan& word)
    {
        if (spoken == spoken_ && word == word_)
            return;
        spoken_ = spoken;
        word_ = word;
        Changed(Property::Value);
    }
    const TextSpan& Spoken() const { return spoken_; }
    const TextSpan& Word() const { return word_; }
    /// Selects a stretch, and puts the text cursor at its beginning.
    void Select(const TextSpan& span)
    {
        selected_ = span;
        Changed(Property::Selection);
    }
    const TextSpan& Selected() const { return selected_; }

    /// The user wants to hear the text from a place on: by a click, or by Enter at the text cursor.
    std::function<void(TextPlace)> Chosen;
    /// The user moves by the Up (-1) or Down key (1); the place is that of the text cursor.
    std::function<void(TextPlace, int by)> Stepped;
    /// The user pressed the space bar.
    Event Paused;

    void UserChoose(TextPlace place) { Raise(Chosen, place); }
    void UserStep(TextPlace place, int by) { Raise(Stepped, place, by); }

private:
    std::deque<Paragraph> paragraphs_;
    TextSpan spoken_;
    TextSpan word_;
    TextSpan selected_;
};

} // namespace voxmate
