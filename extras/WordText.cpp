#include "extras/WordText.h"

#include "base/Text.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace voxmate
{

namespace
{

using readers::Refusal;

// Characters taken from the word processor at a time.
constexpr std::int32_t PieceSize = 65536;

// Takes the whole paragraphs out of `text`: each ends with CR, and VT is a line's end within one.
void TakeParagraphs(std::string& text, std::vector<readers::Block>& blocks)
{
    std::size_t begin = 0;
    for (std::size_t end = text.find('\r'); end != std::string::npos; end = text.find('\r', begin)) {
        std::string paragraph(Trimmed(std::string_view(text).substr(begin, end - begin), " \t\v"));
        std::replace(paragraph.begin(), paragraph.end(), '\v', '\n');
        std::replace(paragraph.begin(), paragraph.end(), '\t', ' ');
        if (!paragraph.empty())
            blocks.push_back({readers::BlockKind::Paragraph, 0, "", std::move(paragraph), ""});
        begin = end + 1;
    }
    text.erase(0, begin);
}

void TakeText(WordApplication& word, std::vector<readers::Block>& blocks)
{
    std::string text;
    const std::int32_t end = word.RangeEnd();
    for (std::int32_t at = 0; at < end; at += PieceSize) {
        text += word.RangeText(at, std::min(end - at, PieceSize) + at);
        TakeParagraphs(text, blocks);
    }
    text += '\r';
    TakeParagraphs(text, blocks);
}

} // namespace

Refusal ReadByWordProcessor(Program& program, const std::string& file, std::vector<readers::Block>& blocks)
{
    program.Main->SetStatus("Opening Word Document. Please wait...");
    const std::uint32_t stops = program.StopCount;
    const auto goesOn = [&program, stops] {
        program.Host.Windows.DoEvents();
        return program.StopCount == stops;
    };
    try {
        const std::unique_ptr<WordApplication> word = program.Host.Word.CreateWord();
        word->SetVisible(false);
        word->Open(file, goesOn);
        TakeText(*word, blocks);
        word->Close();
        word->Quit();
    } catch (const RuntimeError& error) {
        if (program.StopCount != stops)
            return Refusal::None;
        return error.Number == CommandFailed().Number ? Refusal::Damaged : Refusal::NeedsConverter;
    }
    return blocks.empty() ? Refusal::NoText : Refusal::None;
}

} // namespace voxmate
