#include "platform/windows/files/CodePage.h"

#include "base/Text.h"
#include "base/TextEncoding.h"
#include "platform/TextDecoding.h"
#include "platform/windows/system/Wide.h"
#include "platform/windows/system/WindowsApi.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace voxmate::windows_platform
{

namespace
{

constexpr unsigned Western = 1252;

struct Named {
    std::string_view name;
    unsigned page;
};

// Names without hyphens and underscores. The Encoding Standard reads Latin-1 and ASCII as Windows-1252, which has
// letters where they have control characters.
constexpr std::array<Named, 22> names{
    {{"ASCII", Western}, {"USASCII", Western}, {"LATIN1", Western}, {"ISO88591", Western}, {"UTF8", CP_UTF8},
     {"KOI8R", 20866},   {"KOI8U", 21866},     {"SHIFTJIS", 932},   {"SJIS", 932},         {"XSJIS", 932},
     {"EUCJP", 20932},   {"GB2312", 936},      {"GBK", 936},        {"GB18030", 54936},    {"BIG5", 950},
     {"EUCKR", 949},     {"KSC56011987", 949}, {"TIS620", 874},     {"MACINTOSH", 10000},  {"XMACCYRILLIC", 10007},
     {"IBM866", 866},    {"IBM850", 850}}};

// The number behind one of these beginnings; nothing for any other name.
std::optional<unsigned> Numbered(std::string_view name, std::string_view beginning, unsigned added)
{
    unsigned number = 0;
    if (!name.starts_with(beginning))
        return std::nullopt;
    name.remove_prefix(beginning.size());
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    if (error != std::errc() || end != name.data() + name.size())
        return std::nullopt;
    return number + added;
}

// UTF-8 with each invalid byte decoded by the code page.
std::string Repaired(std::string_view text, unsigned codePage)
{
    std::string whole;
    whole.reserve(text.size());
    while (!text.empty()) {
        const std::size_t end = ValidUtf8End(text);
        whole += text.substr(0, end);
        if (end < text.size())
            whole += Decode(text.substr(end, 1), codePage);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return whole;
}

} // namespace

std::optional<unsigned> CodePageOfName(const std::string& name)
{
    std::string plain = UCase(name);
    std::erase_if(plain, [](char c) { return c == '-' || c == '_'; });
    std::optional<unsigned> page;
    const auto* const found =
        std::find_if(names.begin(), names.end(), [&](const Named& each) { return each.name == plain; });
    if (found != names.end())
        page = found->page;
    constexpr unsigned behindLatin = 28590; // ISO 8859-2 is 28592
    for (const auto& [beginning, added] :
         {std::pair<std::string_view, unsigned>{"WINDOWS", 0}, {"CP", 0}, {"ISO8859", behindLatin}})
        if (!page)
            page = Numbered(plain, beginning, added);
    return page && ::IsValidCodePage(*page) ? page : std::nullopt;
}

unsigned CodePageOfUser()
{
    DWORD page = 0;
    const int length = ::GetLocaleInfoEx(LOCALE_NAME_USER_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                                         reinterpret_cast<wchar_t*>(&page), sizeof page / sizeof(wchar_t));
    // 0 and UTF-8: a language that has none.
    return length == 0 || page == CP_ACP || page == CP_UTF8 ? Western : page;
}

std::string Decode(std::string_view bytes, unsigned codePage)
{
    if (codePage == Western)
        return Windows1252ToUtf8(bytes);
    if (bytes.empty() || bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return {};
    const auto size = static_cast<int>(bytes.size());
    std::wstring wide(
        static_cast<std::size_t>(std::max(::MultiByteToWideChar(codePage, 0, bytes.data(), size, nullptr, 0), 0)),
        L'\0');
    ::MultiByteToWideChar(codePage, 0, bytes.data(), size, wide.data(), static_cast<int>(wide.size()));
    return Narrow(wide);
}

std::string DecodeText(std::string_view bytes, unsigned codePage)
{
    const std::optional<ByteOrderMark> mark = FindByteOrderMark(bytes);
    if (mark)
        bytes.remove_prefix(mark->length);
    constexpr std::size_t beginning = std::size_t{64} * 1024;
    const std::optional<TextEncoding> encoding = mark ? mark->encoding : GuessUtf16(bytes.substr(0, beginning));
    if (encoding && *encoding != TextEncoding::Utf8)
        return DecodeUtf16(bytes, *encoding == TextEncoding::Utf16LittleEndian);
    Utf8Census census;
    census.Count(bytes);
    if (census.Strays() == 0)
        return std::string(bytes);
    return mark || census.IsUtf8() ? Repaired(bytes, codePage) : Decode(bytes, codePage);
}

} // namespace voxmate::windows_platform

namespace voxmate
{

std::optional<std::string> DecodeFrom(std::string_view bytes, const std::string& encoding)
{
    const std::optional<unsigned> page = windows_platform::CodePageOfName(encoding);
    return page ? std::optional(windows_platform::Decode(bytes, *page)) : std::nullopt;
}

std::string DecodeUnknown(std::string_view bytes)
{
    return windows_platform::DecodeText(bytes);
}

} // namespace voxmate
