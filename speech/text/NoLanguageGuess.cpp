// Where the library that tells languages apart is missing.
#include "speech/text/LanguageGuess.h"

namespace voxmate::speech
{

bool GuessesLanguages()
{
    return false;
}

std::string LanguageOf(std::string_view, std::string_view)
{
    return {};
}

} // namespace voxmate::speech
