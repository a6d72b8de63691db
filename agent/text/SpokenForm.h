// How symbols are read aloud in the contexts "Address" and "E-mail" of the output tag \Ctx.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::agent
{

enum class SpeechContext { Unknown, Address, Email };

/// What is said, in English, for one word (text without blanks): the word itself when nothing in it is read specially.
std::string SpokenForm(std::string_view word, SpeechContext context);

} // namespace voxmate::agent
