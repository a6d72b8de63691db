// The identifier by which a voice is chosen and remembered.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::speech
{

/// A GUID in upper-case text form without braces, made from the family of engines ("espeak") and the family's own key
/// of the voice ("gmw/en") alone, so that it is the same in every run and on every machine. Its form is RFC 9562
/// version 8 (custom): 128 bits of two FNV-1a hashes of "family/key", mixed, with version 8 and variant 2 set over
/// them.
std::string ModeIdOf(std::string_view family, std::string_view key);

} // namespace voxmate::speech
