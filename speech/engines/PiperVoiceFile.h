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

/// A text that is shown: in one line and in whole letters, without blanks at its ends.
std::string OneLine(const std::string& text);

/// Reads what the .json file beside a network tells of its voice. Nothing when one of them is no file, or the .json is
/// larger than 1 MB, no description, or one of a kind of voice that is not spoken here; `why` then says so in one line.
std::optional<PiperVoiceFile> ReadPiperVoice(const std::filesystem::path& model, std::string& why);

/// The numbers of the phonemes between the marks of begin and end, with the mark "_" behind each; a phoneme that the
/// voice's table lacks is left out. `places` receives the index of each phoneme's first number.
std::vector<std::int64_t> NumbersOf(const PiperVoiceFile& voice, std::u32string_view phonemes,
                                    std::vector<std::size_t>& places);

/// The folders in which voices are looked for, in this order: the program's own; those of others below `data`, where
/// programs keep the user's data (~/.local/share), and below `home`; and the system's.
std::vector<std::filesystem::path> PiperFolders(const std::filesystem::path& own, const std::filesystem::path& data,
                                                const std::filesystem::path& home);

/// The networks (.onnx) in the folders, whether or not they are files. At most five levels deep and 1000 of them; links
/// to folders are not followed.
std::vector<std::filesystem::path> FindPiperModels(const std::vector<std::filesystem::path>& folders);

} // namespace voxmate::speech
