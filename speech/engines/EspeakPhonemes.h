// A text as eSpeak NG's phonemes, clause by clause, with the place in the text each phoneme comes from.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::speech
{

struct Clause {
    /// Phonemes in the International Phonetic Alphabet, marks as characters of their own, words with a blank between
    /// them; the clause's punctuation mark (one of ".?!,:;") at the end, and a blank behind ",", ":" and ";".
    std::u32string phonemes;
    std::vector<std::size_t> source; ///< of each: the index of the first character of its word in the text
    bool endsSentence = false;
};

/// The most phonemes of a clause: ten seconds of speech.
constexpr std::size_t LongestClause = 200;

/// The clauses of a text in the voice that eSpeak NG has under this name ("en-us"). A longer one than
/// LongestClause is divided between two words. Empty when the library or the voice is missing, and for a text in which
/// nothing is said.
std::vector<Clause> ClausesOf(const std::string& voice, std::u32string_view text);

/// Whether a character of a phoneme changes the one before it, as that of a long vowel does.
bool IsMark(char32_t c);

/// What the library writes for phonemes: without its notes of other languages ("(en)"), and decomposed.
std::u32string PlainPhonemes(std::string_view ipa);

/// The source of each phoneme of a clause, when `spoken` gives the phonemes of one word alone. A word is a run of
/// characters without blanks between `begin` and `end`. Words that are said together share their phonemes by likeness.
std::vector<std::size_t> SourcesOf(std::u32string_view phonemes, std::u32string_view text, std::size_t begin,
                                   std::size_t end,
                                   const std::function<std::u32string(std::u32string_view word)>& spoken);

} // namespace voxmate::speech
