#include "speech/text/Wording.h"

#include "base/Text.h"
#include "base/Words.h"
#include "speech/text/Languages.h"
#include "speech/text/MarkedText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

namespace voxmate::speech
{

namespace
{

using Replacement = Wording::Replacement;

constexpr char32_t Asterisk = U'*';
/// With more, one rule could take longer over a text than speaking it does.
constexpr std::size_t MostAsterisks = 2;
/// The most characters that an asterisk stands for.
constexpr std::size_t LongestRun = 64;
/// A code of more characters is not said in full.
constexpr std::size_t LongestCode = 20;
/// How many characters are said of either end of such a code.
constexpr std::size_t CodeEnd = 4;
/// A word has letters beside letters, a code changes between letters and digits at least this often.
constexpr int CodeChanges = 4;
/// So many of the same sign are a ruled line.
constexpr std::size_t ShortestRow = 3;

std::u32string Capitals(std::u32string_view text)
{
    return DecodeUtf8(UCase(EncodeUtf8(text)));
}

bool IsAsciiDigit(char32_t c)
{
    return c >= U'0' && c <= U'9';
}

bool IsAsciiLetter(char32_t c)
{
    return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z');
}

/// Whether a character is part of a word together with its neighbours. Scripts that put no blanks between words have no
/// such characters.
bool JoinsWords(char32_t c)
{
    if (c < 0x80)
        return IsAsciiLetter(c) || IsAsciiDigit(c);
    switch (ScriptOf(c)) {
    case Script::Common:
    case Script::Han:
    case Script::Kana:
    case Script::Thai:
    case Script::Myanmar:
        return false;
    default:
        return true;
    }
}

/// Whether a letter is a capital in a script that has them. The sharp s has none.
bool IsCapital(char32_t c)
{
    if (c < 0x80)
        return c >= U'A' && c <= U'Z';
    const Script script = ScriptOf(c);
    return c != U'ß' && (script == Script::Latin || script == Script::Greek || script == Script::Cyrillic) &&
           Capitals({&c, 1}).front() == c;
}

std::u32string WithSingleBlanks(std::string_view text)
{
    std::u32string out;
    for (std::size_t at = 0; at < text.size();)
        for (const char32_t c : NextCharacters(text, at))
            if (!IsBlank(c) || (!out.empty() && out.back() != U' '))
                out += IsBlank(c) ? U' ' : c;
    if (!out.empty() && out.back() == U' ')
        out.pop_back();
    return out;
}

/// The longest part without asterisks and blanks.
std::u32string LongestPart(std::u32string_view written)
{
    std::u32string_view longest;
    for (std::size_t at = 0; at < written.size();) {
        const std::size_t end = std::min(written.find_first_of(U"* ", at), written.size());
        if (end - at > longest.size())
            longest = written.substr(at, end - at);
        at = end + 1;
    }
    return std::u32string(longest);
}

bool IsAnyOf(char32_t c, std::u32string_view these)
{
    return these.find(c) != std::u32string_view::npos;
}

// Ranges of Unicode's blocks of pictographs, and what changes or joins them.
bool IsPictograph(char32_t c)
{
    return (c >= 0x1F300 && c <= 0x1FAFF) || (c >= 0x2600 && c <= 0x27BF);
}

/// The characters of the pictograph at `at` with its variant, skin colour and what is joined to it; 0: there is none.
std::size_t PictographAt(std::u32string_view text, std::size_t at)
{
    constexpr char32_t joiner = 0x200D;
    constexpr char32_t asPicture = 0xFE0F;
    const auto isColour = [](char32_t c) { return c >= 0x1F3FB && c <= 0x1F3FF; };
    std::size_t end = at;
    while (end < text.size() && IsPictograph(text[end])) {
        ++end;
        while (end < text.size() && (text[end] == asPicture || isColour(text[end])))
            ++end;
        if (end + 1 >= text.size() || text[end] != joiner || !IsPictograph(text[end + 1]))
            break;
        ++end;
    }
    return end - at;
}

/// Where the word that begins at `at` ends, without the marks of the sentence behind it.
std::size_t EndOfWord(std::u32string_view text, std::size_t at)
{
    std::size_t end = at;
    while (end < text.size() && !IsBlank(text[end]))
        ++end;
    while (end > at && IsAnyOf(text[end - 1], U".,;:!?)]}>\"'”’»…"))
        --end;
    return end;
}

/// The name of the server in a web address; empty where that is none.
std::u32string ServerOf(std::u32string_view word)
{
    std::size_t begin = 0;
    bool named = false;
    for (const std::u32string_view scheme : {U"HTTPS://", U"HTTP://", U"FTP://"})
        if (word.size() > scheme.size() && Capitals(word.substr(0, scheme.size())) == scheme) {
            begin = scheme.size();
            named = true;
        }
    const std::u32string_view web = U"WWW.";
    const bool isWeb = Capitals(word.substr(begin, web.size())) == web;
    if (!named && !isWeb)
        return {};
    std::u32string_view server = word.substr(begin);
    server = server.substr(0, server.find_first_of(U"/?#"));
    if (const std::size_t user = server.rfind(U'@'); user != std::u32string_view::npos)
        server.remove_prefix(user + 1);
    else if (isWeb)
        server.remove_prefix(web.size());
    return std::u32string(server.substr(0, server.find(U':')));
}

bool IsLongCode(std::u32string_view word)
{
    if (word.size() <= LongestCode)
        return false;
    int changes = 0;
    bool hasLetter = false;
    for (std::size_t i = 0; i < word.size(); ++i) {
        const bool letter = IsAsciiLetter(word[i]);
        if (!letter && !IsAsciiDigit(word[i]) && !IsAnyOf(word[i], U"-_+/="))
            return false;
        hasLetter = hasLetter || letter;
        if (i > 0 && ((letter && IsAsciiDigit(word[i - 1])) || (IsAsciiLetter(word[i - 1]) && IsAsciiDigit(word[i]))))
            ++changes;
    }
    return hasLetter ? changes >= CodeChanges : std::any_of(word.begin(), word.end(), IsAsciiDigit);
}

/// The ends of a code, sign by sign.
std::u32string EndsOf(std::u32string_view code)
{
    std::u32string said;
    for (std::size_t i = 0; i < CodeEnd; ++i)
        said += {code[i], i + 1 < CodeEnd ? U' ' : U','};
    for (std::size_t i = code.size() - CodeEnd; i < code.size(); ++i)
        said += {U' ', code[i]};
    return said;
}

/// The short form of what begins at `at`; nothing where there is none.
std::optional<Replacement> ShortAt(std::u32string_view text, std::size_t at)
{
    if (const std::size_t length = PictographAt(text, at)) {
        std::size_t end = at + length;
        while (PictographAt(text, end) == length && text.substr(end, length) == text.substr(at, length))
            end += length;
        return end == at + length ? std::nullopt
                                  : std::optional(Replacement{end, std::u32string(text.substr(at, length))});
    }
    // Rows of these are how a sentence ends, or goes on.
    if (!JoinsWords(text[at]) && ScriptOf(text[at]) == Script::Common && !IsBlank(text[at]) &&
        !IsAnyOf(text[at], U".!?。！？…")) {
        const std::size_t end = std::min(text.find_first_not_of(text[at], at), text.size());
        if (end - at >= ShortestRow && (at == 0 || text[at - 1] != text[at]))
            return Replacement{end, {}};
    }
    if (at > 0 && !IsBlank(text[at - 1]) && !IsAnyOf(text[at - 1], U"([{<\"'„“‘«"))
        return std::nullopt;
    const std::size_t end = EndOfWord(text, at);
    const std::u32string_view word = text.substr(at, end - at);
    if (std::u32string server = ServerOf(word); !server.empty())
        return Replacement{end, std::move(server)};
    if (IsLongCode(word))
        return Replacement{end, EndsOf(word)};
    return std::nullopt;
}

/// How a rule fits into a line, with what its asterisks stand for.
class Fit
{
public:
    Fit(std::u32string_view written, std::u32string_view text) : written_(written), text_(text) {}

    /// Where the rule ends that begins at `at`; nothing where it does not fit.
    std::optional<std::size_t> From(std::size_t at) { return Go(0, at); }
    /// What is said instead, with what the asterisks stood for in `text`, which is as long as the one that was looked
    /// at.
    std::u32string Fill(std::u32string_view said, std::u32string_view text) const
    {
        std::u32string filled;
        std::size_t number = 0;
        for (const char32_t c : said) {
            if (c == Asterisk && number < MostAsterisks)
                filled += text.substr(runs_.at(number).begin, runs_.at(number).length);
            else
                filled += c;
            number += c == Asterisk ? 1 : 0;
        }
        return filled;
    }

private:
    struct Stretch {
        std::size_t begin = 0;
        std::size_t length = 0;
    };

    std::optional<std::size_t> Go(std::size_t rule, std::size_t at)
    {
        for (; rule < written_.size(); ++rule) {
            if (written_[rule] == Asterisk)
                return Run(rule, at);
            if (at == text_.size() || (written_[rule] == U' ' ? !IsBlank(text_[at]) : written_[rule] != text_[at]))
                return std::nullopt;
            ++at;
            while (written_[rule] == U' ' && at < text_.size() && IsBlank(text_[at]))
                ++at;
        }
        const bool inside = JoinsWords(text_[at - 1]) && at < text_.size() && JoinsWords(text_[at]);
        return inside ? std::nullopt : std::optional(at);
    }

    std::optional<std::size_t> Run(std::size_t rule, std::size_t at)
    {
        if (at == text_.size() || !JoinsWords(text_[at]))
            return std::nullopt;
        const std::size_t number = runsBegun_++;
        for (std::size_t end = at + 1;; ++end) {
            if (const auto found = Go(rule + 1, end)) {
                runs_.at(number) = {at, end - at};
                return found;
            }
            if (end == text_.size() || IsBlank(text_[end]) || end - at == LongestRun)
                break;
        }
        --runsBegun_;
        return std::nullopt;
    }

    std::u32string_view written_;
    std::u32string_view text_;
    std::array<Stretch, MostAsterisks> runs_;
    std::size_t runsBegun_ = 0;
};

/// Puts a segment together again from what stays of it and what is said instead.
class Pieces
{
public:
    Pieces(Segment& whole, std::vector<Segment>& out) : whole_(whole), out_(out) {}

    void Keep(char32_t c)
    {
        Count(c);
        if (first_ < 0 && !IsBlank(c))
            first_ = word_;
        AppendUtf8(kept_, c);
    }

    void Replace(std::u32string_view written, std::u32string_view said)
    {
        changed_ = true;
        Flush();
        Count(written.front());
        const int first = word_;
        for (const char32_t c : written.substr(1))
            Count(c);
        Add(EncodeUtf8(said), first, word_ - first + 1);
    }

    void End()
    {
        if (changed_)
            Flush();
        else
            out_.push_back(std::move(whole_));
    }

private:
    void Count(char32_t c)
    {
        if (blank_ && !IsBlank(c))
            ++word_;
        blank_ = IsBlank(c);
    }

    void Flush()
    {
        Add(std::exchange(kept_, {}), std::max(first_, 0), -1);
        first_ = -1;
    }

    void Add(std::string text, int firstWord, int shownWords)
    {
        if (text.empty())
            return;
        Segment segment;
        segment.prosody = whole_.prosody;
        segment.emphasis = HasWord(text) && std::exchange(whole_.emphasis, false);
        segment.text = std::move(text);
        segment.firstWord = whole_.firstWord + firstWord;
        segment.shownWords = shownWords;
        out_.push_back(std::move(segment));
    }

    Segment& whole_;
    std::vector<Segment>& out_;
    std::string kept_;
    int first_ = -1; ///< the word of the first sign in kept_; -1: it has none
    int word_ = -1;
    bool blank_ = true;
    bool changed_ = false;
};

} // namespace

Wording::Wording(const std::vector<WordingRule>& rules, bool shortens) : shortens_(shortens)
{
    for (const WordingRule& rule : rules) {
        Compiled compiled{WithSingleBlanks(rule.Written), {}, DecodeUtf8(rule.Said)};
        if (std::all_of(compiled.written.begin(), compiled.written.end(),
                        [](char32_t c) { return c == Asterisk || IsBlank(c); }) ||
            static_cast<std::size_t>(std::count(compiled.written.begin(), compiled.written.end(), Asterisk)) >
                MostAsterisks)
            continue;
        compiled.anyCase = std::none_of(compiled.written.begin(), compiled.written.end(), IsCapital);
        const std::u32string capitals = Capitals(compiled.written);
        if (compiled.anyCase)
            compiled.written = capitals;
        compiled.part = LongestPart(compiled.written);
        byFirst_[capitals.front()].push_back(std::move(compiled));
    }
    for (auto& [first, compiled] : byFirst_)
        std::stable_sort(compiled.begin(), compiled.end(),
                         [](const Compiled& a, const Compiled& b) { return a.written.size() > b.written.size(); });
}

std::vector<Segment> Wording::Apply(std::vector<Segment> segments) const
{
    if (byFirst_.empty() && !shortens_)
        return segments;
    std::vector<Segment> said;
    said.reserve(segments.size());
    for (Segment& segment : segments) {
        if (segment.kind == Segment::Kind::Text && segment.shownWords < 0)
            Say(segment, said);
        else
            said.push_back(std::move(segment));
    }
    return said;
}

Wording::Line Wording::LineOf(std::u32string_view text, std::u32string_view capitals) const
{
    Line line{text, capitals, {}};
    if (const auto rules = byFirst_.find(Asterisk); rules != byFirst_.end())
        for (const Compiled& rule : rules->second)
            if ((rule.anyCase ? capitals : text).find(rule.part) != std::u32string_view::npos)
                line.anyBeginning.push_back(&rule);
    return line;
}

std::optional<Wording::Replacement> Wording::FindAt(const Line& line, std::size_t at) const
{
    const bool inside = at > 0 && JoinsWords(line.text[at - 1]) && JoinsWords(line.text[at]);
    if (inside || IsBlank(line.text[at]))
        return std::nullopt;
    std::optional<Replacement> found;
    std::size_t longest = 0;
    // False when no rule behind this one can be longer than what was found.
    const auto takes = [&](const Compiled& rule) {
        if (rule.written.size() <= longest)
            return false;
        Fit fit(rule.written, rule.anyCase ? line.capitals : line.text);
        const std::optional<std::size_t> end = fit.From(at);
        if (!end)
            return true;
        found = Replacement{*end, fit.Fill(rule.said, line.text)};
        longest = rule.written.size();
        return false;
    };
    if (const auto rules = byFirst_.find(line.capitals[at]); rules != byFirst_.end() && line.capitals[at] != Asterisk) {
        for (const Compiled& rule : rules->second) {
            if (!takes(rule))
                break;
        }
    }
    for (const Compiled* rule : line.anyBeginning) {
        if (!takes(*rule))
            break;
    }
    if (!found && shortens_)
        return ShortAt(line.text, at);
    return found;
}

void Wording::Say(Segment& segment, std::vector<Segment>& out) const
{
    Pieces pieces(segment, out);
    std::u32string text;
    const auto say = [&] {
        const std::u32string capitals = Capitals(text);
        const Line line = LineOf(text, capitals);
        for (std::size_t at = 0; at < text.size();) {
            const std::optional<Replacement> found = FindAt(line, at);
            if (found)
                pieces.Replace(std::u32string_view(text).substr(at, found->end - at), found->said);
            else
                pieces.Keep(text[at]);
            at = found ? found->end : at + 1;
        }
        text.clear();
    };
    for (std::size_t at = 0; at < segment.text.size();)
        for (const char32_t c : NextCharacters(segment.text, at)) {
            text += c;
            if (c == U'\n')
                say();
        }
    say();
    pieces.End();
}

} // namespace voxmate::speech
