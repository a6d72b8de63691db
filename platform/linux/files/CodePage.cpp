#include "platform/linux/files/CodePage.h"

#include "base/Text.h"
#include "base/TextEncoding.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <iconv.h>
#include <optional>
#include <utility>

namespace voxmate::linux_platform
{

namespace
{

constexpr const char* Western = "CP1252";
constexpr char32_t Replacement = 0xFFFD;

/// The system's converter to UTF-8, closed at the end of its lifetime.
class Converter
{
public:
    explicit Converter(const std::string& name) : handle_(::iconv_open("UTF-8", name.c_str())) {}
    ~Converter()
    {
        if (Good())
            ::iconv_close(handle_);
    }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    // iconv_open tells a failure with this value.
    bool Good() const { return handle_ != reinterpret_cast<iconv_t>(-1); } // NOLINT(performance-no-int-to-ptr)

    /// Removes the convertible bytes from the front of `bytes` and appends their text. Returns 0 when all are
    /// converted, EILSEQ at an undefined byte, or EINVAL at an incomplete character.
    int Take(std::string_view& bytes, std::string& text) const
    {
        std::array<char, 4096> buffer{};
        while (true) {
            char* from = const_cast<char*>(bytes.data());
            std::size_t left = bytes.size();
            char* to = buffer.data();
            std::size_t room = buffer.size();
            const bool all = ::iconv(handle_, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
            const int reason = all ? 0 : errno;
            text.append(buffer.data(), buffer.size() - room);
            bytes.remove_prefix(bytes.size() - left);
            if (all) {
                // Flush what the converter held back, such as a letter that an accent might have followed.
                to = buffer.data();
                room = buffer.size();
                ::iconv(handle_, nullptr, nullptr, &to, &room);
                text.append(buffer.data(), buffer.size() - room);
                return 0;
            }
            if (reason != E2BIG)
                return reason;
        }
    }

private:
    iconv_t handle_;
};

std::string Nothing(unsigned char byte)
{
    std::string text;
    AppendUtf8(text, byte < 0xA0 ? char32_t{byte} : Replacement);
    return text;
}

// An encoding's name without hyphens, which some write and some do not.
std::string Plain(std::string name)
{
    std::erase(name, '-');
    return UCase(name);
}

std::string UserLocale()
{
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const char* value = std::getenv(name); value && *value) // NOLINT(concurrency-mt-unsafe): nobody sets any
            return value;
    return {};
}

} // namespace

CodePage::CodePage(std::string name) : name_(std::move(name))
{
    if (const Converter converter(name_); name_ == Western || !converter.Good())
        name_ = Western;
    for (std::size_t i = 0; i < single_.size(); ++i) {
        const auto byte = static_cast<unsigned char>(0x80 + i);
        const char c = static_cast<char>(byte);
        if (name_ == Western) {
            single_.at(i) = Windows1252ToUtf8({&c, 1});
            continue;
        }
        const Converter converter(name_);
        std::string_view left(&c, 1);
        const int reason = converter.Take(left, single_.at(i));
        severalBytes_ = severalBytes_ || reason == EINVAL;
        if (reason != 0 || single_.at(i).empty())
            single_.at(i) = Nothing(byte);
    }
}

std::string CodePage::NameFor(std::string_view locale)
{
    const std::string_view language = locale.substr(0, locale.find_first_of("_.@"));
    const std::string_view rest = locale.substr(language.size());
    if (const std::size_t dot = rest.find('.'); dot != std::string_view::npos) {
        std::string own(rest.substr(dot + 1, rest.find('@', dot) - dot - 1));
        // Latin-1 is read as Windows-1252, which has letters where Latin-1 has control characters.
        if (Plain(own) == "ISO88591")
            return Western;
        if (!own.empty() && Plain(own) != "UTF8")
            return own;
    }
    if (rest.find("@latin") != std::string_view::npos)
        return "CP1250";
    if (language == "zh")
        return rest.starts_with("_TW") || rest.starts_with("_HK") || rest.starts_with("_MO") ? "CP950" : "CP936";
    // Windows' system code pages for these languages; all others use the Western one.
    struct Page {
        const char* name;
        std::string_view languages;
    };
    constexpr std::array<Page, 11> pages{{{"CP1250", " bs cs hr hu pl ro sk sl sq "},
                                          {"CP1251", " be bg kk ky mk mn ru sr tg tt uk "},
                                          {"CP1253", " el "},
                                          {"CP1254", " az ku tr uz "},
                                          {"CP1255", " he iw yi "},
                                          {"CP1256", " ar fa ps ur "},
                                          {"CP1257", " et lt lv "},
                                          {"CP1258", " vi "},
                                          {"CP874", " th "},
                                          {"CP932", " ja "},
                                          {"CP949", " ko "}}};
    for (const Page& page : pages)
        if (!language.empty() && page.languages.find(" " + std::string(language) + " ") != std::string_view::npos)
            return page.name;
    return Western;
}

const CodePage& CodePage::OfUser()
{
    static const CodePage page(NameFor(UserLocale()));
    return page;
}

std::size_t CodePage::Decode(std::string_view bytes, bool last, std::string& text) const
{
    if (name_ == Western) {
        text += Windows1252ToUtf8(bytes);
        return bytes.size();
    }
    if (!severalBytes_) {
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            const auto byte = static_cast<unsigned char>(bytes[at]);
            if (byte < 0x80)
                text += bytes[at];
            else
                text += single_.at(byte - 0x80u);
        }
        return bytes.size();
    }
    const Converter converter(name_);
    std::string_view left = bytes;
    while (const int reason = converter.Take(left, text)) {
        if (reason == EINVAL && !last)
            break;
        AppendUtf8(text, Replacement);
        left.remove_prefix(1);
    }
    return bytes.size() - left.size();
}

std::string CodePage::Repair(std::string_view text) const
{
    std::string whole;
    whole.reserve(text.size());
    while (!text.empty()) {
        const std::size_t end = ValidUtf8End(text);
        whole += text.substr(0, end);
        if (end < text.size())
            whole += single_.at(static_cast<unsigned char>(text[end]) - 0x80u);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return whole;
}

std::string DecodeText(std::string_view bytes, const CodePage& codePage)
{
    const std::optional<ByteOrderMark> mark = FindByteOrderMark(bytes);
    if (mark)
        bytes.remove_prefix(mark->length);
    const std::optional<TextEncoding> encoding = mark ? mark->encoding : GuessUtf16(bytes);
    if (encoding && *encoding != TextEncoding::Utf8)
        return DecodeUtf16(bytes, *encoding == TextEncoding::Utf16LittleEndian);
    Utf8Census census;
    census.Count(bytes);
    if (mark || census.IsUtf8())
        return codePage.Repair(bytes);
    std::string text;
    codePage.Decode(bytes, true, text);
    return text;
}

} // namespace voxmate::linux_platform
