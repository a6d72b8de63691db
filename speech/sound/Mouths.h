// Which mouth goes with which sound: 0 closed, 1 to 4 wide open in four shapes (ah, eh, oh, ee), 5 medium, 6 narrow.
#pragma once

#include <string_view>

namespace voxmate::speech
{

/// The mouth for a phoneme in the International Phonetic Alphabet (UTF-8, as eSpeak NG names it); a pause (an empty
/// name or one of underscores) is closed, what is not known is medium.
int MouthOfIpa(std::string_view name);

/// The mouth for a phoneme of Flite's English phone set ("aa", "dh", "pau"); what is not known is medium.
int MouthOfFlitePhone(std::string_view name);

/// The mouth for a loudness (root mean square of 16-bit samples) in a recording that is `loudest` where it is loud;
/// closed when that is 0.
int MouthOfLoudness(double level, double loudest);

} // namespace voxmate::speech
