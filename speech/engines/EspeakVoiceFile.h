// Loads an eSpeak NG voice at a chosen pitch, and finds what is installed with the library.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace voxmate::speech
{

/// The library's data folder; empty when there is none. The library's path must be initialised.
std::filesystem::path EspeakDataFolder();

/// Whether the library has this variant ("f2").
bool HasEspeakVariant(std::string_view variant);

/// Whether the program that makes the sound of MBROLA voices is installed.
bool HasMbrola();
/// The database ("de2") of the MBROLA voice with this identifier ("mb/mb-de2"); empty when it is not installed where
/// the library looks for it.
std::string MbrolaDatabase(const std::string& key);

/// Makes the library use the voice with this identifier ("gmw/en", with a variant "gmw/en+f2"). `hertz` is its median
/// pitch (0: the voice's own); `monotone` removes the intonation. False when the voice cannot be loaded. The library
/// must be initialised.
bool LoadEspeakVoice(const std::string& key, int hertz, bool monotone);

} // namespace voxmate::speech
