// By the Compact Language Detector 2, which counts groups of four letters.
#include "speech/text/LanguageGuess.h"

#include "speech/text/Languages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio> // the next header needs it

#include <cld2/public/compact_lang_det.h>
#include <cld2/public/encodings.h>

namespace voxmate::speech
{

namespace
{

// Of a longer text its beginning says enough.
constexpr std::size_t MostBytes = 4096;
// A text with fewer bytes of letters, as the library counts them, is not taken for another language than the expected
// one: "Berlin" alone counts 8 and would be Indonesian, "Einleitung" 12.
constexpr int FewestBytes = 12;
// The share of the text in percent that must be in the language; names and quotations are in others.
constexpr int SmallestShare = 60;

} // namespace

bool GuessesLanguages()
{
    return true;
}

std::string LanguageOf(std::string_view text, std::string_view expected)
{
    std::size_t size = std::min(text.size(), MostBytes);
    // Not in the middle of a character.
    while (size > 0 && size < text.size() && (static_cast<unsigned char>(text[size]) & 0xC0U) == 0x80U)
        --size;
    std::array<CLD2::Language, 3> languages{};
    std::array<int, 3> shares{};
    std::array<double, 3> scores{};
    int letters = 0;
    int valid = 0;
    bool reliable = false;
    const CLD2::CLDHints hints{nullptr, nullptr, CLD2::UNKNOWN_ENCODING,
                               CLD2::GetLanguageFromName(std::string(expected).c_str())};
    CLD2::ExtDetectLanguageSummaryCheckUTF8(text.data(), static_cast<int>(size), true, &hints, 0, languages.data(),
                                            shares.data(), scores.data(), nullptr, &letters, &reliable, &valid);
    if (!reliable || shares[0] < SmallestShare || languages[0] == CLD2::UNKNOWN_LANGUAGE)
        return {};
    std::string language = LanguageFamily(CLD2::LanguageCode(languages[0]));
    return letters >= FewestBytes || language == expected ? language : "";
}

} // namespace voxmate::speech
