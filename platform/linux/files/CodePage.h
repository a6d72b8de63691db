// Text encodings from before Unicode.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace voxmate::linux_platform
{

/// A code page whose first half is ASCII.
class CodePage
{
public:
    /// Takes a name the system's iconv knows; an unknown name means Windows-1252.
    explicit CodePage(std::string name);

    /// The name given, or that of Windows-1252 in its place.
    const std::string& Name() const { return name_; }

    /// The code page for a locale ("ru_RU.UTF-8"): the locale's own encoding, unless that is UTF-8, otherwise the one
    /// Windows uses for the language.
    static std::string NameFor(std::string_view locale);
    /// The code page of the user's locale, taken from LC_ALL, LC_CTYPE or LANG at the first call.
    static const CodePage& OfUser();

    /// Decodes bytes, appends them to `text` in UTF-8 and returns how many were used: all, except for an incomplete
    /// character at the end unless `last` is set. An undefined byte becomes U+FFFD, or from 0x80 to 0x9F the control
    /// character of its number.
    std::size_t Decode(std::string_view bytes, bool last, std::string& text) const;
    /// Returns UTF-8 text with each invalid byte decoded by the code page.
    std::string Repair(std::string_view text) const;

private:
    std::string name_;
    std::array<std::string, 128> single_; ///< each byte from 0x80 on, decoded on its own
    bool severalBytes_ = false;           ///< some characters have more than one byte
};

/// Decodes a whole text as LinuxTextStream does for files: by its byte-order mark, without one as UTF-16 or UTF-8 where
/// it looks like that, or otherwise with the code page. Returns UTF-8 without the mark.
std::string DecodeText(std::string_view bytes, const CodePage& codePage = CodePage::OfUser());

} // namespace voxmate::linux_platform
