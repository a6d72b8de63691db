#include "speech/text/Relay.h"

#include "base/Text.h"
#include "speech/sound/Resampler.h"
#include "speech/text/LanguageGuess.h"
#include "speech/text/MarkedText.h"

#include <algorithm>
#include <set>
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

    /// Casts the speaker of a paragraph by its language; it stays the last one where that cannot be told. Whether it is
    /// another.
    bool Begin(std::string_view paragraph)
    {
        const std::string own = LanguageFamily(chosen_.voice.language);
        const std::string language = LanguageOf(paragraph, own);
        if (language.empty())
            return false;
        const Entry* const speaker = language == own ? nullptr : catalog_.SpeakerOf(language, chosen_);
        const Entry* const last = std::exchange(current_, speaker ? speaker : &chosen_);
        cast_.insert(current_);
        return current_ != last;
    }

    const Entry* SpeakerOf(char32_t c) const
    {
        const Script script = ScriptOf(c);
        if (script == Script::Common)
            return nullptr;
        for (const Entry* const entry : {current_, &chosen_})
            if (CanSay(entry->voice.language, script))
                return entry;
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

    /// Who takes the place of a voice that could not speak, in this order. A reader of another script has nobody.
    std::vector<const Entry*> StandIns(const Entry& failed) const
    {
        std::vector<const Entry*> others;
        if (&failed != &chosen_ && !cast_.contains(&failed))
            return others;
        for (const Entry* const entry : {&chosen_, catalog_.ReaderOf(Script::Latin)})
            if (entry && entry->voice.modeId != failed.voice.modeId)
                others.push_back(entry);
        return others;
    }

private:
    const VoiceCatalog& catalog_;
    const Entry& chosen_;
    const Entry* current_ = &chosen_; ///< the speaker of the paragraph
    std::set<const Entry*> cast_;     ///< all who were that
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
        if (event.kind == SpeechEvent::Kind::Word)
            told_.emplace_back(last_ - begin_, event.value);
    }

    bool End()
    {
        made_.clear();
        resampler_.Flush(made_);
        return Deliver();
    }

    bool Wanted() const override { return wanted_ && sink_.Wanted(); }
    std::int64_t Delivered() const { return delivered_; }

    /// The first word whose sound is not all there. A word that was begun counts as said when no other follows it: an
    /// engine that fails does so between its pieces. -1 before the first word.
    int NextWord() const
    {
        int next = -1;
        for (std::size_t i = 0; i < told_.size(); ++i) {
            const std::int64_t end = i + 1 < told_.size() ? told_[i + 1].first : told_[i].first + 1;
            if (delivered_ < end)
                return told_[i].second;
            next = told_[i].second + 1;
        }
        return next;
    }

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
    std::vector<std::pair<std::int64_t, int>> told_; ///< where in this turn each word begins
    bool wanted_ = true;
};

/// What is left of a turn from a shown word on. Pauses and bookmarks in front of it have had their time.
std::vector<Segment> From(std::span<const Segment> turn, int word)
{
    for (std::size_t i = 0; i < turn.size(); ++i) {
        const Segment& segment = turn[i];
        if (segment.kind != Segment::Kind::Text)
            continue;
        const int words = segment.shownWords < 0 ? CountWords(segment.text) : segment.shownWords;
        if (segment.firstWord + words <= word)
            continue;
        std::vector<Segment> rest(turn.begin() + static_cast<std::ptrdiff_t>(i), turn.end());
        if (segment.shownWords < 0 && segment.firstWord < word) {
            rest.front().text.clear();
            rest.front().firstWord = word;
            int at = segment.firstWord - 1;
            bool blank = true;
            for (std::size_t byte = 0; byte < segment.text.size();)
                for (const char32_t c : NextCharacters(segment.text, byte)) {
                    at += blank && !IsBlank(c) ? 1 : 0;
                    blank = IsBlank(c);
                    if (at >= word)
                        AppendUtf8(rest.front().text, c);
                }
        }
        return rest;
    }
    return {};
}

/// The paragraph that begins at byte `at` of the first segment, or as much of it as tells its language.
std::string Paragraph(std::span<const Segment> segments, std::size_t at)
{
    constexpr std::size_t Enough = 4096; // bytes
    std::string text;
    for (const Segment& segment : segments) {
        if (segment.kind != Segment::Kind::Text)
            continue;
        const std::size_t end = std::min(segment.text.find('\n', at), segment.text.size());
        text.append(segment.text, at, end - at);
        if (end < segment.text.size() || text.size() > Enough)
            break;
        at = 0;
    }
    return text;
}

/// Divides an utterance among its speakers, and has each turn spoken as soon as it is complete.
class Relay
{
public:
    Relay(Casting& casting, SampleSink& sink, bool byLanguage) : casting_(casting), sink_(sink), byLanguage_(byLanguage)
    {
    }

    bool Speak(std::span<const Segment> segments)
    {
        for (; !segments.empty(); segments = segments.subspan(1)) {
            if (segments.front().kind == Segment::Kind::Text)
                Deal(segments);
            else
                turn_.push_back(segments.front());
            if (ended_)
                return ok_;
        }
        EndTurn();
        return ok_;
    }

private:
    // Divides the first segment where its speaker changes: behind the last word of the first speaker, or inside a word
    // that has letters of both.
    void Deal(std::span<const Segment> segments)
    {
        const Segment& whole = segments.front();
        const int words = whole.shownWords > 0 ? CountWords(whole.text) : 0;
        piece_ = whole;
        piece_.text.clear();
        int word = -1; // the current word
        int begin = 0; // the piece's first word
        bool blank = true;
        std::size_t cut = 0;       // end of the last word with a speaker; None while still inside it
        int next = 0;              // the first word behind the cut
        std::size_t paragraph = 0; // where the current one begins
        const auto finish = [&](int end) {
            AddPiece(whole, begin, end, words);
            begin = end;
        };
        for (std::size_t at = 0; at < whole.text.size() && !ended_;) {
            for (const char32_t c : NextCharacters(whole.text, at)) {
                if (byLanguage_ && newParagraph_ && casting_.Begin(Paragraph(segments, paragraph))) {
                    // Numbers at the end of the last paragraph stay with its speaker.
                    cut = piece_.text.size();
                    next = word + 1;
                }
                newParagraph_ = c == U'\n';
                if (newParagraph_)
                    paragraph = whole.text.find('\n', paragraph) + 1;
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
        bool said = Say(speaker);
        // A voice the user added may be damaged or incomplete, or the memory too small for it; the text is to be spoken
        // all the same.
        for (const Entry* const standIn : casting_.StandIns(speaker)) {
            if (said || ended_)
                break;
            if (next_ >= 0)
                turn_ = From(turn_, next_);
            said = turn_.empty() || Say(*standIn);
        }
        ok_ = said || &speaker != &chosen;
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
        next_ = sink.NextWord();
        ended_ = !sink.Wanted();
        return spoken;
    }

    Casting& casting_;
    SampleSink& sink_;
    const bool byLanguage_;
    const Entry* speaker_ = nullptr; ///< null: before the first letter
    std::vector<Segment> turn_;      ///< the segments of the current turn
    Segment piece_;                  ///< the piece of text being gathered
    WordFollower words_;
    std::int64_t delivered_ = 0;
    int next_ = -1;            ///< the first word that the last speaker has not said
    bool newParagraph_ = true; ///< the next character begins one
    bool ended_ = false;
    bool ok_ = true;
};

} // namespace

bool SpeakInTurns(const VoiceCatalog& catalog, const VoiceCatalog::Entry& chosen, std::span<const Segment> segments,
                  SampleSink& sink, bool byLanguage)
{
    Casting casting(catalog, chosen);
    if (!byLanguage && chosen.voice.origin != Voice::Origin::Added && !casting.NeedsReader(segments))
        return chosen.engine->Synthesize(chosen.voice, segments, sink);
    return Relay(casting, sink, byLanguage).Speak(segments);
}

} // namespace voxmate::speech
