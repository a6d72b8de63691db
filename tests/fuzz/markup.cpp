// Fuzzes what is said: output tags, the balloon's lines, and what the two engines are given. The first byte is the
// width of the balloon, all others are the text. No text is fatal, and all code that counts its words counts the same.
#include "fuzz.h"

#include "agent/balloon/BalloonText.h"
#include "agent/text/Markup.h"
#include "base/Text.h"
#include "base/Words.h"
#include "speech/engines/EspeakMarkup.h"
#include "speech/engines/FliteText.h"
#include "speech/text/MarkedText.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

using namespace voxmate;
using speech::Segment;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

namespace
{

constexpr int kAllWords = std::numeric_limits<int>::max();

std::vector<std::string> WordsOf(std::string_view text)
{
    std::vector<std::string> words;
    bool inside = false;
    for (std::size_t at = 0; at < text.size();) {
        if (const std::size_t blank = BlankAt(text, at)) {
            inside = false;
            at += blank;
            continue;
        }
        if (!inside)
            words.emplace_back();
        inside = true;
        const std::size_t length = CharacterAt(text, at);
        words.back() += text.substr(at, length);
        at += length;
    }
    return words;
}

agent::ParsedText Parsed(std::string_view text)
{
    const InTime inTime("a text is parsed");
    return agent::ParseMarkup(text);
}

void CheckSegment(const Segment& segment, int words)
{
    if (segment.kind == Segment::Kind::Pause) {
        Require(segment.milliseconds >= 10 && segment.milliseconds <= 2550, "a pause is one of 10 to 2550 ms");
        return;
    }
    if (segment.kind == Segment::Kind::Bookmark) {
        Require(segment.bookmark >= 0, "a bookmark's number is not negative");
        return;
    }
    Require(IsValidUtf8(segment.text), "what is spoken is UTF-8");
    const auto spoken = static_cast<int>(WordsOf(segment.text).size());
    Require(spoken > 0, "a segment has a word");
    const int shown = segment.shownWords < 0 ? spoken : segment.shownWords;
    Require(segment.firstWord >= 0 && segment.firstWord + shown <= words, "a segment's words are in the balloon");
    const speech::Prosody& prosody = segment.prosody;
    Require(prosody.pitchHz >= 0 && prosody.wordsPerMinute >= 0, "pitch and speed are not negative");
    Require(prosody.volume >= 0 && prosody.volume <= 65535, "a volume is one of 0 to 65535");
}

void CheckSegments(const std::vector<Segment>& segments, int words, bool mapped)
{
    int covered = 0;
    int last = 0;
    for (const Segment& segment : segments) {
        CheckSegment(segment, words);
        if (segment.kind != Segment::Kind::Text)
            continue;
        if (segment.shownWords == 0)
            continue; // it stands between words, or within one
        Require(segment.firstWord >= last, "segments stand in the order of their words");
        last = segment.firstWord;
        Require(mapped || segment.firstWord <= covered, "no word of the balloon is left out");
        const auto own = static_cast<int>(WordsOf(segment.text).size());
        covered = std::max(covered, segment.firstWord + (segment.shownWords < 0 ? own : segment.shownWords));
    }
    Require(mapped || covered == words, "every word of the balloon is spoken");
}

void CheckText(std::string_view text, const agent::ParsedText& marked)
{
    Require(IsValidUtf8(marked.shown), "what is shown is UTF-8");
    const std::vector<std::string> words = WordsOf(marked.shown);
    if (!words.empty())
        Require(marked.shown.starts_with(words.front()) && marked.shown.ends_with(words.back()),
                "what is shown has no blanks at its ends");
    else
        Require(marked.shown.empty(), "what is shown is no mere blanks");
    CheckSegments(marked.segments, static_cast<int>(words.size()), ContainsNoCase(text, "map"));
    if (marked.sayLastAgain)
        Require(marked.segments.empty() && marked.shown.empty(), "saying it again is all such a text says");
    if (text.find('\\') == std::string_view::npos && !words.empty())
        Require(marked.segments.size() == 1 && WordsOf(marked.segments[0].text) == words,
                "a text without tags is spoken as it is");

    std::string escaped;
    for (const char c : marked.shown)
        escaped += c == '\\' ? std::string("\\\\") : std::string(1, c);
    const agent::ParsedText again = Parsed(escaped);
    Require(again.shown == marked.shown, "a text with its backslashes doubled is shown as it is");
    Require(again.segments.size() == (words.empty() ? 0 : 1), "a text with its backslashes doubled has no tags");
}

void CheckBalloon(const std::string& shown, int width)
{
    const std::vector<std::string> words = WordsOf(shown);
    agent::BalloonText lines(std::make_shared<const std::string>(shown), width,
                             [](const std::string& text) { return static_cast<int>(Len(text)); });
    std::size_t count = 0;
    {
        const InTime inTime("a balloon's text is laid out");
        while (lines.HasLine(count))
            ++count;
    }
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        const std::string line = lines.Line(i, kAllWords);
        Require(static_cast<int>(Len(line)) <= width, "a line is no wider than the balloon");
        for (const std::string& piece : WordsOf(line))
            all += piece;
    }
    std::string expected;
    for (const std::string& word : words)
        expected += word;
    Require(all == expected, "no letter of the text is missing in the balloon");

    constexpr int mostWords = 50;
    std::size_t last = 0;
    for (int word = 0; word < std::min(static_cast<int>(words.size()), mostWords); ++word) {
        const std::size_t line = lines.LineOfWord(word);
        Require(line < count && line >= last, "words stand one after the other");
        Require(lines.Line(line, word) != lines.Line(line, word - 1), "a word is on its line once it is spoken");
        last = line;
    }
}

void CheckEspeak(const speech::MarkedText& part)
{
    std::optional<speech::EspeakMarkup> made;
    {
        const InTime inTime("a text is written for eSpeak NG");
        made.emplace(part);
    }
    const std::u32string markup = DecodeUtf8(made->ssml);
    constexpr std::u32string_view open = U"<speak>";
    Require(std::u32string_view(markup.data(), markup.size()).starts_with(open), "the markup is one element");
    int depth = 0;
    int word = -1;
    std::size_t next = 0;
    for (std::size_t at = 0; at < markup.size();) {
        std::u32string name;
        const std::size_t start = at;
        const bool tag = markup[at] == U'<';
        if (tag || markup[at] == U'&') {
            const char32_t end = tag ? U'>' : U';';
            while (at < markup.size() && markup[at] != end)
                name += markup[at++];
            Require(at < markup.size(), "the markup is closed");
        }
        ++at;
        if (tag) {
            const bool alone = name.ends_with(U'/');
            depth += alone ? 0 : name.starts_with(U"</") ? -1 : 1;
            Require(depth >= 0 && (depth > 0 || at == markup.size()), "what is opened is closed, and in order");
            continue;
        }
        Require(next < part.text.size(), "the markup holds no more than the text");
        const char32_t c = name == U"&amp" ? U'&' : name == U"&lt" ? U'<' : name == U"&gt" ? U'>' : markup[start];
        Require(c == part.text[next], "the markup holds the text as it is");
        word = std::max(word, part.shownWord[next++]);
        for (std::size_t i = start; i < at; ++i)
            Require(made->ShownWordAt(static_cast<int>(i) + 1) == word, "a place in the markup belongs to its word");
    }
    // A part that ends within a sentence leaves the element open.
    const int leftOpen = part.end == speech::MarkedText::End::Inside ? 1 : 0;
    Require(depth == leftOpen && next == part.text.size(), "the markup holds all of the text");
}

void CheckFlite(const speech::MarkedText& part)
{
    std::vector<speech::FliteSentence> sentences;
    {
        const InTime inTime("a text is split for Flite");
        sentences = speech::SplitForFlite(part);
    }
    std::vector<bool> said(part.text.size());
    std::size_t last = 0;
    for (const speech::FliteSentence& sentence : sentences) {
        Require(!sentence.text.empty() && sentence.text.size() == sentence.source.size(), "each byte has its source");
        for (std::size_t i = 0; i < sentence.text.size(); ++i) {
            const auto byte = static_cast<unsigned char>(sentence.text[i]);
            Require(byte == '\n' || (byte >= 0x20 && byte < 0x7F), "Flite reads plain ASCII");
            Require(sentence.source[i] >= last && sentence.source[i] < part.text.size(), "sources are in order");
            last = sentence.source[i];
            said[last] = true;
        }
        const int step = 1 + static_cast<int>(sentence.text.size() / 200);
        for (int token = -1; token < static_cast<int>(sentence.text.size()) + 2; token += step) {
            const std::size_t source = sentence.SourceOfToken(token);
            Require(source >= sentence.source.front() && source <= last, "a token's source is in its sentence");
        }
    }
    for (std::size_t i = 0; i < part.text.size(); ++i) {
        const char32_t c = part.text[i];
        if ((c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z') || (c >= U'0' && c <= U'9'))
            Require(said[i], "no letter is left out");
    }
}

void CheckSpeech(const std::vector<Segment>& segments, int words)
{
    std::vector<speech::MarkedText> parts;
    {
        const InTime inTime("a text is arranged for the engines");
        speech::Arranger arranger(segments);
        while (auto part = arranger.Next())
            parts.push_back(std::move(*part));
    }
    std::size_t bookmarks = 0;
    int last = -1;
    for (const speech::MarkedText& part : parts) {
        Require(part.shownWord.size() == part.text.size() && part.emphasised.size() == part.text.size(),
                "each character has its word");
        for (const int word : part.shownWord) {
            Require(word >= -1 && word < words, "a character's word is in the balloon");
            Require(word == -1 || word >= last, "words come in their order");
            last = std::max(last, word);
        }
        std::size_t at = 0;
        for (const speech::MarkedText::Mark& mark : part.marks) {
            Require(mark.at >= at && mark.at <= part.text.size(), "bookmarks stand in order within the text");
            at = mark.at;
        }
        bookmarks += part.marks.size();
        CheckEspeak(part);
        CheckFlite(part);
    }
    Require(bookmarks ==
                static_cast<std::size_t>(std::ranges::count(segments, Segment::Kind::Bookmark, &Segment::kind)),
            "no bookmark is lost");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string text(data + 1, data + size);
    const agent::ParsedText marked = Parsed(text);
    CheckText(text, marked);
    CheckBalloon(marked.shown, 1 + data[0]);
    CheckSpeech(marked.segments, static_cast<int>(WordsOf(marked.shown).size()));
    return 0;
}
