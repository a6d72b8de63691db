// Puts blocks together from what a document's markup tells in order.
#pragma once

#include "readers/Block.h"
#include "readers/text/Clean.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace voxmate::readers
{

/// A label in one line, not longer than a label may be.
std::string CleanLabel(std::string_view label);

/// Every reader of a marked-up document tells one of these what begins and ends, and what text there is. Calls that do
/// not match (a cell without a table) are taken as well as they can be: documents are damaged in every way.
class BlockWriter
{
public:
    explicit BlockWriter(BlockSink sink);
    ~BlockWriter();
    BlockWriter(const BlockWriter&) = delete;
    BlockWriter& operator=(const BlockWriter&) = delete;

    /// Begins a block; the one before ends. `level` and `label` as in Block.
    void Begin(BlockKind kind, int level = 0, std::string_view label = {});
    /// Ends the block. Text that follows becomes a paragraph. A block without text is left out.
    void End();
    /// Changes what the present block is, as when a paragraph's own style comes after its beginning.
    void Become(BlockKind kind, int level, std::string_view label);
    void Text(std::string_view text);
    void Break();
    /// Whether the present block has text.
    bool HasText() const;
    /// The language of blocks that get their first text from now on.
    void Language(std::string_view language) { language_ = language; }
    /// A mark (BlockKind::Page or Chapter).
    void Mark(BlockKind kind, std::string_view label);

    /// A table's row. If each of its cells is one plain paragraph at most, the row becomes one block; otherwise, as in
    /// tables that arrange a page, the cells' blocks stay as they are, cell by cell.
    void BeginRow();
    void BeginCell();
    void EndCell();
    void EndRow();

    /// A footnote or, with `aside`, a text box: its blocks follow the block in which it begins.
    void BeginNote(std::string_view label);
    void BeginAside();
    /// Ends the innermost note or aside and all that was begun in it.
    void EndNote();
    /// Adds the blocks of a note that was read before.
    void Note(const std::vector<Block>& blocks);

    /// Ends all that is open.
    void Finish();

private:
    struct Place;

    Place& Here() { return *places_.back(); }
    void Emit(Block&& block);
    void Deliver(Place& place, Block&& block);
    void PopCell();
    void PopRow();

    BlockSink sink_;
    std::string language_;
    std::vector<std::unique_ptr<Place>> places_; ///< the open cells, rows and notes; the document itself first
};

} // namespace voxmate::readers
