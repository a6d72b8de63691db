// Facts about the languages of the voices: how many people speak them, in which scripts they are written, and which of
// them a desktop's locale means.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::speech
{

/// "de-DE", "de_DE.UTF-8" and "DE" are all "de".
std::string PrimaryLanguage(std::string_view tag);

/// Maps a tag to the language under which a desktop's locale and a voice are compared: Mandarin, Cantonese and Hakka
/// are all "zh", both kinds of Norwegian are "no", and a language's old code becomes its new one.
std::string LanguageFamily(std::string_view tag);

/// The tag of the voice that stands for its language when no region is known: "fr" for "fr-be".
std::string MainTag(std::string_view tag);

/// The tag of the voice that suits a desktop of this locale ("pt_BR", "zh_HK") best. There may be no such voice.
std::string WantedTag(std::string_view locale);

/// Millions of people who speak it as a first or second language. A tag whose region has figures of its own ("pt-br")
/// gives those, any other tag those of its language. 0 for ancient and constructed languages; a small value for a
/// language not in the table.
double MillionsOfSpeakers(std::string_view tag);

/// Whether a tag with a region has so many speakers that it counts as a language of its own: "es-419", "pt-br".
bool CountsByItself(std::string_view tag);

/// A script, named as in ISO 15924. Common: digits, punctuation and symbols, which occur with every script.
enum class Script {
    Common,
    Latin,
    Cyrillic,
    Greek,
    Armenian,
    Hebrew,
    Arabic,
    Devanagari,
    Bengali,
    Gurmukhi,
    Gujarati,
    Oriya,
    Tamil,
    Telugu,
    Kannada,
    Malayalam,
    Sinhala,
    Thai,
    Myanmar,
    Georgian,
    Hangul,
    Ethiopic,
    Kana,
    Han,
};

Script ScriptOf(char32_t point);

/// Whether an eSpeak NG or Flite voice of this language reads text in this script, rather than spelling it or leaving
/// it out.
bool CanSay(std::string_view language, Script script);

} // namespace voxmate::speech
