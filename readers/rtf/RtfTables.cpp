#include "readers/rtf/RtfTables.h"

#include <algorithm>
#include <array>
#include <utility>

namespace voxmate::readers
{

std::string RtfCharset(int charset)
{
    constexpr std::array<std::pair<int, std::string_view>, 18> names{{{77, "MACINTOSH"},
                                                                      {128, "CP932"},
                                                                      {129, "CP949"},
                                                                      {130, "CP1361"},
                                                                      {134, "CP936"},
                                                                      {136, "CP950"},
                                                                      {161, "CP1253"},
                                                                      {162, "CP1254"},
                                                                      {163, "CP1258"},
                                                                      {177, "CP1255"},
                                                                      {178, "CP1256"},
                                                                      {186, "CP1257"},
                                                                      {204, "CP1251"},
                                                                      {222, "CP874"},
                                                                      {238, "CP1250"},
                                                                      {254, "CP437"},
                                                                      {255, "CP850"},
                                                                      {0, ""}}};
    const auto* const found =
        std::find_if(names.begin(), names.end(), [&](const auto& one) { return one.first == charset; });
    return found == names.end() ? "" : std::string(found->second);
}

bool HasDoubleBytes(std::string_view encoding)
{
    return encoding == "CP932" || encoding == "CP936" || encoding == "CP949" || encoding == "CP950" ||
           encoding == "CP1361";
}

std::string LanguageOfIdentifier(int identifier)
{
    // The lower ten bits are the language, the others its country.
    constexpr std::array<std::string_view, 0x5B> languages{
        "",   "ar", "bg", "ca", "zh", "cs", "da", "de",  "el",  "en", "es", "fi", "fr", "he", "hu",  "is",
        "it", "ja", "ko", "nl", "nb", "pl", "pt", "rm",  "ro",  "ru", "hr", "sk", "sq", "sv", "th",  "tr",
        "ur", "id", "uk", "be", "sl", "et", "lv", "lt",  "tg",  "fa", "vi", "hy", "az", "eu", "hsb", "mk",
        "st", "ts", "tn", "ve", "xh", "zu", "af", "ka",  "fo",  "hi", "mt", "se", "ga", "yi", "ms",  "kk",
        "ky", "sw", "tk", "uz", "tt", "bn", "pa", "gu",  "or",  "ta", "te", "kn", "ml", "as", "mr",  "sa",
        "mn", "bo", "cy", "km", "lo", "my", "gl", "kok", "mni", "sd", "syr"};
    const auto language = static_cast<std::size_t>(identifier & 0x3FF);
    return identifier > 0 && language < languages.size() ? std::string(languages.at(language)) : "";
}

} // namespace voxmate::readers
