// The encodings of texts from before Unicode.
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
    /// By a name that the system's iconv knows; one that it doesn't is Windows-1252.
    explicit CodePage(std::string name);

    /// The name of the code page that goes with a locale ("ru_RU.UTF-8"): its own, where that is not UTF-8, or else the
    /// one that Windows has for its language.
    static std::string NameFor(std::string_view locale);
    /// The one of the user's locale, as LC_ALL, LC_CTYPE or LANG told it when this was first asked for.
    static const CodePage& OfUser();

    /// Adds what the bytes say to `text`, in UTF-8, and returns how many were taken: all, but for a character that
    /// breaks off at their end, unless they are the last. A byte that says nothing becomes U+FFFD, from 0x80 to 0x9F
    /// the control character of its number.
    std::size_t Decode(std::string_view bytes, bool last, std::string& text) const;
    /// UTF-8 with stray bytes, each of which is read by the code page.
    std::string Repair(std::string_view text) const;

private:
    std::string name_;
    std::array<std::string, 128> single_; ///< each byte from 0x80 on, on its own
    bool severalBytes_ = false;           ///< some characters have more than one
};

/// A whole text, as LinuxTextStream reads those in files: with a byte-order mark as that says, without one in UTF-16 or
/// UTF-8 where it looks like it, or else in the code page. The text is UTF-8, its mark left out.
std::string DecodeText(std::string_view bytes, const CodePage& codePage = CodePage::OfUser());
/// UTF-16 without its mark, little-endian or not. Half a character becomes U+FFFD.
std::string DecodeUtf16(std::string_view bytes, bool littleEndian);

} // namespace voxmate::linux_platform
