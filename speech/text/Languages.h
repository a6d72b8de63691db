// What is known of the languages that voices speak: how many people speak them, how they are written, and which of
// them a desktop means.
#pragma once

#include <string>
#include <string_view>

namespace voxmate::speech
{

/// "de-DE", "de_DE.UTF-8" and "DE" are all "de".
std::string PrimaryLanguage(std::string_view tag);

/// The language that a desktop of this locale means by its own, so that the two can be compared: Mandarin, Cantonese
/// and Hakka are all "zh", both kinds of Norwegian are "no", old names of a language are its new one.
std::string LanguageFamily(std::string_view tag);

/// The tag of the voice that speaks for its language where nothing more is known: "fr" of "fr-be".
std::string MainTag(std::string_view tag);

/// The tag of the voice that a desktop of this locale ("pt_BR", "zh_HK") wants first. Need not exist.
std::string WantedTag(std::string_view locale);

/// Millions of people who speak it, as first or second language. Of a tag with a region that has figures of its own
/// ("pt-br") those, else those of its language. 0: ancient or constructed; a language not in the table counts little.
double MillionsOfSpeakers(std::string_view tag);

/// True for a tag with a region that is spoken by so many that it counts as a language: "es-419", "pt-br".
bool CountsByItself(std::string_view tag);

/// A writing, named as in ISO 15924. Common: digits, punctuation, symbols, what goes with any writing.
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

/// Whether an eSpeak NG or Flite voice of this language says what is written so, rather than spell it or leave it out.
bool CanSay(std::string_view language, Script script);

} // namespace voxmate::speech
