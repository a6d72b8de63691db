#include "extras/Narrator.h"

#include "base/Text.h"
#include "modules/Command.h"

#include <algorithm>
#include <utility>

namespace voxmate
{

namespace
{

/// Requests asked for at a time: one that is being spoken, and one that follows it without a gap.
constexpr std::size_t RequestsAhead = 2;
/// Of what has been heard, as much is kept as some thousand pages take.
constexpr std::size_t MostBehind = std::size_t{16} << 20;

} // namespace

Narrator::Narrator(Program& program)
    : program_(program), started_(program.Host.Agent.RequestStart), completed_(program.Host.Agent.RequestComplete)
{
    program_.Host.Agent.RequestStart = [this](const AgentRequestPtr& request) {
        Raise(started_, request);
        Started(request);
    };
    program_.Host.Agent.RequestComplete = [this](const AgentRequestPtr& request) {
        Raise(completed_, request);
        Completed(request);
    };
    program_.Host.Agent.Word = [this](const AgentRequestPtr& request, int word) { BeginWord(request, word); };
}

Narrator::~Narrator()
{
    program_.Host.Agent.RequestStart = started_;
    program_.Host.Agent.RequestComplete = completed_;
    program_.Host.Agent.Word = nullptr;
}

void Narrator::Begin(std::size_t from)
{
    Forget();
    from_ = from;
    closed_ = false;
    speaking_ = true;
}

void Narrator::Forget()
{
    Halt();
    parts_ = {};
    first_ = at_ = next_ = from_ = 0;
    word_ = -1;
    characters_ = 0;
    ahead_ = behind_ = 0;
}

void Narrator::Append(SpokenPart part)
{
    const std::size_t bytes = sizeof(Kept) + part.text.capacity() + part.wave.capacity();
    const std::size_t characters = Len(part.text);
    parts_.push_back({std::move(part), characters_, bytes});
    characters_ += characters;
    ahead_ += bytes;
    if (Seeking()) {
        MoveTo(Count() - 1);
        next_ = at_;
        if (at_ < from_)
            return;
        from_ = 0;
    }
    Feed();
}

void Narrator::Close()
{
    if (std::exchange(from_, 0) > 0) {
        MoveTo(first_);
        next_ = at_;
    }
    closed_ = true;
    Feed();
}

void Narrator::Halt()
{
    speaking_ = paused_ = false;
    Drop();
}

void Narrator::Pause()
{
    if (!speaking_ || paused_)
        return;
    paused_ = true;
    word_ = -1;
    Drop();
    next_ = at_;
    if (program_.Character)
        program_.Character->Play("RestPose");
    Raise(Moved);
}

void Narrator::GoOn()
{
    paused_ = false;
    Feed();
}

void Narrator::MoveBy(int parts)
{
    const auto back = static_cast<std::size_t>(-parts);
    if (parts < 0)
        GoTo(at_ - std::min(at_ - first_, back));
    else
        GoTo(at_ + static_cast<std::size_t>(parts));
}

void Narrator::MoveByParagraph(bool forward, Pausing pausing)
{
    std::size_t part = std::min(at_, Count());
    if (forward) {
        while (++part < Count() && !Part(part).part.begins)
            ;
    } else {
        while (part > first_ && !Part(--part).part.begins)
            ;
    }
    GoTo(part, pausing);
}

// Of what has not come yet nothing can be spoken, so a way beyond the last part leads nowhere.
void Narrator::GoTo(std::size_t part, Pausing pausing)
{
    if (!speaking_ || Seeking() || part >= Count())
        return;
    Drop();
    MoveTo(part);
    next_ = part;
    if (paused_ && pausing == Pausing::Stays)
        Raise(Moved);
    else
        GoOn();
}

// Takes back what has been asked for.
void Narrator::Drop()
{
    // What it interrupts must not be taken for an end.
    for (const std::deque<Asked> dropped = std::exchange(asked_, {}); const Asked& each : dropped)
        if (program_.Character)
            program_.Character->Stop(each.request);
}

std::uint64_t Narrator::Left() const
{
    return at_ < Count() ? characters_ - Part(at_).before : 0;
}

std::size_t Narrator::PartAtCharacter(std::uint64_t character) const
{
    const auto behind = std::ranges::upper_bound(parts_, character, {}, &Kept::before);
    return first_ + static_cast<std::size_t>(std::max<std::ptrdiff_t>(behind - parts_.begin() - 1, 0));
}

void Narrator::MoveTo(std::size_t part)
{
    word_ = -1;
    for (; at_ < part; ++at_) {
        behind_ += Part(at_).bytes;
        ahead_ -= Part(at_).bytes;
    }
    for (; at_ > part; --at_) {
        behind_ -= Part(at_ - 1).bytes;
        ahead_ += Part(at_ - 1).bytes;
    }
    for (; behind_ > MostBehind && first_ < at_; ++first_) {
        behind_ -= parts_.front().bytes;
        parts_.pop_front();
    }
}

void Narrator::Feed()
{
    // A box about the sound lets events run.
    const Command command(feeding_);
    if (!command.Begun())
        return;
    while (speaking_ && !paused_ && !Seeking() && asked_.size() < RequestsAhead && next_ < Count()) {
        if (!program_.Character || (asked_.empty() && !program_.Voice.HasSound())) {
            Finish(End::Stopped);
            return;
        }
        if (speaking_ && !paused_)
            Ask(next_++);
    }
    if (speaking_ && !paused_ && closed_ && asked_.empty() && next_ == Count())
        Finish(End::Done);
}

void Narrator::Ask(std::size_t number)
{
    const SpokenPart& part = Part(number).part;
    const SettingsRecord& settings = program_.Settings;
    AgentCharacter& character = *program_.Character;
    if (asked_.empty()) {
        speaker_ = program_.Settings.LastCharacter;
        character.Show(false);
    }
    asked_.push_back({character.Speak(part.wave.empty() ? MarkupOf(part, VoicePrefix(settings.Pitch, settings.Speed,
                                                                                     settings.Whisper == True))
                                                        : part.text,
                                      part.wave),
                      number});
    program_.Voice.LastSpeakRequest = asked_.back().request;
}

void Narrator::Started(const AgentRequestPtr& request)
{
    if (const auto asked = std::ranges::find(asked_, request, &Asked::request); asked != asked_.end()) {
        MoveTo(asked->part);
        Raise(Moved);
    }
}

void Narrator::Completed(const AgentRequestPtr& request)
{
    const auto asked = std::ranges::find(asked_, request, &Asked::request);
    if (asked == asked_.end()) {
        if (paused_ || Seeking())
            Raise(Moved);
        return;
    }
    const std::size_t part = asked->part;
    asked_.erase(asked);
    if (request->Status() == RequestStatus::Complete) {
        MoveTo(part + 1);
        Feed();
        // The program has just said that it is idle.
        if (speaking_)
            Raise(Moved);
    } else if (program_.Settings.LastCharacter != speaker_) {
        // Another character has taken this one's place; it goes on reading.
        asked_.clear();
        next_ = part;
        Feed();
    } else if (request->Status() == RequestStatus::Interrupted) {
        Finish(End::Stopped);
    } else {
        Finish(End::Failed);
    }
}

void Narrator::BeginWord(const AgentRequestPtr& request, int word)
{
    if (asked_.empty() || asked_.front().request != request || asked_.front().part != at_)
        return;
    word_ = word;
    Raise(WordBegun);
}

void Narrator::Finish(End end)
{
    Halt();
    if (end != End::Stopped && program_.Character)
        program_.Character->Play("RestPose");
    Raise(Ended, end);
}

} // namespace voxmate
