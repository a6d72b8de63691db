// Sound files of speech: one channel, written as they are spoken.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::speech
{

/// What a sound file says about itself, as far as its kind has room for it.
struct SoundLabels {
    std::string title; ///< UTF-8; empty: none
    std::string album; ///< the book whose chapter it is; empty: none
    int track = 0;     ///< its number among the files of the book, from 1; 0: none
};

/// The kinds of sound files that can be written here, by the extension of their names: some of "ogg", "mp3", "flac" and
/// "wav", in this order. Which, depends on how libsndfile was built; none without it. Loads it at the first call.
std::vector<std::string> WritableSounds();

class SoundWriter
{
public:
    virtual ~SoundWriter() = default;
    /// Creates the file, or empties it, for mono samples of that rate. A rate that the kind does not know is converted
    /// to 48000. Null when the file cannot be created or `kind` is none of WritableSounds.
    static std::unique_ptr<SoundWriter> Create(const std::string& path, std::string_view kind, int samplesPerSecond,
                                               const SoundLabels& labels);
    /// Adds samples; false when that failed, as it does on a full disk.
    virtual bool Write(std::span<const std::int16_t> samples) = 0;
    /// Completes the file; false when that failed. Nothing may be written any more.
    virtual bool Close() = 0;
};

} // namespace voxmate::speech
