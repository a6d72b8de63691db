#include "readers/text/Hyphens.h"

#include "base/Text.h"

#include <algorithm>
#include <array>

namespace voxmate::readers
{

namespace
{

constexpr std::size_t MostWords = 100'000;
constexpr std::size_t LongestWord = 100;
constexpr std::string_view SoftHyphen = "\xC2\xAD";
constexpr std::string_view Hyphen = "\xE2\x80\x90"; // U+2010

// Whether a byte can be part of a word: a letter, a digit, a hyphen within, or part of a character beyond ASCII.
bool IsWordByte(char c)
{
    return IsLetter(c) || IsDigit(c) || c == '-' || c == '\'' || static_cast<unsigned char>(c) >= 0x80;
}

std::string_view LastWord(std::string_view text)
{
    std::size_t begin = text.size();
    while (begin > 0 && text.size() - begin < LongestWord && IsWordByte(text[begin - 1]))
        --begin;
    return text.substr(begin);
}

std::string_view FirstWord(std::string_view text)
{
    std::size_t end = 0;
    while (end < text.size() && end < LongestWord && IsWordByte(text[end]))
        ++end;
    return text.substr(0, end);
}

std::string_view FirstCharacter(std::string_view text)
{
    return Left(text, 1);
}

bool IsSmallLetter(std::string_view character)
{
    return !character.empty() && UCase(character) != character;
}

bool IsCapital(std::string_view character)
{
    return !character.empty() && (IsLetter(character[0]) || static_cast<unsigned char>(character[0]) >= 0xC3) &&
           !IsSmallLetter(character);
}

// "Ein- und Ausgang": the hyphen stands for the rest of a word that comes later.
bool Joins(std::string_view word)
{
    constexpr std::array<std::string_view, 10> words{"und", "oder", "bzw", "bis", "and",
                                                     "or",  "to",   "et",  "ou",  "sowie"};
    return std::find(words.begin(), words.end(), word) != words.end();
}

} // namespace

void Vocabulary::Add(std::string_view text)
{
    while (!text.empty() && words_.size() < MostWords) {
        const std::string_view word = FirstWord(text);
        if (word.size() > 3)
            words_.insert(UCase(word));
        text.remove_prefix(std::max<std::size_t>(word.size(), 1));
    }
}

bool Vocabulary::Has(std::string_view word) const
{
    return words_.contains(UCase(word));
}

void AppendLine(std::string& paragraph, std::string_view line, const Vocabulary& vocabulary)
{
    if (line.empty())
        return;
    if (paragraph.empty()) {
        paragraph = line;
        return;
    }
    if (paragraph.ends_with(SoftHyphen)) {
        paragraph.resize(paragraph.size() - SoftHyphen.size());
        paragraph += line;
        return;
    }
    const std::size_t hyphen = paragraph.ends_with('-') ? 1 : paragraph.ends_with(Hyphen) ? Hyphen.size() : 0;
    const std::string_view before = LastWord(std::string_view(paragraph).substr(0, paragraph.size() - hyphen));
    const std::string_view after = FirstWord(line);
    const std::string_view first = FirstCharacter(line);
    const bool divided = hyphen > 0 && !before.empty() && !before.ends_with('-') && !IsDigit(before.back());
    if (!divided || Joins(after) || (!IsSmallLetter(first) && !IsCapital(first))) {
        // A number range or a dash stays as it is.
        const bool range = hyphen > 0 && !before.empty() && IsDigit(before.back()) && IsDigit(line[0]);
        paragraph += range ? "" : " ";
        paragraph += line;
        return;
    }
    const std::string joined = std::string(before) + std::string(after);
    const std::string hyphened = std::string(before) + "-" + std::string(after);
    const bool keeps = vocabulary.Has(hyphened) && !vocabulary.Has(joined);
    if (IsSmallLetter(first) && !keeps)
        paragraph.resize(paragraph.size() - hyphen);
    paragraph += line;
}

} // namespace voxmate::readers
