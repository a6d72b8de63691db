#include "readers/text/Sentences.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <utility>

#include <unicode/ubrk.h>
#include <unicode/utext.h>

namespace voxmate::readers
{

namespace
{

struct CloseText {
    void operator()(UText* text) const { ::utext_close(text); }
};
struct CloseIterator {
    void operator()(UBreakIterator* iterator) const { ::ubrk_close(iterator); }
};

// Making one reads tables and takes milliseconds. Null where the library has no tables.
UBreakIterator* Iterator()
{
    static const std::unique_ptr<UBreakIterator, CloseIterator> iterator = [] {
        UErrorCode error = U_ZERO_ERROR;
        std::unique_ptr<UBreakIterator, CloseIterator> made(
            ::ubrk_open(UBRK_SENTENCE, "en@ss=standard", nullptr, 0, &error));
        return U_SUCCESS(error) ? std::move(made) : nullptr;
    }();
    return iterator.get();
}

// Abbreviations that the library's tables do not have: those that end no sentence, and those that end none before a
// number.
constexpr std::array<std::string_view, 12> BeforeAnything{"Dr.",  "Mr.",  "Mrs.", "Ms.", "St.", "Prof.",
                                                          "Mme.", "e.g.", "i.e.", "cf.", "vs.", "resp."};
constexpr std::array<std::string_view, 11> BeforeNumbers{"No.",   "Nos.", "Nr.", "Fig.", "Figs.", "Vol.",
                                                         "Chap.", "Sec.", "Eq.", "p.",   "pp."};

// Whether the last word of `sentence` ends no sentence before `next`.
bool GoesOn(std::string_view sentence, std::string_view next)
{
    const std::string_view words = Trimmed(sentence);
    const std::string_view last = words.substr(words.find_last_of(" ([\"'") + 1);
    const auto is = [last](std::string_view abbreviation) { return last == abbreviation; };
    return !sentence.ends_with('\n') &&
           (std::any_of(BeforeAnything.begin(), BeforeAnything.end(), is) ||
            (!next.empty() && IsDigit(next.front()) && std::any_of(BeforeNumbers.begin(), BeforeNumbers.end(), is)));
}

} // namespace

std::vector<std::size_t> SentenceEnds(std::string_view text)
{
    std::vector<std::size_t> ends;
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UText, CloseText> source(
        ::utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &error));
    if (UBreakIterator* iterator = Iterator(); iterator && source) {
        ::ubrk_setUText(iterator, source.get(), &error);
        if (U_SUCCESS(error)) {
            ::ubrk_first(iterator);
            for (std::int32_t next = ::ubrk_next(iterator); next != UBRK_DONE; next = ::ubrk_next(iterator)) {
                const auto at = static_cast<std::size_t>(next);
                const std::size_t begin = ends.empty() ? 0 : ends.back();
                if (!GoesOn(text.substr(begin, at - begin), text.substr(at)))
                    ends.push_back(at);
            }
        }
    }
    if (!text.empty() && (ends.empty() || ends.back() != text.size()))
        ends.push_back(text.size());
    return ends;
}

} // namespace voxmate::readers
