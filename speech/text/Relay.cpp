#include "speech/text/Relay.h"

#include "base/Text.h"
#include "speech/sound/Resampler.h"
#include "speech/text/MarkedText.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::speech
{

namespace
{

using Entry = VoiceCatalog::Entry;

constexpr std::size_t None = std::string::npos;
// A turn longer than this many bytes ends with its paragraph, where the next one can begin just as well, so that
// speaking starts before a whole book has been divided.
constexpr std::size_t LongTurn = 16384;

/// Decides who speaks a character: the chosen voice or a reader. Null: whoever is already speaking.
class Casting
{
public:
    Casting(const VoiceCatalog& catalog, const Entry& chosen) : catalog_(catalog), chosen_(chosen) {}

    const Entry* SpeakerOf(char32_t c) const
    {
        const Script script = ScriptOf(c);
        if (script == Script::Common)
            return nullptr;
        if (CanSay(chosen_.voice.language, script))
            return &chosen_;
        const Entry* const reader = catalog_.ReaderOf(script);
        return reader ? reader : &chosen_;
    }

    bool NeedsReader(std::span<const Segment> segments) const
    {
        return std::any_of(segments.begin(), segments.end(), [this](const Segment& segment) {
            const auto isAscii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
            if (segment.kind != Segment::Kind::Text || std::all_of(segment.text.begin(), segment.text.end(), isAscii))
                return false;
            for (std::size_t at = 0; at < segment.text.size();)
                for (const char32_t c : NextCharacters(segment.text, at))
                    if (c >= 0x80 && SpeakerOf(c) && SpeakerOf(c) != &chosen_)
                        return true;
            return false;
        });
    }

    const Entry& Chosen() const { return chosen_; }
    const Entry* StandIn() const { return catalog_.ReaderOf(Script::Latin); }

private:
    const VoiceCatalog& catalog_;
    const Entry& chosen_;
};

/// Adds one speaker's output to the utterance, behind that of the earlier ones.
class TurnSink final : public SampleSink
{
public:
    TurnSink(SampleSink& sink, std::int64_t begin, WordFollower& words, int from, int to)
        : sink_(sink), begin_(begin), words_(words), resampler_(from, to)
    {
    }

    bool Samples(std::span<const std::int16_t> samples) override
    {
        made_.clear();
        resampler_.Push(samples, made_);
        return Deliver();
    }

    void Event(const SpeechEvent& event) override
    {
        if (event.kind == SpeechEvent::Kind::Word && !words_.Advances(event.value))
            return;
        last_ = std::max(last_, begin_ + resampler_.Place(event.sample));
        sink_.Event({event.kind, last_, event.value});
    }

    bool End()
    {
        made_.clear();
        resampler_.Flush(made_);
        return Deliver();
    }

    bool Wanted() const override { return wanted_ && sink_.Wanted(); }
    std::int64_t Delivered() const { return delivered_; }

private:
    bool Deliver()
    {
        delivered_ += static_cast<std::int64_t>(made_.size());
        if (wanted_ && !made_.empty())
            wanted_ = sink_.Samples(made_);
        return wanted_;
    }

    SampleSink& sink_;
    const std::int64_t begin_;
    WordFollower& words_;
    Resampler resampler_;
    std::vector<std::int16_t> made_;
    std::int64_t delivered_ = 0;
    std::int64_t last_ = 0;
    bool wanted_ = true;
};

/// Divides an utterance among its speakers, and has each turn spoken as soon as it is complete.
class Relay
{
public:
    Relay(const Casting& casting, SampleSink& sink) : casting_(casting), sink_(sink) {}

    bool Speak(std::span<const Segment> segments)
    {
        for (const Segment& segment : segments) {
            if (segment.kind == Segment::Kind::Text)
                Deal(segment);
            else
                turn_.push_back(segment);
            if (ended_)
                return ok_;
        }
        EndTurn();
        return ok_;
    }

private:
    // Divides a text where its speaker changes: behind the last word of the first speaker, or inside a word that has
    // letters of both.
    void Deal(const Segment& whole)
    {
        const int words = whole.shownWords > 0 ? CountWords(whole.text) : 0;
        piece_ = whole;
        piece_.text.clear();
        int word = -1; // the current word
        int begin = 0; // the piece's first word
        bool blank = true;
        std::size_t cut = 0; // end of the last word with a speaker; None while still inside it
        int next = 0;        // the first word behind the cut
        const auto finish = [&](int end) {
            AddPiece(whole, begin, end, words);
            begin = end;
        };
        for (std::size_t at = 0; at < whole.text.size() && !ended_;)
            for (const char32_t c : NextCharacters(whole.text, at)) {
                if (blank && !IsBlank(c))
                    ++word;
                blank = IsBlank(c);
                if (blank && cut == None) {
                    cut = piece_.text.size();
                    next = word + 1;
                }
                if (const Entry* const speaker = casting_.SpeakerOf(c)) {
                    if (speaker_ && speaker != speaker_) {
                        const std::string rest = cut == None ? "" : piece_.text.substr(cut);
                        piece_.text.resize(piece_.text.size() - rest.size());
                        finish(cut == None ? word : next);
                        EndTurn();
                        if (ended_)
                            return;
                        piece_.text = rest;
                    }
                    speaker_ = speaker;
                    cut = None;
                }
                AppendUtf8(piece_.text, c);
                if (c == U'\n' && piece_.text.size() > LongTurn) {
                    finish(word + 1);
                    EndTurn();
                    if (ended_)
                        return;
                    cut = 0;
                    next = word + 1;
                }
            }
        finish(word + 1);
    }

    /// Adds the piece to the speaker's turn. It holds the words of `whole` from `begin` up to but not including `end`.
    void AddPiece(const Segment& whole, int begin, int end, int words)
    {
        if (piece_.text.empty())
            return;
        if (whole.shownWords < 0) {
            piece_.firstWord = whole.firstWord + begin;
        } else if (words > 0) {
            const auto shown = [&](int word) {
                return static_cast<int>(std::int64_t{word} * whole.shownWords / words);
            };
            piece_.firstWord = whole.firstWord + shown(begin);
            piece_.shownWords = shown(end) - shown(begin);
        }
        turn_.push_back(piece_);
        piece_.text.clear();
        piece_.emphasis = false;
    }

    void EndTurn()
    {
        if (turn_.empty())
            return;
        const Entry& chosen = casting_.Chosen();
        const Entry& speaker = speaker_ ? *speaker_ : chosen;
        const std::int64_t before = delivered_;
        ok_ = Say(speaker) || &speaker != &chosen;
        // A voice the user added may be damaged or incomplete; the text is to be spoken all the same.
        const Entry* const standIn = casting_.StandIn();
        if (!ok_ && delivered_ == before && standIn && standIn->voice.modeId != chosen.voice.modeId)
            ok_ = Say(*standIn);
        turn_.clear();
        ended_ = ended_ || !ok_;
    }

    bool Say(const Entry& speaker)
    {
        const Entry& chosen = casting_.Chosen();
        TurnSink sink(sink_, delivered_, words_, speaker.engine->SampleRate(speaker.voice),
                      chosen.engine->SampleRate(chosen.voice));
        const bool spoken = speaker.engine->Synthesize(speaker.voice, turn_, sink);
        sink.End();
        delivered_ += sink.Delivered();
        ended_ = !sink.Wanted();
        return spoken;
    }

    const Casting& casting_;
    SampleSink& sink_;
    const Entry* speaker_ = nullptr; ///< null: before the first letter
    std::vector<Segment> turn_;      ///< the segments of the current turn
    Segment piece_;                  ///< the piece of text being gathered
    WordFollower words_;
    std::int64_t delivered_ = 0;
    bool ended_ = false;
    bool ok_ = true;
};

} // namespace

bool SpeakInTurns(const VoiceCatalog& catalog, const VoiceCatalog::Entry& chosen, std::span<const Segment> segments,
                  SampleSink& sink)
{
    const Casting casting(catalog, chosen);
    if (chosen.voice.origin != Voice::Origin::Added && !casting.NeedsReader(segments))
        return chosen.engine->Synthesize(chosen.voice, segments, sink);
    return Relay(casting, sink).Speak(segments);
}

} // namespace voxmate::speech
