// How symbols are read in the contexts "Address" and "E-mail" of the output tag \Ctx.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::agent
{

enum class SpeechContext { Unknown, Address, Email };

/// What is said for one word (text without blanks): the word itself where nothing in it is read specially. English.
std::string SpokenForm(std::string_view word, SpeechContext context);

} // namespace voxmate::agent
