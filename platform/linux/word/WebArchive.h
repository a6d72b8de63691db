// Web pages stored in one file with everything they need, in the format of mail messages (RFC 2557).
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace voxmate::linux_platform
{

/// The original bytes of a page or plain text, and the encoding it declares (empty when it declares none).
struct WebPage {
    std::string content;
    std::string charset;
};

/// Whether a text begins like such an archive: with header fields, among them the MIME version.
bool IsWebArchive(std::string_view beginning);

/// The first page of an archive, or its first plain text if it has no page; nothing when it has neither.
std::optional<WebPage> PageOfWebArchive(std::string_view archive);

} // namespace voxmate::linux_platform
