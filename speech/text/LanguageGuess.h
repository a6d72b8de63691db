// In which language a text is written.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::speech
{

/// Whether languages can be told apart: not where the program was built without the library that does.
bool GuessesLanguages();

/// The language of a text in UTF-8, as LanguageFamily names it ("de", "zh"); `expected`, named likewise, where that
/// fits as well as another ("da", "no"). Empty for a text that is too short or too mixed to tell.
std::string LanguageOf(std::string_view text, std::string_view expected);

} // namespace voxmate::speech
