#include "agent/text/Markup.h"

#include "agent/text/SpokenForm.h"
#include "base/Text.h"
#include "base/Words.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>

namespace voxmate::agent
{

namespace
{

using speech::Prosody;
using speech::Segment;

struct Value {
    std::string text;
    bool quoted = false;
};

/// What begins at a backslash.
struct Tag {
    enum class Kind { None, Dropped, Known };
    Kind kind = Kind::None; ///< None: the backslash is text
    std::string name;
    std::vector<Value> values;
    bool bare = true;       ///< without an equal sign
    std::size_t length = 0; ///< bytes that the tag takes; reading goes on behind them
};

constexpr std::array<const char*, 11> kNames{"Chr", "Ctx", "Emp", "Lst", "Map", "Mrk",
                                             "Pau", "Pit", "Rst", "Spd", "Vol"};

bool IsKnown(std::string_view name)
{
    return std::any_of(kNames.begin(), kNames.end(), [&](const char* known) { return EqualNoCase(name, known); });
}

class TagReader
{
public:
    /// Values that are read of one tag. No tag takes more than two. Without this bound, a text in which every tag could
    /// run on to the text's end would be read to the end once for each tag.
    static constexpr std::size_t MostValues = 4;

    /// `text` begins with the backslash.
    explicit TagReader(std::string_view text) : text_(text) {}

    Tag Read()
    {
        SkipBlanks();
        while (IsLetter(At()))
            tag_.name += text_[at_++];
        SkipBlanks();
        std::size_t unclosed = 0; // end of what an unclosed tag takes with it
        while (!tag_.name.empty() && At() == '=' && tag_.values.size() < MostValues) {
            tag_.bare = false;
            unclosed = ++at_;
            SkipBlanks();
            const bool adjoins = at_ == unclosed;
            if (!ReadValue())
                break;
            if (adjoins || tag_.values.back().quoted)
                unclosed = at_;
            SkipBlanks();
        }
        const bool known = IsKnown(tag_.name);
        if (!tag_.name.empty() && At() == '\\') {
            if (!blanks_)
                return End(known ? Tag::Kind::Known : Tag::Kind::Dropped, at_ + 1);
            if (known)
                return End(Tag::Kind::Dropped, at_ + 1);
        } else if (known && !tag_.values.empty()) {
            // The tag was never closed: it is dropped, the text behind it stays.
            return End(Tag::Kind::Dropped, unclosed);
        }
        const std::size_t closed = FormOfATag();
        if (closed == 0 && known && unclosed > 0)
            return End(Tag::Kind::Dropped, unclosed);
        return End(closed > 0 ? Tag::Kind::Dropped : Tag::Kind::None, closed);
    }

private:
    char At() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    void SkipBlanks()
    {
        while (At() == ' ' || At() == '\t') {
            blanks_ = true;
            ++at_;
        }
    }

    bool ReadValue()
    {
        Value value;
        if (const std::size_t end = ClosingQuote(); end > 0) {
            value.quoted = true;
            for (++at_; at_ < end; ++at_) {
                if (EscapedAt(at_))
                    ++at_;
                value.text += text_[at_];
            }
            ++at_;
            tag_.values.push_back(std::move(value));
            return true;
        }
        while (At() != '\0' && !BlankAt(text_, at_) && At() != '\\' && At() != '=')
            value.text += text_[at_++];
        if (value.text.empty())
            return false;
        tag_.values.push_back(std::move(value));
        return true;
    }

    /// Whether two backslashes, which mean one, stand at byte `at`.
    bool EscapedAt(std::size_t at) const { return text_.substr(at, 2) == "\\\\"; }

    /// The position of the quote that closes the quoted text beginning here, 0 when no quoted text does. A quote
    /// followed by an equal sign or a backslash is the closing one; others belong to the text. If no such quote comes
    /// before the next backslash or line end, the first quote closes the text.
    std::size_t ClosingQuote() const
    {
        if (At() != '"')
            return 0;
        std::size_t first = 0;
        for (std::size_t i = at_ + 1; i < text_.size(); ++i) {
            if (text_[i] == '"') {
                if (i + 1 < text_.size() && (text_[i + 1] == '=' || text_[i + 1] == '\\'))
                    return i;
                if (first == 0)
                    first = i;
            } else if (EscapedAt(i)) {
                ++i;
            } else if (first > 0 && (text_[i] == '\\' || text_[i] == '\n' || text_[i] == '\r')) {
                break;
            }
        }
        return first;
    }

    // The end of what has the form of a tag: anything without a blank between two backslashes of one line. 0 when there
    // is none.
    std::size_t FormOfATag() const
    {
        for (std::size_t i = 1; i < text_.size() && !BlankAt(text_, i); ++i)
            if (text_[i] == '\\')
                return i + 1;
        return 0;
    }

    Tag End(Tag::Kind kind, std::size_t length)
    {
        tag_.kind = kind;
        tag_.length = length;
        return std::move(tag_);
    }

    std::string_view text_;
    std::size_t at_ = 1;
    bool blanks_ = false;
    Tag tag_;
};

/// The whole number a tag carries, if it carries just one.
std::optional<int> Number(const Tag& tag)
{
    if (tag.values.size() != 1 || tag.values[0].quoted)
        return std::nullopt;
    std::int64_t number = 0;
    for (const char c : tag.values[0].text) {
        if (!IsDigit(c))
            return std::nullopt;
        number = number * 10 + (c - '0');
        if (number > std::numeric_limits<int>::max())
            return std::nullopt;
    }
    return static_cast<int>(number);
}

class Parser
{
public:
    // Bytes that are not UTF-8 become U+FFFD, so that everything that reads the text later counts the same characters.
    explicit Parser(std::string_view text)
        : repaired_(IsValidUtf8(text) ? std::string() : EncodeUtf8(DecodeUtf8(text))),
          text_(repaired_.empty() ? text : repaired_)
    {
    }

    ParsedText Run()
    {
        result_.shown.reserve(text_.size());
        std::size_t at = 0;
        while (at < text_.size()) {
            if (text_[at] != '\\') {
                const std::size_t end = std::min(text_.find('\\', at), text_.size());
                AddText(text_.substr(at, end - at));
                at = end;
                continue;
            }
            if (at + 1 < text_.size() && text_[at + 1] == '\\') {
                AddText("\\");
                at += 2;
                continue;
            }
            const Tag tag = TagReader(text_.substr(at)).Read();
            if (tag.kind == Tag::Kind::None) {
                AddText("\\");
                ++at;
                continue;
            }
            if (tag.kind == Tag::Kind::Known)
                Apply(tag);
            at += tag.length;
        }
        Flush();
        result_.shown.resize(shownEnd_);
        result_.words = words_;
        result_.sayLastAgain = IsAlone("\\Lst\\");
        return std::move(result_);
    }

private:
    /// Whether the text holds nothing but `tag` and blanks.
    bool IsAlone(std::string_view tag) const
    {
        std::size_t at = 0;
        while (const std::size_t blank = BlankAt(text_, at))
            at += blank;
        return EqualNoCase(text_.substr(at, tag.size()), tag) &&
               !HasWord(text_.substr(std::min(at + tag.size(), text_.size())));
    }

    /// Adds a piece of whole characters to the shown text and counts its words. The shown text begins and ends with a
    /// word, so blanks before the first word are left out. Returns the number of the first word that the piece is part
    /// of, -1 when the piece is blank.
    int Show(std::string_view piece)
    {
        std::size_t begin = 0;
        if (words_ == 0)
            while (const std::size_t blank = BlankAt(piece, begin))
                begin += blank;
        const std::size_t base = result_.shown.size();
        result_.shown += piece.substr(begin);
        int first = -1;
        for (std::size_t at = begin; at < piece.size();) {
            // Most characters of most texts are ASCII.
            const auto byte = static_cast<unsigned char>(piece[at]);
            const bool ascii = byte < 0x80;
            const std::size_t blank = ascii ? (byte <= 0x20 || byte == 0x7F ? 1u : 0u) : BlankAt(piece, at);
            if (blank > 0) {
                inWord_ = false;
                at += blank;
                continue;
            }
            if (!inWord_)
                ++words_;
            inWord_ = true;
            if (first < 0)
                first = words_ - 1;
            at += ascii ? 1 : CharacterAt(piece, at);
            shownEnd_ = base + at - begin;
        }
        return first;
    }

    void AddText(std::string_view piece)
    {
        const int first = Show(piece);
        if (first >= 0 && !std::exchange(pendingHasWord_, true))
            pendingFirstWord_ = first;
        pending_ += piece;
    }

    void Flush()
    {
        if (pendingHasWord_) {
            if (context_ == SpeechContext::Unknown)
                AddSegment(std::move(pending_), pendingFirstWord_, -1);
            else
                AddInContext();
        }
        pending_.clear();
        pendingHasWord_ = false;
    }

    // Words that are not read as they are written become segments of their own, with one shown word each.
    void AddInContext()
    {
        std::string plain;
        int plainFirst = pendingFirstWord_;
        int word = pendingFirstWord_;
        const auto flushPlain = [&] {
            if (HasWord(plain))
                AddSegment(plain, plainFirst, -1);
            plain.clear();
        };
        for (std::size_t at = 0; at < pending_.size();) {
            if (const std::size_t blank = BlankAt(pending_, at)) {
                plain.append(pending_, at, blank);
                at += blank;
                continue;
            }
            std::size_t end = at;
            while (end < pending_.size() && !BlankAt(pending_, end))
                end += CharacterAt(pending_, end);
            const std::string written = pending_.substr(at, end - at);
            const std::string spoken = SpokenForm(written, context_);
            if (spoken == written) {
                plain += written;
            } else {
                flushPlain();
                AddSegment(spoken, word, 1);
                plainFirst = word + 1;
            }
            ++word;
            at = end;
        }
        flushPlain();
    }

    void AddSegment(std::string text, int firstWord, int shownWords)
    {
        Segment segment;
        segment.text = std::move(text);
        segment.prosody = prosody_;
        segment.emphasis = std::exchange(emphasis_, false);
        segment.firstWord = firstWord;
        segment.shownWords = shownWords;
        result_.segments.push_back(std::move(segment));
    }

    void AddMark(Segment::Kind kind, int milliseconds, int bookmark)
    {
        Flush();
        Segment segment;
        segment.kind = kind;
        segment.milliseconds = milliseconds;
        segment.bookmark = bookmark;
        segment.firstWord = words_;
        result_.segments.push_back(std::move(segment));
    }

    void SetProsody(const Prosody& prosody)
    {
        if (prosody == prosody_)
            return;
        Flush();
        prosody_ = prosody;
    }

    void SetContext(SpeechContext context)
    {
        if (context == context_)
            return;
        Flush();
        context_ = context;
    }

    void ApplyMap(const std::string& spoken, const std::string& shown)
    {
        Flush();
        const bool continues = inWord_ && !shown.empty() && !BlankAt(shown, 0);
        const int firstWord = continues ? words_ - 1 : words_;
        int shownWords = 0;
        bool inside = false;
        for (std::size_t at = 0; at < shown.size(); at += CharacterAt(shown, at)) {
            const bool blank = BlankAt(shown, at) > 0;
            if (!blank && !inside)
                ++shownWords;
            inside = !blank;
            Show(std::string_view(shown).substr(at, CharacterAt(shown, at)));
        }
        if (HasWord(spoken))
            AddSegment(spoken, firstWord, shownWords);
    }

    void ApplyNumber(const Tag& tag)
    {
        const std::optional<int> number = Number(tag);
        if (!number)
            return;
        Prosody prosody = prosody_;
        if (EqualNoCase(tag.name, "Pit") && *number > 0)
            prosody.pitchHz = *number;
        else if (EqualNoCase(tag.name, "Spd") && *number > 0)
            prosody.wordsPerMinute = *number;
        else if (EqualNoCase(tag.name, "Vol"))
            prosody.volume = std::min(*number, 65535);
        else if (EqualNoCase(tag.name, "Mrk"))
            AddMark(Segment::Kind::Bookmark, 0, *number);
        else if (EqualNoCase(tag.name, "Pau") && *number > 0)
            AddMark(Segment::Kind::Pause, std::clamp(*number, 10, 2550), 0);
        SetProsody(prosody);
    }

    void ApplyWord(const std::string& name, const std::string& value)
    {
        Prosody prosody = prosody_;
        if (EqualNoCase(name, "Chr")) {
            const bool whisper = EqualNoCase(value, "Whisper");
            const bool monotone = EqualNoCase(value, "Monotone");
            if (!whisper && !monotone && !EqualNoCase(value, "Normal"))
                return;
            prosody.whisper = whisper;
            prosody.monotone = monotone;
            SetProsody(prosody);
        } else if (EqualNoCase(name, "Ctx")) {
            if (EqualNoCase(value, "Unknown"))
                SetContext(SpeechContext::Unknown);
            else if (EqualNoCase(value, "Address"))
                SetContext(SpeechContext::Address);
            else if (EqualNoCase(value, "E-mail"))
                SetContext(SpeechContext::Email);
        }
    }

    void Apply(const Tag& tag)
    {
        if (tag.bare) {
            if (EqualNoCase(tag.name, "Emp")) {
                Flush();
                emphasis_ = true;
            } else if (EqualNoCase(tag.name, "Rst")) {
                SetProsody({});
                SetContext(SpeechContext::Unknown);
            }
        } else if (EqualNoCase(tag.name, "Map")) {
            if (tag.values.size() == 2 && tag.values[0].quoted && tag.values[1].quoted)
                ApplyMap(tag.values[0].text, tag.values[1].text);
        } else if (tag.values.size() == 1 && tag.values[0].quoted) {
            ApplyWord(tag.name, tag.values[0].text);
        } else {
            ApplyNumber(tag);
        }
    }

    const std::string repaired_; ///< the text with invalid bytes replaced; empty when there are none
    std::string_view text_;
    ParsedText result_;
    std::size_t shownEnd_ = 0; ///< end of the last word of the shown text
    Prosody prosody_;
    SpeechContext context_ = SpeechContext::Unknown;
    bool emphasis_ = false;
    std::string pending_; ///< text read but not yet a segment
    bool pendingHasWord_ = false;
    int pendingFirstWord_ = 0;
    int words_ = 0; ///< words begun in the shown text
    bool inWord_ = false;
};

} // namespace

ParsedText ParseMarkup(std::string_view text)
{
    return Parser(text).Run();
}

} // namespace voxmate::agent
