// The identifier by which a voice is chosen and remembered.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::speech
{

/// A GUID in upper-case text form without braces. It is made only from the engine family ("espeak") and the family's
/// key for the voice ("gmw/en"), so it is the same in every run and on every machine. Its form is RFC 9562 version 8
/// (custom): 128 bits from two mixed FNV-1a hashes of "family/key", with version 8 and variant 2 set in them.
std::string ModeIdOf(std::string_view family, std::string_view key);

} // namespace voxmate::speech
