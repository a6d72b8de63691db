// The mouth for each sound: 0 closed, 1 to 4 wide open in four shapes (ah, eh, oh, ee), 5 medium, 6 narrow.
#pragma once

#include <string_view>

namespace voxmate::speech
{

/// The mouth for a phoneme in the International Phonetic Alphabet (UTF-8, as eSpeak NG names it). A pause (an empty
/// name or only underscores) is closed; an unknown phoneme is medium.
int MouthOfIpa(std::string_view name);

/// The mouth for a phoneme of Flite's English phone set ("aa", "dh", "pau"); an unknown phoneme is medium.
int MouthOfFlitePhone(std::string_view name);

/// The mouth for a loudness `level` in a recording whose loud passages reach `loudest`, both as the root mean square of
/// 16-bit samples. Closed when `loudest` is 0.
int MouthOfLoudness(double level, double loudest);

} // namespace voxmate::speech
