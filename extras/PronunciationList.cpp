#include "extras/PronunciationList.h"

#include "base/Text.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

namespace voxmate
{

namespace
{

constexpr std::string_view Blanks = " \t";
constexpr std::string_view Note = "# ";
/// As many as a voice can be given to say in each place.
constexpr std::ptrdiff_t MostAsterisks = 2;

std::optional<WordingRule> RuleOf(std::string_view line)
{
    if (line.starts_with(Note))
        return std::nullopt;
    // What is written may have an equals sign in it ("a==b = same"), so one between blanks counts first.
    const std::size_t parted = line.find(" = ");
    const std::size_t at = parted == std::string_view::npos ? line.find('=') : parted + 1;
    if (at == std::string_view::npos)
        return std::nullopt;
    WordingRule rule{std::string(Trimmed(line.substr(0, at), Blanks)),
                     std::string(Trimmed(line.substr(at + 1), Blanks))};
    return rule.Written.empty() ? std::nullopt : std::optional(std::move(rule));
}

std::string LineOf(const WordingRule& rule)
{
    return rule.Written + " = " + rule.Said;
}

bool IsOf(const std::string& line, const std::string& written)
{
    const std::optional<WordingRule> rule = RuleOf(line);
    return rule && rule->Written == written;
}

} // namespace

std::vector<WordingRule> PronunciationList::Rules() const
{
    std::vector<WordingRule> rules;
    for (const std::string& line : lines_)
        if (std::optional<WordingRule> rule = RuleOf(line))
            rules.push_back(std::move(*rule));
    return rules;
}

void PronunciationList::Set(const WordingRule& rule)
{
    const auto line = std::find_if(lines_.begin(), lines_.end(),
                                   [&rule](const std::string& each) { return IsOf(each, rule.Written); });
    if (line != lines_.end())
        *line = LineOf(rule);
    else
        lines_.push_back(LineOf(rule));
}

void PronunciationList::Remove(const std::string& written)
{
    std::erase_if(lines_, [&written](const std::string& line) { return IsOf(line, written); });
}

std::string PronunciationList::Text() const
{
    std::string text;
    for (const std::string& line : lines_)
        text += line + "\n";
    return text;
}

std::string PronunciationList::Fault(const WordingRule& rule)
{
    if (rule.Written.find_first_not_of("* \t") == std::string::npos)
        return "Please enter the word or words that are to be said otherwise.";
    if (rule.Written.starts_with(Note) || RuleOf(LineOf(rule)) != rule)
        return "The words cannot begin with \"# \" or have \" = \" in them.";
    if (std::count(rule.Written.begin(), rule.Written.end(), '*') > MostAsterisks)
        return "At most two asterisks can stand in the words.";
    return "";
}

} // namespace voxmate
