#include "extras/Spoken.h"

#include "base/Text.h"
#include "readers/text/Sentences.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace voxmate
{

namespace
{

using readers::BlockKind;

constexpr std::size_t LongestPart = 1000;

// Milliseconds of silence behind a block, which tell a listener what the eye sees: a heading stands by itself, the
// items of a list and the rows of a table belong together. The voice's own pause behind a sentence comes before it.
int PauseBehind(BlockKind kind)
{
    switch (kind) {
    case BlockKind::Heading:
        return 600;
    case BlockKind::ListItem:
    case BlockKind::TableRow:
        return 200;
    default:
        return 350;
    }
}

// Whether a label says something to a listener, other than a bullet.
bool IsHeard(std::string_view label)
{
    return std::any_of(label.begin(), label.end(),
                       [](char c) { return IsDigit(c) || IsLetter(c) || (c & 0x80) != 0; }) &&
           !label.starts_with("\xE2"); // U+2000 to U+2FFF: bullets, dashes, daggers, arrows and boxes
}

// What is said before the text.
std::string Introduction(const readers::Block& block)
{
    if (block.kind == BlockKind::Footnote)
        return IsHeard(block.label) ? "Footnote " + block.label + ": " : "Footnote: ";
    return IsHeard(block.label) ? block.label + " " : "";
}

std::string RowText(std::string_view cells)
{
    std::string text;
    while (!cells.empty()) {
        const std::size_t end = std::min(cells.find('\t'), cells.size());
        const std::string_view cell = cells.substr(0, end);
        cells.remove_prefix(std::min(end + 1, cells.size()));
        if (cell.empty())
            continue;
        if (!text.empty())
            text += std::string_view(".,;:!?").find(text.back()) == std::string_view::npos ? ", " : " ";
        text += cell;
    }
    return text;
}

void Cut(std::string_view sentence, std::vector<SpokenPart>& parts)
{
    while (sentence.size() > LongestPart) {
        std::size_t end = sentence.rfind(' ', LongestPart);
        if (end == std::string_view::npos || end == 0)
            end = WholeUtf8(sentence.substr(0, LongestPart));
        parts.push_back({Trim(sentence.substr(0, end)), 0, false, {}});
        sentence.remove_prefix(end);
    }
    if (std::string text(Trimmed(sentence, " \n\t")); !text.empty())
        parts.push_back({std::move(text), 0, false, {}});
}

// What is seen and not heard in front of an item, each level further in.
std::string BulletOf(const readers::Block& block)
{
    constexpr int indent = 4;
    if (block.kind != BlockKind::ListItem)
        return "";
    const std::string room(static_cast<std::size_t>(indent * std::max(block.level - 1, 0)), ' ');
    return IsHeard(block.label) ? room : room + (block.label.empty() ? "\u2022" : block.label) + " ";
}

} // namespace

std::vector<SpokenPart> PartsOf(const readers::Block& block)
{
    std::vector<SpokenPart> parts;
    if (block.kind == BlockKind::Page || block.kind == BlockKind::Chapter)
        return parts;
    const std::string text = block.kind == BlockKind::TableRow ? RowText(block.text) : block.text;
    if (block.kind == BlockKind::TableRow) {
        Cut(text, parts);
    } else {
        std::size_t begin = 0;
        bool newLine = false;
        for (const std::size_t end : readers::SentenceEnds(text)) {
            const std::string_view sentence = std::string_view(text).substr(begin, end - begin);
            const std::size_t first = parts.size();
            Cut(sentence, parts);
            if (first < parts.size())
                parts[first].newLine = newLine;
            newLine = sentence.ends_with('\n');
            begin = end;
        }
    }
    if (!parts.empty()) {
        parts.front().text.insert(0, Introduction(block));
        parts.front().begins = true;
        parts.front().mark = BulletOf(block);
        parts.front().heading = block.kind == BlockKind::Heading ? std::clamp(block.level, 1, 9) : 0;
        parts.back().pause = PauseBehind(block.kind);
    }
    return parts;
}

std::string MarkupOf(const SpokenPart& part, std::string prefix)
{
    std::string markup = std::move(prefix);
    for (const char c : part.text)
        markup.append(c == '\\' ? 2 : 1, c);
    if (part.pause > 0)
        markup += "\\Pau=" + std::to_string(part.pause) + "\\";
    return markup;
}

} // namespace voxmate
