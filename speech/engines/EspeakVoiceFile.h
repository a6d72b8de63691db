// Loads an eSpeak NG voice at a pitch of our choosing.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace voxmate::speech
{

/// Where the library's data is; empty when it has none. Its path must have been initialised.
std::filesystem::path EspeakDataFolder();

/// Whether the library has this variant ("f2").
bool HasEspeakVariant(std::string_view variant);

/// Whether the program is installed that makes the sound of MBROLA voices.
bool HasMbrola();
/// The database ("de2") of the MBROLA voice with this identifier ("mb/mb-de2") if it is installed where the library
/// looks for it, else nothing.
std::string MbrolaDatabase(const std::string& key);

/// Makes the library use the voice with this identifier ("gmw/en", with a variant "gmw/en+f2"), its median pitch at
/// `hertz` (0: the voice's own), without intonation when `monotone`. False when the voice cannot be loaded. The library
/// must be initialised.
bool LoadEspeakVoice(const std::string& key, int hertz, bool monotone);

} // namespace voxmate::speech
