// What is to be saved as sound, as the program hands it to the recorder.
#pragma once

#include "platform/WordingControl.h"
#include "readers/Block.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::recording
{

struct Job {
    // The voice.
    std::string voice;              ///< its mode identifier
    std::string voiceName;          ///< its name; a variant is known only by that
    std::string language;           ///< the desktop's locale, which chooses who reads other writings
    std::string addedVoices;        ///< the folder of the voices that the user added
    std::string prefix;             ///< the tags of pitch, speed and whisper in front of each part
    std::vector<WordingRule> rules; ///< see WordingControl::UseWording
    bool shortens = false;          ///< the same
    bool byLanguage = false;        ///< see WordingControl::UseVoicesByLanguage

    // What is spoken: the first of these that is not empty.
    std::string document; ///< path of a file that is read as documents are
    std::string text;     ///< a text with output tags

    /// In place of a document's content, where the word processor has read it: its blocks.
    std::vector<readers::Block> blocks;

    // The files.
    std::string kind;      ///< "ogg", see speech::WritableSounds
    std::string title;     ///< of the whole
    std::string path;      ///< the file to be written, or the folder of the chapters' files
    std::string temporary; ///< what has this name while it is written, in the same folder
    bool chapters = false; ///< each chapter becomes a file of its own in the folder

    bool operator==(const Job&) const = default;
};

/// The job as bytes, and back; nothing when they are no job.
std::string EncodeJob(const Job& job);
std::optional<Job> DecodeJob(std::string_view bytes);

} // namespace voxmate::recording
