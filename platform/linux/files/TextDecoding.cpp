#include "platform/TextDecoding.h"

#include "base/Text.h"
#include "platform/linux/files/CodePage.h"

#include <algorithm>
#include <map>

namespace voxmate
{

using linux_platform::CodePage;

std::optional<std::string> DecodeFrom(std::string_view bytes, const std::string& encoding)
{
    // A name goes to the system's converter; what follows a slash there has a meaning of its own.
    const bool named = !encoding.empty() && std::all_of(encoding.begin(), encoding.end(), [](char c) {
        return IsLetter(c) || IsDigit(c) || c == '-' || c == '_' || c == '.' || c == ':';
    });
    if (!named)
        return std::nullopt;
    std::string name = UCase(encoding);
    // The Encoding Standard reads these as Windows-1252, which has letters where they have control characters.
    if (name == "ISO-8859-1" || name == "ISO8859-1" || name == "LATIN1" || name == "US-ASCII" || name == "ASCII" ||
        name == "WINDOWS-1252")
        name = "CP1252";
    if (name == "SHIFT_JIS" || name == "SJIS" || name == "X-SJIS")
        name = "CP932";
    // Making one asks the converter for every byte; documents change between few.
    thread_local std::map<std::string, CodePage> pages;
    const CodePage& page = pages.try_emplace(name, name).first->second;
    if (page.Name() != name)
        return std::nullopt;
    std::string text;
    page.Decode(bytes, true, text);
    return text;
}

std::string DecodeUnknown(std::string_view bytes)
{
    return linux_platform::DecodeText(bytes, CodePage::OfUser());
}

} // namespace voxmate
