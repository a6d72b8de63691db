// Web pages in one file with all that belongs to them, as mail carries them (RFC 2557).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace voxmate::linux_platform
{

/// A page, or a plain text, in the bytes it was written in, and what it says of their encoding; empty when it doesn't.
struct WebPage {
    std::string content;
    std::string charset;
};

/// Whether a text begins as such an archive does: with header fields, the version of MIME among them.
bool IsWebArchive(std::string_view beginning);

/// The first page of an archive, or its first plain text when it has no page; nothing when it has neither.
std::optional<WebPage> PageOfWebArchive(std::string_view archive);

} // namespace voxmate::linux_platform
