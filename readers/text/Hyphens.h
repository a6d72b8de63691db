// Words that were divided at the end of a line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>

namespace voxmate::readers
{

/// The words a document was seen to use, without regard to case. Keeps a hundred thousand at most.
class Vocabulary
{
public:
    void Add(std::string_view text);
    bool Has(std::string_view word) const;

private:
    std::unordered_set<std::string> words_;
};

/// Adds a line to a paragraph: with a blank, or without its hyphen when it ends in a divided word. Whether a hyphen
/// divides a word or belongs to it ("well-known") is decided by how the document writes the word elsewhere.
void AppendLine(std::string& paragraph, std::string_view line, const Vocabulary& vocabulary);

} // namespace voxmate::readers
