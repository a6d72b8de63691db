// File names on file systems that distinguish capital from small letters.
#pragma once

#include <string>
#include <string_view>

namespace voxmate
{

/// The path of an existing file that differs from `path` at most in the case of its extension ("Bo.ACS" for "Bo.acs"):
/// `path` itself if that exists, else the first such file in alphabetical order. Returns `path` when there is none.
std::string InAnyExtensionCase(const std::string& path);

/// Whether a file's name matches a pattern as shells have them: "*" stands for any number of characters, "?" for one,
/// "[0-9]" for one from the first to the last. Capital and small letters of ASCII are the same.
bool MatchesPattern(std::string_view name, std::string_view pattern);

/// A file's name without its folder.
std::string_view NameOfPath(std::string_view path);

/// The address of a file of this computer, given by its full path: every byte except unreserved characters, "/" and ":"
/// is written as %XX (RFC 3986). On Windows backslashes are slashes, and a path of the network names its computer.
std::string AddressOfPath(const std::string& path);
/// The bytes that a text with %XX for some of them stands for. A percent sign without two hexadecimal digits behind it
/// stays.
std::string PercentDecoded(std::string_view text);
/// Whether this is an address: a scheme of two letters or more, and "://" or, for files, ":/".
bool IsAddress(std::string_view text);
/// The path that the address of a file of this computer names, with any bytes; every other address unchanged. On
/// Windows it has backslashes and no slash before its drive, and files of other computers have paths, too.
std::string PathOfAddress(const std::string& address);

} // namespace voxmate
