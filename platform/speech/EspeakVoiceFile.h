// Loads an eSpeak NG voice at a pitch of our choosing.
#pragma once

#include <string>

namespace voxmate::speech
{

/// Makes the library use the voice with this identifier ("gmw/en"), its median pitch at `hertz` (0: the voice's own),
/// without intonation when `monotone`. False when the voice cannot be loaded. The library must be initialised.
bool LoadEspeakVoice(const std::string& key, int hertz, bool monotone);

} // namespace voxmate::speech
