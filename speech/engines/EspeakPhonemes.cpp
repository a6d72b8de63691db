#include "speech/engines/EspeakPhonemes.h"

#include "base/Text.h"
#include "speech/engines/EspeakLibrary.h"
#include "speech/text/MarkedText.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace voxmate::speech
{

namespace
{

// How the library names phonemes: in the International Phonetic Alphabet (speak_lib.h, phonememode bit 1).
constexpr int Ipa = 0x02;

// The most pairs of phonemes that are compared for one clause; 1000 phonemes take a minute to say.
constexpr std::size_t MostSteps = 4'000'000;

// What ended a clause, in the library's numbers (translate.h): pause, intonation and kind.
constexpr int ClauseMask = 0xFFFFF;
constexpr int SentenceBit = 0x80000;
constexpr std::array<std::pair<int, char32_t>, 6> Terminators{
    {{0x80028, U'.'}, {0x41014, U','}, {0x82028, U'?'}, {0x8302D, U'!'}, {0x4001E, U':'}, {0x4101E, U';'}}};

/// Precomposed letters that stand for phonemes: a base letter and a combining mark, by Unicode's canonical
/// decomposition. Only those that eSpeak NG writes; a library for all of Unicode would be loaded for them alone.
struct Composed {
    char32_t letter;
    char32_t base;
    char32_t mark;
};
constexpr std::array<Composed, 14> ComposedLetters{{{U'ç', U'c', 0x327},
                                                    {U'ã', U'a', 0x303},
                                                    {U'ẽ', U'e', 0x303},
                                                    {U'ĩ', U'i', 0x303},
                                                    {U'õ', U'o', 0x303},
                                                    {U'ũ', U'u', 0x303},
                                                    {U'ñ', U'n', 0x303},
                                                    {U'á', U'a', 0x301},
                                                    {U'é', U'e', 0x301},
                                                    {U'í', U'i', 0x301},
                                                    {U'ó', U'o', 0x301},
                                                    {U'ú', U'u', 0x301},
                                                    {U'ä', U'a', 0x308},
                                                    {U'ö', U'o', 0x308}}};

bool IsPunctuation(char32_t c)
{
    return std::u32string_view(U".,?!:;").find(c) != std::u32string_view::npos;
}

// The mark that ends the text, for libraries that do not tell how a clause ended; 0 for none.
char32_t LastMark(std::u32string_view text)
{
    while (!text.empty() && !IsPunctuation(text.back())) {
        if (!IsBlank(text.back()) && std::u32string_view(U"\"')]}»”’").find(text.back()) == std::u32string_view::npos)
            return 0;
        text.remove_suffix(1);
    }
    return text.empty() ? U'\0' : text.back();
}

// The library reads a character or two ahead: a place inside a word is moved back to the word's beginning.
std::size_t ClauseEnd(std::u32string_view text, std::size_t begin, std::size_t end)
{
    if (end >= text.size())
        return text.size();
    std::size_t at = end;
    while (at > begin && !IsBlank(text[at - 1]))
        --at;
    return at > begin ? at : end;
}

// The phonemes of a text of one word.
std::u32string PhonemesOfWord(std::u32string_view word)
{
    const std::string text = EncodeUtf8(word);
    std::string ipa;
    for (const void* rest = text.c_str(); rest;) {
        const void* const before = rest;
        if (const char* const piece = Espeak().TextToPhonemes(&rest, espeakCHARS_UTF8, Ipa))
            ipa += piece;
        if (rest == before)
            break;
    }
    return PlainPhonemes(ipa);
}

// Appends the clause in parts that are not too long. The library ends a clause without a mark only after some 800
// characters, which a network would take a second and a half to begin with.
void AppendDivided(std::vector<Clause>& clauses, Clause clause)
{
    while (clause.phonemes.size() > LongestClause) {
        const std::size_t blank = clause.phonemes.rfind(U' ', LongestClause - 1);
        std::size_t size = blank == std::u32string::npos ? LongestClause : blank + 1;
        // A mark belongs to the sound before it.
        while (blank == std::u32string::npos && size > LongestClause / 2 && IsMark(clause.phonemes[size]))
            --size;
        const auto end = static_cast<std::ptrdiff_t>(size);
        clauses.push_back(
            {clause.phonemes.substr(0, size), {clause.source.begin(), clause.source.begin() + end}, false});
        clause.phonemes.erase(0, size);
        clause.source.erase(clause.source.begin(), clause.source.begin() + end);
    }
    clauses.push_back(std::move(clause));
}

} // namespace

bool IsMark(char32_t c)
{
    return (c >= 0x300 && c <= 0x36F) || std::u32string_view(U"ːˑʲʰʷˤ˞").find(c) != std::u32string_view::npos;
}

std::u32string PlainPhonemes(std::string_view ipa)
{
    std::u32string plain;
    int inside = 0;
    for (const char32_t c : DecodeUtf8(ipa)) {
        if (c == U'(')
            ++inside;
        else if (c == U')')
            inside = std::max(0, inside - 1);
        else if (inside == 0) {
            const auto found = std::find_if(ComposedLetters.begin(), ComposedLetters.end(),
                                            [c](const Composed& composed) { return composed.letter == c; });
            if (found == ComposedLetters.end())
                plain += c;
            else
                plain += {found->base, found->mark};
        }
    }
    return plain;
}

std::vector<std::size_t> SourcesOf(std::u32string_view phonemes, std::u32string_view text, std::size_t begin,
                                   std::size_t end, const std::function<std::u32string(std::u32string_view)>& spoken)
{
    // The words said one by one, and where each of their phonemes comes from.
    std::u32string alone;
    std::vector<std::size_t> places;
    std::size_t first = end;
    for (std::size_t at = begin; at < end;) {
        if (IsBlank(text[at])) {
            ++at;
            continue;
        }
        const std::size_t word = at;
        while (at < end && !IsBlank(text[at]))
            ++at;
        first = std::min(first, word);
        alone += spoken(text.substr(word, at - word));
        places.resize(alone.size(), word);
    }
    // Digits without end are one word with tens of thousands of phonemes: it is enough to go through both evenly.
    if (phonemes.size() * alone.size() > MostSteps || alone.empty()) {
        std::vector<std::size_t> sources(phonemes.size(), first);
        for (std::size_t i = 0; i < sources.size() && !alone.empty(); ++i)
            sources[i] = places[i * places.size() / sources.size()];
        return sources;
    }
    // The cheapest way from one text to the other in insertions, removals and replacements (Wagner and Fischer, 1974).
    const std::size_t rows = phonemes.size() + 1;
    const std::size_t columns = alone.size() + 1;
    std::vector<std::uint16_t> cost(columns);
    std::vector<std::uint16_t> above(columns);
    enum Step : std::uint8_t { Both, OnlyClause, OnlyWord };
    std::vector<Step> steps(rows * columns, OnlyWord);
    for (std::size_t c = 0; c < columns; ++c)
        cost[c] = static_cast<std::uint16_t>(c);
    for (std::size_t r = 1; r < rows; ++r) {
        std::swap(cost, above);
        cost[0] = static_cast<std::uint16_t>(r);
        steps[r * columns] = OnlyClause;
        for (std::size_t c = 1; c < columns; ++c) {
            const int both = above[c - 1] + (phonemes[r - 1] == alone[c - 1] ? 0 : 2);
            const int onlyClause = above[c] + 1;
            const int onlyWord = cost[c - 1] + 1;
            const int least = std::min({both, onlyClause, onlyWord});
            cost[c] = static_cast<std::uint16_t>(least);
            steps[r * columns + c] = least == both ? Both : least == onlyClause ? OnlyClause : OnlyWord;
        }
    }
    std::vector<std::size_t> sources(phonemes.size(), first);
    std::size_t r = phonemes.size();
    std::size_t c = alone.size();
    while (r > 0) {
        const Step step = steps[r * columns + c];
        if (step == OnlyWord) {
            --c;
            continue;
        }
        // A phoneme that no word has by itself belongs to the word that is being said.
        --r;
        if (c > 0)
            sources[r] = places[c - 1];
        if (step == Both)
            --c;
    }
    return sources;
}

std::vector<Clause> ClausesOf(const std::string& voice, std::u32string_view text)
{
    std::vector<Clause> clauses;
    if (!InitialiseEspeak() || Espeak().SetVoiceByName(voice.c_str()) != EE_OK)
        return clauses;
    const std::string utf8 = EncodeUtf8(text);
    struct Range {
        std::size_t begin;
        std::size_t end;
    };
    std::vector<Range> ranges;
    std::size_t byte = 0;
    std::size_t begin = 0;
    std::size_t reached = 0;
    for (const void* rest = utf8.c_str(); rest;) {
        const void* const before = rest;
        int terminator = 0;
        const char* const ipa = Espeak().TextToPhonemesWithTerminator
                                    ? Espeak().TextToPhonemesWithTerminator(&rest, espeakCHARS_UTF8, Ipa, &terminator)
                                    : Espeak().TextToPhonemes(&rest, espeakCHARS_UTF8, Ipa);
        if (rest == before)
            break;
        const auto next = rest ? static_cast<std::size_t>(static_cast<const char*>(rest) - utf8.c_str()) : utf8.size();
        for (; byte < std::min(next, utf8.size()); ++byte)
            if ((static_cast<unsigned char>(utf8[byte]) & 0xC0U) != 0x80U)
                ++reached;
        const std::size_t end = rest ? ClauseEnd(text, begin, reached) : text.size();
        Clause clause;
        clause.phonemes = ipa ? PlainPhonemes(ipa) : U"";
        char32_t mark = 0;
        if (Espeak().TextToPhonemesWithTerminator) {
            const auto found = std::find_if(Terminators.begin(), Terminators.end(), [terminator](const auto& known) {
                return known.first == (terminator & ClauseMask);
            });
            mark = found == Terminators.end() ? U'\0' : found->second;
            clause.endsSentence = (terminator & SentenceBit) != 0;
        } else {
            const std::u32string_view own = text.substr(begin, end - begin);
            mark = LastMark(own);
            // A paragraph ends a sentence, too.
            clause.endsSentence =
                mark == U'.' || mark == U'?' || mark == U'!' || !rest || own.find(U"\n\n") != std::u32string_view::npos;
        }
        if (mark)
            clause.phonemes += mark;
        if (mark == U',' || mark == U':' || mark == U';')
            clause.phonemes += U' ';
        clauses.push_back(std::move(clause));
        ranges.push_back({begin, end});
        begin = end;
    }
    // Only now, because the library keeps the character it has read ahead from one call to the next.
    std::vector<Clause> divided;
    for (std::size_t i = 0; i < clauses.size(); ++i) {
        clauses[i].source = SourcesOf(clauses[i].phonemes, text, ranges[i].begin, ranges[i].end, PhonemesOfWord);
        AppendDivided(divided, std::move(clauses[i]));
    }
    return divided;
}

} // namespace voxmate::speech
