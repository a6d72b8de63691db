#include "speech/text/Languages.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace voxmate::speech
{

namespace
{

struct Figure {
    std::string_view tag;
    double millions;
};

// First- and second-language speakers in millions, from published counts of the years 2020 to 2024, rounded to two
// digits. They only decide which voices a full list leaves out.
constexpr std::array Figures = std::to_array<Figure>({
    {"en", 1500},  {"cmn", 1100}, {"hi", 610},    {"es", 560},    {"es-419", 460}, {"ar", 330},    {"fr", 310},
    {"bn", 280},   {"pt", 260},   {"ru", 250},    {"ur", 240},    {"pt-br", 210},  {"id", 200},    {"de", 130},
    {"ja", 120},   {"mr", 99},    {"vi", 97},     {"te", 96},     {"pa", 90},      {"tr", 91},     {"sw", 87},
    {"ta", 86},    {"yue", 86},   {"fa", 83},     {"ko", 82},     {"it", 66},      {"gu", 62},     {"th", 61},
    {"am", 60},    {"kn", 59},    {"om", 46},     {"hak", 44},    {"my", 43},      {"pl", 41},     {"or", 40},
    {"ml", 38},    {"uk", 38},    {"sd", 37},     {"uz", 36},     {"ms", 33},      {"ne", 32},     {"ku", 26},
    {"nl", 25},    {"ro", 25},    {"az", 24},     {"as", 24},     {"af", 18},      {"si", 18},     {"kk", 16},
    {"tn", 14},    {"el", 13},    {"ht", 13},     {"hu", 13},     {"sv", 13},      {"cs", 12},     {"ug", 11},
    {"ca", 9.3},   {"he", 9.3},   {"sr", 9},      {"bg", 8},      {"sq", 7.5},     {"qu", 7.2},    {"sk", 7},
    {"tk", 7},     {"gn", 6.5},   {"da", 6},      {"fi", 5.8},    {"hr", 5.6},     {"nb", 5.3},    {"ky", 5.2},
    {"be", 5},     {"tt", 4.3},   {"ka", 3.9},    {"hy", 3.8},    {"shn", 3.3},    {"lt", 3},      {"bs", 2.5},
    {"kok", 2.3},  {"sl", 2.2},   {"lv", 1.8},    {"mk", 1.7},    {"hyw", 1.5},    {"ga", 1.2},    {"et", 1.1},
    {"quc", 1.1},  {"ba", 1.1},   {"eu", 0.8},    {"cv", 0.7},    {"cy", 0.6},     {"mt", 0.5},    {"lb", 0.4},
    {"is", 0.35},  {"pap", 0.35}, {"mi", 0.19},   {"ltg", 0.15},  {"bpy", 0.12},   {"nog", 0.087}, {"gd", 0.057},
    {"kl", 0.057}, {"an", 0.03},  {"haw", 0.024}, {"chr", 0.002}, {"smj", 0.002},
});
// The value for a language not in the table: it has a voice, so somebody speaks it.
constexpr double Unknown = 0.1;

// Languages without native speakers: constructed and ancient ones (ISO 639 codes, and the names eSpeak NG gives to
// some).
constexpr std::array<std::string_view, 18> NotNative{"eo",  "ia", "ie",   "io",  "jbo", "la",  "lfn", "ldn", "grc",
                                                     "nci", "py", "piqd", "qdb", "qya", "sjn", "tlh", "tok", "vo"};

// A language's code as a voice or a desktop may give it, and the family under which the two are compared.
constexpr std::array Families = std::to_array<std::pair<std::string_view, std::string_view>>({
    {"cmn", "zh"},
    {"yue", "zh"},
    {"hak", "zh"},
    {"nb", "no"},
    {"nn", "no"},
    {"hyw", "hy"},
    {"iw", "he"},
    {"in", "id"},
    {"jw", "jv"},
    {"mo", "ro"},
});

// The Mandarin voice that is preferred. The other one of eSpeak NG 1.51 reads its own transcription of a character as
// English: 你 is heard as "nee three".
constexpr std::string_view Mandarin = "cmn-latn-pinyin";

// "zh_HK.UTF-8" becomes "zh-hk".
std::string Normal(std::string_view locale)
{
    std::string tag = LowerAscii(locale.substr(0, locale.find_first_of(".@")));
    std::replace(tag.begin(), tag.end(), '_', '-');
    return tag;
}

const Figure* FigureOf(std::string_view tag)
{
    const auto found =
        std::find_if(Figures.begin(), Figures.end(), [tag](const Figure& figure) { return figure.tag == tag; });
    return found == Figures.end() ? nullptr : &*found;
}

struct Range {
    char32_t first;
    char32_t last;
    Script script;
};

// The blocks of letters in Unicode 15; all other characters belong to Script::Common.
constexpr std::array Ranges = std::to_array<Range>({
    {U'A', U'Z', Script::Latin},        {U'a', U'z', Script::Latin},        {0xAA, 0xAA, Script::Latin},
    {0xBA, 0xBA, Script::Latin},        {0xC0, 0xD6, Script::Latin},        {0xD8, 0xF6, Script::Latin},
    {0xF8, 0x2AF, Script::Latin},       {0x370, 0x3FF, Script::Greek},      {0x400, 0x52F, Script::Cyrillic},
    {0x531, 0x58F, Script::Armenian},   {0x591, 0x5F4, Script::Hebrew},     {0x610, 0x61A, Script::Arabic},
    {0x620, 0x65F, Script::Arabic},     {0x66E, 0x6EF, Script::Arabic},     {0x6FA, 0x77F, Script::Arabic},
    {0x8A0, 0x8FF, Script::Arabic},     {0x900, 0x963, Script::Devanagari}, {0x966, 0x97F, Script::Devanagari},
    {0x980, 0x9FF, Script::Bengali},    {0xA00, 0xA7F, Script::Gurmukhi},   {0xA80, 0xAFF, Script::Gujarati},
    {0xB00, 0xB7F, Script::Oriya},      {0xB80, 0xBFF, Script::Tamil},      {0xC00, 0xC7F, Script::Telugu},
    {0xC80, 0xCFF, Script::Kannada},    {0xD00, 0xD7F, Script::Malayalam},  {0xD80, 0xDFF, Script::Sinhala},
    {0xE01, 0xE3A, Script::Thai},       {0xE40, 0xE5B, Script::Thai},       {0x1000, 0x109F, Script::Myanmar},
    {0x10A0, 0x10FF, Script::Georgian}, {0x1100, 0x11FF, Script::Hangul},   {0x1200, 0x139F, Script::Ethiopic},
    {0x1C80, 0x1C8F, Script::Cyrillic}, {0x1C90, 0x1CBF, Script::Georgian}, {0x1E00, 0x1EFF, Script::Latin},
    {0x1F00, 0x1FFF, Script::Greek},    {0x2C60, 0x2C7F, Script::Latin},    {0x2D00, 0x2D2F, Script::Georgian},
    {0x2D80, 0x2DDF, Script::Ethiopic}, {0x2DE0, 0x2DFF, Script::Cyrillic}, {0x2E80, 0x2FDF, Script::Han},
    {0x3005, 0x3007, Script::Han},      {0x3041, 0x30FF, Script::Kana},     {0x3131, 0x318E, Script::Hangul},
    {0x31F0, 0x31FF, Script::Kana},     {0x3400, 0x4DBF, Script::Han},      {0x4E00, 0x9FFF, Script::Han},
    {0xA640, 0xA69F, Script::Cyrillic}, {0xA722, 0xA7FF, Script::Latin},    {0xA8E0, 0xA8FF, Script::Devanagari},
    {0xA960, 0xA97F, Script::Hangul},   {0xA9E0, 0xA9FE, Script::Myanmar},  {0xAA60, 0xAA7F, Script::Myanmar},
    {0xAB00, 0xAB2F, Script::Ethiopic}, {0xAC00, 0xD7FF, Script::Hangul},   {0xF900, 0xFAFF, Script::Han},
    {0xFB00, 0xFB06, Script::Latin},    {0xFB13, 0xFB17, Script::Armenian}, {0xFB1D, 0xFB4F, Script::Hebrew},
    {0xFB50, 0xFDFF, Script::Arabic},   {0xFE70, 0xFEFC, Script::Arabic},   {0xFF21, 0xFF3A, Script::Latin},
    {0xFF41, 0xFF5A, Script::Latin},    {0xFF66, 0xFF9F, Script::Kana},     {0xFFA0, 0xFFDC, Script::Hangul},
    {0x20000, 0x323AF, Script::Han},
});

// The languages whose voices read a script, found by trying eSpeak NG 1.51: its Hakka voice reads no Chinese
// characters, its Kurdish one no Arabic letters, its Azerbaijani and Turkmen ones no Cyrillic; the Serbian, Croatian
// and Bosnian ones do read Cyrillic. Every voice reads Latin and common characters.
constexpr std::array Readers = std::to_array<std::pair<Script, std::string_view>>({
    {Script::Cyrillic, " ru uk bg be sr mk hr bs kk tt ba cv nog ky uz "},
    {Script::Greek, " el grc "},
    {Script::Armenian, " hy hyw "},
    {Script::Hebrew, " he "},
    {Script::Arabic, " ar fa ur sd ug "},
    {Script::Devanagari, " hi mr ne kok "},
    {Script::Bengali, " bn as bpy "},
    {Script::Gurmukhi, " pa "},
    {Script::Gujarati, " gu "},
    {Script::Oriya, " or "},
    {Script::Tamil, " ta "},
    {Script::Telugu, " te "},
    {Script::Kannada, " kn "},
    {Script::Malayalam, " ml "},
    {Script::Sinhala, " si "},
    {Script::Thai, " th "},
    {Script::Myanmar, " my shn "},
    {Script::Georgian, " ka "},
    {Script::Hangul, " ko "},
    {Script::Ethiopic, " am "},
    {Script::Kana, " ja "},
    {Script::Han, " cmn yue zh "},
});

} // namespace

std::string PrimaryLanguage(std::string_view tag)
{
    return LowerAscii(tag.substr(0, tag.find_first_of("-_.@")));
}

std::string LanguageFamily(std::string_view tag)
{
    std::string primary = PrimaryLanguage(tag);
    for (const auto& [name, family] : Families)
        if (primary == name)
            return std::string(family);
    return primary;
}

std::string MainTag(std::string_view tag)
{
    std::string primary = PrimaryLanguage(tag);
    return primary == "cmn" ? std::string(Mandarin) : primary;
}

std::string WantedTag(std::string_view locale)
{
    std::string tag = Normal(locale);
    const std::string family = LanguageFamily(tag);
    if (family == "zh") {
        const bool cantonese = tag.starts_with("yue") || tag.ends_with("-hk") || tag.ends_with("-mo");
        return cantonese ? "yue" : tag.starts_with("hak") ? "hak" : std::string(Mandarin);
    }
    // Most people whose Spanish locale names a region other than Spain live in Latin America (UN M.49: 419).
    if (family == "es" && tag.size() > 2 && tag != "es-es")
        return "es-419";
    return tag;
}

double MillionsOfSpeakers(std::string_view tag)
{
    const std::string primary = PrimaryLanguage(tag);
    if (std::find(NotNative.begin(), NotNative.end(), primary) != NotNative.end())
        return 0;
    const Figure* figure = FigureOf(tag);
    if (!figure)
        figure = FigureOf(primary == "zh" ? "cmn" : primary);
    return figure ? figure->millions : Unknown;
}

bool CountsByItself(std::string_view tag)
{
    return tag.find('-') != std::string_view::npos && FigureOf(tag);
}

Script ScriptOf(char32_t point)
{
    const auto range = std::partition_point(Ranges.begin(), Ranges.end(),
                                            [point](const Range& candidate) { return candidate.last < point; });
    return range != Ranges.end() && range->first <= point ? range->script : Script::Common;
}

bool CanSay(std::string_view language, Script script)
{
    if (script == Script::Common || script == Script::Latin)
        return true;
    const std::string wanted = " " + PrimaryLanguage(language) + " ";
    return std::any_of(Readers.begin(), Readers.end(), [&](const auto& reader) {
        return reader.first == script && reader.second.find(wanted) != std::string_view::npos;
    });
}

} // namespace voxmate::speech
