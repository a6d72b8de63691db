// How words are said that are not to be read as they are written.
#pragma once

#include <string>
#include <vector>

namespace voxmate
{

/// `Written` is one or more words, and `Said` what is heard instead. A letter or digit at an end of `Written` is not
/// found inside a longer word or number. Without a capital letter it is found in any case. A blank stands for any
/// blanks within a line. An asterisk stands for one or more characters of a word, the first of them a letter or digit;
/// those in `Said` stand for the same in turn, and one too many for nothing.
struct WordingRule {
    std::string Written;
    std::string Said;
    bool operator==(const WordingRule&) const = default;
};

class WordingControl
{
public:
    virtual ~WordingControl() = default;
    /// Everything that is spoken from now on is said by these rules; of those that fit in a place the one that is
    /// written longest holds, of equally long ones the first. One that has nothing but blanks and asterisks as what is
    /// written, or more than two asterisks, is left out.
    ///
    /// With `shortens`, where no rule fits, a web address is said without what is behind the name of its server, a code
    /// or number of more than 20 characters by its first and last four, a row of the same sign three times or more
    /// ("=====") not at all, and a row of the same pictograph once.
    virtual void UseWording(std::vector<WordingRule> rules, bool shortens) = 0;
    /// Whether from now on each paragraph is spoken by a voice of its language, where that can be told.
    virtual void UseVoicesByLanguage(bool on) = 0;
    /// Whether languages can be told apart here at all.
    virtual bool KnowsLanguages() const = 0;
};

} // namespace voxmate
