#include "agent/text/SpokenForm.h"

#include "base/Text.h"

#include <array>
#include <utility>

namespace voxmate::agent
{

namespace
{

using Names = std::array<std::pair<char, const char*>, 5>;
// In an e-mail address every symbol is said; in a postal address only those that stand for a word.
constexpr Names kEmailNames{{{'@', "at"}, {'.', "dot"}, {'_', "underscore"}, {'-', "dash"}, {'/', "slash"}}};
constexpr Names kAddressNames{{{'#', "number"}, {'&', "and"}, {'@', "at"}, {'+', "plus"}, {'%', "percent"}}};
constexpr std::array<std::pair<const char*, const char*>, 8> kAddressWords{{{"St.", "Street"},
                                                                            {"Ave.", "Avenue"},
                                                                            {"Rd.", "Road"},
                                                                            {"Blvd.", "Boulevard"},
                                                                            {"Dr.", "Drive"},
                                                                            {"Ln.", "Lane"},
                                                                            {"Apt.", "Apartment"},
                                                                            {"No.", "Number"}}};

std::string ReadSymbols(std::string_view word, const Names& names)
{
    // Punctuation that ends a word belongs to the sentence, not to the address.
    const std::size_t last = word.find_last_not_of(".,;:!?-)");
    const std::size_t end = last == std::string_view::npos ? 0 : last + 1;
    std::string spoken;
    for (std::size_t i = 0; i < end; ++i) {
        const char* name = nullptr;
        for (const auto& [symbol, symbolName] : names)
            if (word[i] == symbol)
                name = symbolName;
        if (!name) {
            spoken += word[i];
            continue;
        }
        if (!spoken.empty() && spoken.back() != ' ')
            spoken += ' ';
        spoken += name;
        if (i + 1 < end)
            spoken += ' ';
    }
    return spoken.append(word.substr(end));
}

} // namespace

std::string SpokenForm(std::string_view word, SpeechContext context)
{
    if (context == SpeechContext::Email)
        return ReadSymbols(word, kEmailNames);
    if (context == SpeechContext::Address) {
        for (const auto& [written, spoken] : kAddressWords) {
            const std::string_view form = written;
            if (word.size() >= form.size() && EqualNoCase(word.substr(0, form.size()), form))
                return std::string(spoken).append(word.substr(form.size()));
        }
        return ReadSymbols(word, kAddressNames);
    }
    return std::string(word);
}

} // namespace voxmate::agent
