// A neural voice in Piper's form: the network NAME.onnx, and NAME.onnx.json, which tells how it is used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::speech
{

struct PiperVoiceFile {
    std::filesystem::path model;
    std::string name;        ///< of whom it is: "joe"
    std::string quality;     ///< "medium"; may be empty
    std::string language;    ///< BCP 47, lower case: "en-us"
    std::string place;       ///< language and country in English: "English, United States"; may be empty
    std::string espeakVoice; ///< the voice of eSpeak NG whose phonemes it was trained on
    int sampleRate = 0;      ///< 8000 to 48000
    float noiseScale = 0.667F;
    float lengthScale = 1;
    float noiseWidth = 0.8F;
    int symbols = 0;                   ///< its numbers are below this
    std::vector<std::string> speakers; ///< their names by number; empty for a voice of one speaker
    /// The numbers of each phoneme, and of the marks "^" (begin), "$" (end) and "_" (between).
    std::map<char32_t, std::vector<std::int64_t>> numbers;
};

/// Reads what a .json file tells of a voice. Nothing when it is no such file, is larger than 1 MB, or describes a kind
/// of voice that is not spoken here; `why` then says so in one sentence.
std::optional<PiperVoiceFile> ReadPiperVoice(const std::filesystem::path& model, std::string& why);

/// The numbers of the phonemes between the marks of begin and end, with the mark "_" behind each; a phoneme that the
/// voice's table lacks is left out. `places` receives the index of each phoneme's first number.
std::vector<std::int64_t> NumbersOf(const PiperVoiceFile& voice, std::u32string_view phonemes,
                                    std::vector<std::size_t>& places);

/// The folders in which voices are looked for, in this order: the program's own and those of others, in the user's data
/// folder (~/.local/share, where `own` has its usual place, voxmate/voices) and the system's.
std::vector<std::filesystem::path> PiperFolders(const std::filesystem::path& own);

/// The networks (.onnx) in the folders that have a .json beside them, without those of a name that was found before. At
/// most five levels deep and 1000 files; links to folders are not followed.
std::vector<std::filesystem::path> FindPiperModels(const std::vector<std::filesystem::path>& folders);

} // namespace voxmate::speech
