// What the targets for readers of documents share: whatever is in a document, its blocks keep their promises.
#pragma once

#include "fuzz.h"

#include "base/Text.h"
#include "readers/Block.h"
#include "readers/Refusal.h"

#include <exception>
#include <functional>
#include <new>
#include <string_view>

namespace voxmate::fuzz
{

inline void CheckText(std::string_view text)
{
    Require(IsValidUtf8(text), "a text is UTF-8");
    Require(text.empty() || (text.front() != ' ' && text.back() != ' ' && text.back() != '\n'),
            "a text has no blank at its ends");
    Require(text.find("  ") == std::string_view::npos, "a text has no two blanks in a row");
}

inline void CheckBlock(const readers::Block& block)
{
    using readers::BlockKind;
    CheckText(block.text);
    CheckText(block.label);
    Require(block.text.size() <= readers::LongestText && block.label.size() <= readers::LongestLabel,
            "a block is not too long");
    const bool leveled = block.kind == BlockKind::Heading || block.kind == BlockKind::ListItem;
    Require(leveled ? block.level >= 1 && block.level <= 9 : block.level == 0, "headings and items have a level");
    const bool mark = block.kind == BlockKind::Page || block.kind == BlockKind::Chapter;
    Require(block.text.empty() == mark, "only marks have no text");
}

/// Reads a document and checks its blocks. A document may be refused.
inline void ReadAndCheck(const char* operation, const std::function<void(const readers::BlockSink&)>& read)
{
    const InTime inTime(operation);
    try {
        read([](readers::Block&& block) { CheckBlock(block); });
    } catch (const readers::Refused& refused) {
        Require(!readers::Sentence(refused.reason, "file", false).empty(), "a refusal has its sentence");
    }
}

} // namespace voxmate::fuzz
