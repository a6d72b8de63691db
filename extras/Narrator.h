// Reads a text aloud that comes piece by piece, and knows how far it is.
#pragma once

#include "extras/Spoken.h"
#include "modules/Program.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <utility>

namespace voxmate
{

/// Each part is a request of its own to the character. Only a few are asked for in advance, so that a long text delays
/// nothing that is asked for meanwhile, and voice settings hold from the next part but one on.
class Narrator
{
public:
    explicit Narrator(Program& program);
    ~Narrator();
    Narrator(const Narrator&) = delete;
    Narrator& operator=(const Narrator&) = delete;

    enum class End {
        Done,    ///< all was heard
        Stopped, ///< by Stop, because the character was sent away, or because there is no sound, which a box has said
        Failed   ///< a part could not be heard
    };

    /// Whether a way to another part ends a pause.
    enum class Pausing { Ends, Stays };

    /// Forgets the text before and begins another: with the part of that number, or, if it turns out to have no such
    /// part, with its first.
    void Begin(std::size_t from);
    /// Adds a part behind the others.
    void Append(SpokenPart part);
    /// There are no more parts.
    void Close();
    /// Ends without an event.
    void Halt();
    /// Ends so, and frees the text.
    void Forget();

    /// Falls silent, and speaks on from the beginning of the part that it was in.
    void Pause();
    void GoOn();
    bool Paused() const { return paused_; }
    /// Speaks on from a part that is so many parts or one paragraph away; from a paragraph's middle its own beginning
    /// counts as one back. A way beyond the first part leads to that, one beyond the last nowhere.
    void MoveBy(int parts);
    void MoveByParagraph(bool forward, Pausing pausing = Pausing::Ends);
    /// Whether the first part of all is still kept.
    bool HasBeginning() const { return first_ == 0; }
    void MoveToBeginning() { GoTo(first_); }
    /// Speaks on from a part; does nothing where it is not kept.
    void MoveToPart(std::size_t part, Pausing pausing = Pausing::Ends)
    {
        if (part >= first_)
            GoTo(part, pausing);
    }

    /// Whether no part has come yet.
    bool Empty() const { return Count() == 0; }
    /// Whether the part to begin with has not come yet. Until then there is no way to another part.
    bool Seeking() const { return from_ > 0; }
    /// Whether At is there and begins a paragraph.
    bool AtParagraph() const { return at_ < Count() && Part(at_).part.begins; }
    /// The part that is being spoken, or is to be spoken next. Parts are counted from 0.
    std::size_t At() const { return at_; }
    /// The word of it that is being heard, counted from 0 (base/Words.h); -1: none yet.
    int Word() const { return word_; }
    /// The parts that are kept: from First to the last before Count.
    std::size_t First() const { return first_; }
    std::size_t Count() const { return first_ + parts_.size(); }
    const SpokenPart& PartOf(std::size_t number) const { return Part(number).part; }
    /// The part with the character of that number, counted from 0 over all parts; the nearest one that is kept.
    std::size_t PartAtCharacter(std::uint64_t character) const;
    /// The characters of all parts so far, those no longer kept included.
    std::uint64_t Characters() const { return characters_; }
    /// The characters of the parts from At on, as far as they are known.
    std::uint64_t Left() const;
    /// The bytes of memory that the parts from At on take, about.
    std::size_t Ahead() const { return ahead_; }
    /// The same of all parts that are kept.
    std::size_t Size() const { return behind_ + ahead_; }

    /// Another part is being spoken, or the status line has been changed by the end of something else that was spoken.
    Event Moved;
    /// Another word is being heard.
    Event WordBegun;
    std::function<void(End)> Ended;

private:
    struct Asked {
        AgentRequestPtr request;
        std::size_t part;
    };
    struct Kept {
        SpokenPart part;
        std::uint64_t before; ///< characters of all parts before it
        std::size_t bytes;    ///< of memory
    };

    Program& program_;
    std::function<void(const AgentRequestPtr&)> started_; ///< the program's own handlers
    std::function<void(const AgentRequestPtr&)> completed_;
    std::deque<Kept> parts_;
    std::size_t first_ = 0; ///< the number of the first part that is kept
    std::uint64_t characters_ = 0;
    std::size_t ahead_ = 0;
    std::size_t behind_ = 0; ///< the bytes of memory that the parts before At take
    std::size_t at_ = 0;
    int word_ = -1;
    std::size_t from_ = 0;  ///< the part to begin with, until that has come
    std::size_t next_ = 0;  ///< the part to be asked for next
    bool speaking_ = false; ///< speaks, or waits for parts to speak
    bool paused_ = false;
    bool closed_ = false;
    bool feeding_ = false;
    std::string speaker_; ///< the character that speaks
    std::deque<Asked> asked_;

    const Kept& Part(std::size_t number) const { return parts_[number - first_]; }
    void MoveTo(std::size_t part);
    void GoTo(std::size_t part, Pausing pausing = Pausing::Ends);
    void Drop();
    void Feed();
    void Ask(std::size_t number);
    void Started(const AgentRequestPtr& request);
    void Completed(const AgentRequestPtr& request);
    void BeginWord(const AgentRequestPtr& request, int word);
    void Finish(End end);
};

} // namespace voxmate
