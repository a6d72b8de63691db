// Why a document is not read, or not to its end.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <string_view>

namespace voxmate::readers
{

enum class Refusal : std::uint8_t {
    None,
    NotFound,
    NotAllowed,     ///< its rights forbid it, or it is a folder or a device
    CannotRead,     ///< the disk or the network failed
    Damaged,        ///< also when its reader crashed
    Protected,      ///< by a password or by rights management
    TooLarge,       ///< itself or, unpacked, its content; or it takes more memory than a reader gets
    TooLong,        ///< it took more processor time than a reader gets
    Unknown,        ///< nothing that can be read as a text
    NoText,         ///< empty, or nothing but pictures
    NeedsConverter, ///< the word processor can read it
    Sound,          ///< a recording
    NoReader,       ///< the program that reads documents cannot be started
};
inline constexpr Refusal LastRefusal = Refusal::NoReader;

/// One sentence for the user that names the file, without its folder, and the reason. `begun` tells that a part of the
/// text has been read. Empty for Refusal::None.
std::string Sentence(Refusal refusal, std::string_view path, bool begun);

/// Ends the reading of a document.
class Refused : public std::exception
{
public:
    explicit Refused(Refusal refusal) : reason(refusal) {}
    const char* what() const noexcept override { return "the document is refused"; }

    Refusal reason;
};

} // namespace voxmate::readers
