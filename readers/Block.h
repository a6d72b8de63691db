// A document as its reader meets it: a sequence of blocks.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

namespace voxmate::readers
{

enum class BlockKind : std::uint8_t {
    Heading,
    Paragraph,
    ListItem,
    TableRow,
    Footnote, ///< follows the block that refers to it, where the document tells; otherwise it stands where it is
              ///< printed
    Page,     ///< a mark: what follows begins on this page
    Chapter,  ///< a mark: what follows belongs to this chapter
};
inline constexpr BlockKind LastBlockKind = BlockKind::Chapter;

struct Block {
    BlockKind kind = BlockKind::Paragraph;
    /// Of a heading from 1, the highest, to 9; of a list item its depth from 1 to 9; otherwise 0.
    int level = 0;
    /// What is printed in front: a list item's number or bullet ("2.", "•"), a heading's number, a footnote's mark. Of
    /// a page its number, of a chapter its title. Empty where there is none. It is not repeated in `text`.
    std::string label;
    /// UTF-8 without blanks at its ends or two in a row; a forced line end is "\n", the cells of a table's row have a
    /// tab between them. Empty for marks only.
    std::string text;
    /// BCP 47 ("en-GB"); empty where the document does not tell.
    std::string language;

    bool operator==(const Block&) const = default;
};

/// The most bytes of a block's text, and of its label. What is longer is cut at a blank into several blocks.
inline constexpr std::size_t LongestText = std::size_t{1} << 20;
inline constexpr std::size_t LongestLabel = 1024;

/// Takes the blocks of a document one by one, in the order of reading. What it throws ends the reading.
using BlockSink = std::function<void(Block&&)>;

} // namespace voxmate::readers
