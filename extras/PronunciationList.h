// The user's list of words that are said otherwise than they are written, as the text of its file.
#pragma once

#include "platform/WordingControl.h"

#include <string>
#include <vector>

namespace voxmate
{

/// A line reads "written = said". Lines that begin with a hash sign and a blank, or have no equals sign, are notes and
/// stay as they are.
class PronunciationList
{
public:
    PronunciationList() = default;
    explicit PronunciationList(std::vector<std::string> lines) : lines_(std::move(lines)) {}

    /// In the order of the list.
    std::vector<WordingRule> Rules() const;
    /// Replaces the rule for what is written, or adds one at the end. Both texts are one line each.
    void Set(const WordingRule& rule);
    void Remove(const std::string& written);
    /// The file's text, with a line feed behind each line.
    std::string Text() const;

    /// Why a word cannot be in the list, in a sentence; empty when it can.
    static std::string Fault(const WordingRule& rule);

private:
    std::vector<std::string> lines_;
};

} // namespace voxmate
