// A recording decoded in a process of its own, because recordings come from anywhere.
#pragma once

#include "platform/Helper.h"
#include "speech/sound/WaveFile.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace voxmate::speech
{

/// The name of the program that decodes.
inline constexpr const char* DecoderProgram = "voxmate-decoder";

/// What that program writes first. Its samples follow, 16 bits each.
struct RecordingHead {
    std::int64_t samplesPerSecond = 0; ///< 0: the input is no recording
    std::int64_t length = 0;           ///< in samples, by the recording's header; two days' at most
};

/// Says whether a recording is still wanted; asked every tenth of a second while there is nothing of it.
using Wanted = std::function<bool()>;

/// Starts the decoder on a file and reads what it writes (see WaveReader). Null when the path is no regular file or the
/// file is no recording. A decoder that ends early, and one that is not wanted any more, is the recording's end.
std::unique_ptr<WaveReader> OpenRecording(
    const std::string& path, Wanted wanted = [] { return true; });
/// For tests: the helper in place of one that is started.
std::unique_ptr<WaveReader> OpenRecording(std::unique_ptr<Helper> helper, Wanted wanted);

} // namespace voxmate::speech
