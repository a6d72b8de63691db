// What the recorder tells the program while it works: one line for each piece of news.
#pragma once

#include "readers/Refusal.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace voxmate::recording
{

struct News {
    enum class Kind {
        Progress,   ///< so much has been spoken
        Done,       ///< all is saved
        Refused,    ///< the document cannot be read; nothing is saved
        NoVoice,    ///< the voice cannot speak
        DiskFull,   ///< there is no room for the file
        NotWritten, ///< the file or the folder cannot be written
    };
    Kind kind = Kind::Progress;
    std::uint64_t spoken = 0;       ///< Progress: bytes of text
    std::uint64_t all = 0;          ///< Progress: of so many; 0 as long as that is not known
    std::uint64_t milliseconds = 0; ///< Progress, Done: of sound so far
    int files = 0;                  ///< Done
    /// Refused: why. Done: why the text behind what was saved could not be read; None when all was.
    readers::Refusal refusal = readers::Refusal::None;
    bool otherVoice = false; ///< Done: whether another voice has spoken in place of the one chosen

    bool operator==(const News&) const = default;
};

/// A line with its end, and back without it; nothing when it is no news.
std::string EncodeNews(const News& news);
std::optional<News> DecodeNews(std::string_view line);

} // namespace voxmate::recording
