#include "readers/BlockWriter.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace voxmate::readers
{

namespace
{

// Deeper nesting than any document needs is read as if it were flat.
constexpr std::size_t DeepestNesting = 64;
// A row with more blocks than this arranges a page; they are given on as they come.
constexpr std::size_t LargestRow = 200;

int Level(BlockKind kind, int level)
{
    return kind == BlockKind::Heading || kind == BlockKind::ListItem ? std::clamp(level, 1, 9) : 0;
}

} // namespace

std::string CleanLabel(std::string_view label)
{
    std::string clean = Clean(label);
    if (clean.size() > LongestLabel)
        clean.resize(WholeUtf8(std::string_view(clean).substr(0, LongestLabel)));
    return clean;
}

struct BlockWriter::Place {
    enum class Kind { Document, Row, Cell, Note, Aside };

    explicit Place(Kind what) : place(what) {}

    Kind place;
    bool open = false;                     ///< a block was begun
    Block block;                           ///< the present one, without its text
    CleanText text;                        ///< its text
    std::vector<Block> notes;              ///< those of the present block
    std::vector<Block> blocks;             ///< of a cell or note: what is in it; of a row: the notes of its cells
    std::vector<std::vector<Block>> cells; ///< of a row
    std::size_t count = 0;                 ///< of a row: its blocks
    std::string noteLabel;                 ///< of a note, until its first block
};

BlockWriter::BlockWriter(BlockSink sink) : sink_(std::move(sink))
{
    places_.push_back(std::make_unique<Place>(Place::Kind::Document));
}

BlockWriter::~BlockWriter() = default;

void BlockWriter::Begin(BlockKind kind, int level, std::string_view label)
{
    End();
    Here().open = true;
    Become(kind, level, label);
}

void BlockWriter::Become(BlockKind kind, int level, std::string_view label)
{
    Block& block = Here().block;
    block.kind = kind;
    block.level = Level(kind, level);
    block.label = CleanLabel(label);
}

bool BlockWriter::HasText() const
{
    return !places_.back()->text.Empty();
}

void BlockWriter::Text(std::string_view text)
{
    Place& place = Here();
    // Longer than a block may be: cut at a blank.
    while (!text.empty()) {
        const std::size_t part = std::min(text.size(), LongestText / 8);
        const std::size_t whole =
            part == text.size() ? part : std::max<std::size_t>(WholeUtf8(text.substr(0, part)), 1);
        const bool first = place.text.Empty();
        place.text.Add(text.substr(0, whole));
        if (first && !place.text.Empty())
            place.block.language = language_;
        text.remove_prefix(whole);
        if (place.text.Size() > LongestText / 2) {
            Block block = place.block;
            block.text = place.text.TakeWords();
            Emit(std::move(block));
            place.block.label.clear();
        }
    }
}

void BlockWriter::Break()
{
    Here().text.Break();
}

void BlockWriter::Emit(Block&& block)
{
    Place& place = Here();
    if (place.place == Place::Kind::Note && (block.kind == BlockKind::Paragraph || block.kind == BlockKind::ListItem)) {
        block.kind = BlockKind::Footnote;
        block.level = 0;
        block.label = std::exchange(place.noteLabel, {});
    }
    Deliver(place, std::move(block));
}

// Gives a block to where `place` is.
void BlockWriter::Deliver(Place& place, Block&& block)
{
    if (place.place == Place::Kind::Document)
        sink_(std::move(block));
    else
        place.blocks.push_back(std::move(block));
}

void BlockWriter::End()
{
    Place& place = Here();
    if (std::string text = place.text.Take(); !text.empty()) {
        Block block = std::move(place.block);
        block.text = std::move(text);
        Emit(std::move(block));
    }
    place.open = false;
    place.block = {};
    for (Block& note : std::exchange(place.notes, {}))
        Deliver(place, std::move(note));
}

void BlockWriter::Mark(BlockKind kind, std::string_view label)
{
    End();
    if (places_.size() > 1)
        return;
    Block mark;
    mark.kind = kind;
    mark.label = CleanLabel(label);
    mark.language = language_;
    sink_(std::move(mark));
}

void BlockWriter::BeginRow()
{
    if (places_.size() >= DeepestNesting)
        return End();
    // A row in a row without a cell between them: the markup lacks the first one's end.
    if (Here().place == Place::Kind::Row)
        PopRow();
    else
        End();
    places_.push_back(std::make_unique<Place>(Place::Kind::Row));
}

void BlockWriter::BeginCell()
{
    if (Here().place != Place::Kind::Row)
        return End();
    // Text between rows and cells is no cell's.
    End();
    places_.push_back(std::make_unique<Place>(Place::Kind::Cell));
}

void BlockWriter::PopCell()
{
    End();
    const std::unique_ptr<Place> cell = std::move(places_.back());
    places_.pop_back();
    Place& row = Here();
    row.count += cell->blocks.size();
    row.cells.push_back(std::move(cell->blocks));
    if (row.count <= LargestRow)
        return;
    const std::size_t around = places_.size() - 2;
    for (Block& block : std::exchange(row.blocks, {}))
        Deliver(*places_[around], std::move(block));
    for (auto& blocks : std::exchange(row.cells, {}))
        for (Block& block : blocks)
            Deliver(*places_[around], std::move(block));
}

void BlockWriter::EndCell()
{
    if (Here().place == Place::Kind::Cell)
        PopCell();
    else
        End();
}

void BlockWriter::PopRow()
{
    End();
    const std::unique_ptr<Place> row = std::move(places_.back());
    places_.pop_back();
    const auto isNote = [](const Block& block) { return block.kind == BlockKind::Footnote; };
    std::size_t size = row->cells.size();
    for (const auto& cell : row->cells)
        for (const Block& block : cell)
            size += block.text.size();
    const bool plain = row->count <= LargestRow && size <= LongestText &&
                       std::all_of(row->cells.begin(), row->cells.end(), [&](const auto& cell) {
                           const auto texts = std::count_if(cell.begin(), cell.end(),
                                                            [&](const Block& block) { return !isNote(block); });
                           return texts == 0 || (texts == 1 && cell.front().kind == BlockKind::Paragraph);
                       });
    std::vector<Block> blocks = std::move(row->blocks);
    if (!plain) {
        for (auto& cell : row->cells)
            std::move(cell.begin(), cell.end(), std::back_inserter(blocks));
    } else {
        Block line;
        line.kind = BlockKind::TableRow;
        std::vector<Block> notes;
        for (std::size_t i = 0; i < row->cells.size(); ++i) {
            line.text += i > 0 ? "\t" : "";
            for (Block& block : row->cells[i]) {
                if (isNote(block)) {
                    notes.push_back(std::move(block));
                    continue;
                }
                line.text += block.text;
                if (line.language.empty())
                    line.language = block.language;
            }
        }
        if (line.text.find_first_not_of('\t') != std::string::npos)
            blocks.push_back(std::move(line));
        std::move(notes.begin(), notes.end(), std::back_inserter(blocks));
    }
    for (Block& block : blocks)
        Deliver(Here(), std::move(block));
}

void BlockWriter::EndRow()
{
    if (Here().place == Place::Kind::Cell && places_.size() > 2)
        PopCell();
    if (Here().place == Place::Kind::Row)
        PopRow();
    else
        End();
}

void BlockWriter::BeginNote(std::string_view label)
{
    places_.push_back(std::make_unique<Place>(Place::Kind::Note));
    Here().noteLabel = CleanLabel(label);
}

void BlockWriter::BeginAside()
{
    places_.push_back(std::make_unique<Place>(Place::Kind::Aside));
}

void BlockWriter::EndNote()
{
    const auto isNote = [](const auto& place) {
        return place->place == Place::Kind::Note || place->place == Place::Kind::Aside;
    };
    if (std::none_of(places_.begin(), places_.end(), isNote))
        return;
    while (!isNote(places_.back())) {
        if (Here().place == Place::Kind::Cell)
            PopCell();
        else
            PopRow();
    }
    End();
    const std::unique_ptr<Place> note = std::move(places_.back());
    places_.pop_back();
    Note(note->blocks);
}

void BlockWriter::Note(const std::vector<Block>& blocks)
{
    Place& place = Here();
    place.notes.insert(place.notes.end(), blocks.begin(), blocks.end());
}

void BlockWriter::Finish()
{
    while (places_.size() > 1) {
        if (Here().place == Place::Kind::Cell)
            PopCell();
        else if (Here().place == Place::Kind::Row)
            PopRow();
        else
            EndNote();
    }
    End();
}

} // namespace voxmate::readers
