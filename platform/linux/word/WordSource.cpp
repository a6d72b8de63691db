#include "platform/linux/word/WordSource.h"

#include "base/Text.h"
#include "base/TextEncoding.h"
#include "platform/linux/files/LinuxTextStream.h"
#include "platform/linux/files/WholeFile.h"
#include "platform/linux/word/WebArchive.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <system_error>

namespace voxmate::linux_platform
{

namespace fs = std::filesystem;

namespace
{

/// The bytes of a file that are enough to tell what it is.
constexpr std::size_t HeadSize = std::size_t{64} * 1024;

// Signatures of compound files ([MS-CFB]), ZIP archives, rich text, and two older kinds of binary documents.
bool IsWordProcessors(std::string_view head)
{
    constexpr std::array<std::string_view, 5> signatures{"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", "PK\x03\x04", "{\\rtf",
                                                         "\xDB\xA5", "\x31\xBE"};
    return std::any_of(signatures.begin(), signatures.end(),
                       [&](auto signature) { return head.starts_with(signature); });
}

// Whether the beginning of a decoded text has only characters that occur in texts.
bool IsText(std::string_view decoded)
{
    return std::all_of(decoded.begin(), decoded.end(), [](char c) {
        // Allowed control characters: tab to carriage return, the end mark of old systems' files, and escape.
        return static_cast<unsigned char>(c) >= 0x20 || (c >= '\t' && c <= '\r') || c == '\x1A' || c == '\x1B';
    });
}

// Whether a text is markup that declares its encoding: XML, which is UTF-8 by default, or a page that contains
// "charset".
bool TellsItsEncoding(std::string_view decoded)
{
    decoded = Trimmed(decoded, " \t\r\n");
    return decoded.starts_with("<?xml") || (decoded.starts_with("<") && ContainsNoCase(decoded, "charset"));
}

bool WriteFile(const std::string& path, std::string_view content)
{
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    return file.good();
}

bool WriteText(const std::string& path, const std::string& bytes, const CodePage& codePage)
{
    if (TellsItsEncoding(DecodeText(std::string_view(bytes).substr(0, HeadSize), codePage)))
        return WriteFile(path, bytes);
    return WriteFile(path, "\xEF\xBB\xBF" + DecodeText(bytes, codePage));
}

} // namespace

bool PlaceDocument(const std::string& document, const std::string& target, const CodePage& codePage)
{
    const std::optional<std::string> head = ReadWholeFile(document, HeadSize);
    if (!head)
        return false;
    std::error_code error;
    if (IsWordProcessors(*head)) {
        fs::create_symlink(fs::absolute(document, error), target, error);
        return !error;
    }
    if (!IsText(DecodeText(*head, codePage)))
        return false;
    const std::optional<std::string> text = ReadWholeFile(document, LargestTextFile + 1);
    if (!text || text->size() > static_cast<std::size_t>(LargestTextFile))
        return false;
    if (!IsWebArchive(*head))
        return WriteText(target, *text, codePage);
    const std::optional<WebPage> page = PageOfWebArchive(*text);
    if (!page)
        return false;
    // These two encodings do not say how to read bytes that are not UTF-8.
    const std::string charset = UCase(page->charset);
    const bool said = !charset.empty() && charset != "UTF-8" && charset != "US-ASCII";
    return WriteText(target, page->content, said ? CodePage(charset) : codePage);
}

} // namespace voxmate::linux_platform
