// What readers give, in a form that is easy to state and to compare.
#pragma once

#include "readers/Block.h"
#include "readers/Refusal.h"

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::readers::test
{

using Lines = std::vector<std::string>;

/// A block in one line: "heading 2: 1.1 Title", "item 1: • text", "row: a | b", "note 3: text", "page 7".
inline std::string Line(const Block& block)
{
    constexpr std::array<const char*, 7> names{"heading", "paragraph", "item", "row", "note", "page", "chapter"};
    std::string line = names.at(static_cast<std::size_t>(block.kind));
    if (block.level > 0)
        line += " " + std::to_string(block.level);
    if (block.kind == BlockKind::Page || block.kind == BlockKind::Chapter)
        return line + " " + block.label;
    if (block.kind == BlockKind::Footnote && !block.label.empty())
        line += " " + block.label;
    line += ": ";
    if (block.kind != BlockKind::Footnote && !block.label.empty())
        line += block.label + " ";
    for (const char c : block.text)
        line += c == '\t' ? " | " : c == '\n' ? " / " : std::string(1, c);
    return line;
}

/// The lines of what `read` gives. What it refuses adds "refused: " and the reason's number.
inline Lines LinesOf(const std::function<void(const BlockSink&)>& read, std::vector<std::string>* languages = nullptr)
{
    Lines lines;
    try {
        read([&](Block&& block) {
            lines.push_back(Line(block));
            if (languages)
                languages->push_back(block.language);
        });
    } catch (const Refused& refused) {
        lines.push_back("refused: " + Sentence(refused.reason, "F", false));
    }
    return lines;
}

} // namespace voxmate::readers::test
