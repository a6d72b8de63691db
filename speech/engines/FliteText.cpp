#include "speech/engines/FliteText.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace voxmate::speech
{

namespace
{

constexpr std::size_t LongSentence = 400;

// Letters from U+00C0 to U+017F, and the same letters without their marks.
constexpr std::u32string_view Marked = U"ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖØÙÚÛÜÝàáâãäåçèéêëìíîïðñòóôõöøùúûüýÿĀāĂăĄąĆćČčĎďĐđĒēĘęĚěĞ"
                                       U"ğĪīİıŁłŃńŇňŌōŐőŘřŚśŞşŠšŢţŤťŪūŮůŰűŹźŻżŽž";
constexpr std::string_view Plain = "AAAAAACEEEEIIIIDNOOOOOOUUUUYaaaaaaceeeeiiiidnoooooouuuuyyAaAaAaCcCcDdDdEeEeEeGgIiIi"
                                   "LlNnNnOoOoRrSsSsSsTtTtUuUuUuZzZzZz";
static_assert(Marked.size() == Plain.size());

// The text Flite gets for a character; a blank for one it cannot say.
std::string Ascii(char32_t c)
{
    if (c < 0x80)
        return std::string(1, static_cast<char>(c));
    if (const std::size_t at = Marked.find(c); at != std::u32string_view::npos)
        return std::string(1, Plain[at]);
    switch (c) {
    case U'‘':
    case U'’':
    case U'ʼ':
        return "'";
    case U'“':
    case U'”':
    case U'„':
    case U'«':
    case U'»':
        return "\"";
    case U'–':
    case U'—':
        return ",";
    case U'‐':
    case U'‑':
        return "-";
    case U'…':
        return "...";
    case U'ß':
        return "ss";
    case U'Æ':
    case U'æ':
        return "ae";
    case U'Œ':
    case U'œ':
        return "oe";
    case U'€':
        return " euro ";
    case U'£':
        return " pound ";
    case U'°':
        return " degrees ";
    default:
        return " ";
    }
}

// True for "Dr", "e.g" and initials: the full stop behind them does not end a sentence.
bool IsAbbreviation(std::string_view word)
{
    static constexpr std::array<std::string_view, 14> known{"Mr", "Mrs", "Ms", "Dr",  "Prof", "St",  "Sr",
                                                            "Jr", "vs",  "No", "e.g", "i.e",  "etc", "approx"};
    while (!word.empty() && !IsLetter(word.front()))
        word.remove_prefix(1);
    return word.size() == 1 || std::find(known.begin(), known.end(), word) != known.end();
}

// Whether a sentence ends before the blank at `at`.
bool EndsSentence(std::string_view text, std::size_t start, std::size_t at)
{
    const std::size_t next = text.find_first_not_of(" \n", at);
    if (next == std::string_view::npos)
        return false;
    // An empty line, even with blanks in it or a carriage return at its end.
    if (std::count(text.begin() + static_cast<std::ptrdiff_t>(at), text.begin() + static_cast<std::ptrdiff_t>(next),
                   '\n') > 1)
        return true;
    std::size_t last = at;
    while (last > start && (text[last - 1] == '"' || text[last - 1] == '\'' || text[last - 1] == ')'))
        --last;
    if (last == start)
        return false;
    const char stop = text[last - 1];
    if (stop == '!' || stop == '?')
        return true;
    if (stop == '.') {
        if (text[next] >= 'a' && text[next] <= 'z')
            return false;
        const std::size_t blank = text.find_last_of(" \n", last - 1);
        const std::size_t word = blank == std::string_view::npos || blank < start ? start : blank + 1;
        return !IsAbbreviation(text.substr(word, last - 1 - word));
    }
    return at - start > LongSentence && (stop == ',' || stop == ';' || stop == ':');
}

// Blank in a text of ASCII.
bool IsBlankByte(char c)
{
    return IsBlank(static_cast<unsigned char>(c));
}

} // namespace

std::size_t FliteSentence::SourceOfToken(int filePosition) const
{
    // Flite's position is one character past the token, except at the end of the text.
    std::size_t at = std::min(static_cast<std::size_t>(std::max(filePosition, 1)), text.size()) - 1;
    while (at > 0 && IsBlankByte(text[at]))
        --at;
    return source[at];
}

std::vector<FliteSentence> SplitForFlite(const MarkedText& text)
{
    std::string ascii;
    std::vector<std::size_t> source;
    for (std::size_t i = 0; i < text.text.size(); ++i) {
        ascii += Ascii(text.text[i]);
        source.resize(ascii.size(), i);
    }

    std::vector<FliteSentence> sentences;
    const auto cut = [&](std::size_t start, std::size_t end) {
        const auto speakable = [](char c) { return IsLetter(c) || IsDigit(c) || c == '$' || c == '%' || c == '&'; };
        if (std::none_of(ascii.begin() + static_cast<std::ptrdiff_t>(start),
                         ascii.begin() + static_cast<std::ptrdiff_t>(end), speakable))
            return;
        FliteSentence& sentence = sentences.emplace_back();
        sentence.text = ascii.substr(start, end - start);
        sentence.source.assign(source.begin() + static_cast<std::ptrdiff_t>(start),
                               source.begin() + static_cast<std::ptrdiff_t>(end));
    };
    std::size_t start = 0;
    for (std::size_t i = 0; i < ascii.size(); ++i) {
        // Only the first of several blanks is tested: testing each would scan all of them again every time.
        if (IsBlankByte(ascii[i]) && (i == start || !IsBlankByte(ascii[i - 1])) && EndsSentence(ascii, start, i)) {
            cut(start, i);
            start = i;
            while (start < ascii.size() && IsBlankByte(ascii[start]))
                ++start;
            i = start;
        }
    }
    if (start < ascii.size())
        cut(start, ascii.size());
    return sentences;
}

} // namespace voxmate::speech
