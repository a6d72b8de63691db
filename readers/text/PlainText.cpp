#include "readers/text/PlainText.h"

#include "base/Text.h"
#include "base/TextEncoding.h"
#include "platform/TextDecoding.h"
#include "readers/BlockWriter.h"
#include "readers/Refusal.h"
#include "readers/markup/Numbering.h"
#include "readers/text/Hyphens.h"
#include "readers/text/ListMarks.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace voxmate::readers
{

namespace
{

// Lines that were broken to fit a width are not longer than this.
constexpr std::size_t WidestBroken = 130;
// A width below this is no width of prose.
constexpr std::size_t NarrowestBroken = 36;
constexpr std::size_t MeasuredLines = 2000;

std::string_view TakeLine(std::string_view& text)
{
    const std::size_t end = std::min(text.find_first_of("\r\n\f"), text.size());
    const std::string_view line = text.substr(0, end);
    const bool two = text.substr(end).starts_with("\r\n");
    text.remove_prefix(std::min(end + (two ? 2 : 1), text.size()));
    return line;
}

bool IsEmpty(std::string_view line)
{
    return Trimmed(line, " \t").empty();
}

// The width in characters that most of the text's lines do not exceed.
std::size_t WidthOf(std::string_view text)
{
    std::vector<std::size_t> lengths;
    while (!text.empty() && lengths.size() < MeasuredLines)
        if (const std::string_view line = TakeLine(text); !IsEmpty(line))
            lengths.push_back(Len(line));
    if (lengths.empty())
        return 0;
    // A few lines, as addresses and tables, may be longer.
    const auto at = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() * 95 / 100);
    std::nth_element(lengths.begin(), at, lengths.end());
    return *at;
}

// Lines between two empty ones.
class Paragraph
{
public:
    Paragraph(BlockWriter& writer, std::size_t width, const Vocabulary& vocabulary)
        : writer_(writer), width_(width), vocabulary_(vocabulary)
    {
    }

    void Add(std::string_view line)
    {
        const std::string_view inner = Trimmed(line, " \t");
        const std::size_t mark = ListMark(inner);
        const bool item = mark > 0 && (lines_.empty() || item_);
        const bool indented = !lines_.empty() && !item_ && Indent(line) >= 2 && Indent(lines_.back()) == 0 && Broken();
        if (item || indented || size_ > LongestText / 2)
            End();
        if (item) {
            item_ = true;
            label_ = inner.substr(0, mark);
            line.remove_prefix(Indent(line) + mark);
        }
        size_ += line.size();
        lines_.push_back(line);
    }

    void End()
    {
        if (!lines_.empty())
            Tell();
        lines_.clear();
        size_ = 0;
        item_ = false;
    }

private:
    static std::size_t Indent(std::string_view line) { return std::min(line.find_first_not_of(" \t"), line.size()); }

    // Whether the lines were broken where the next word had no room any more. One in five may not have been.
    bool Broken() const
    {
        if (width_ < NarrowestBroken || width_ > WidestBroken)
            return false;
        std::size_t full = 0;
        for (std::size_t i = 0; i + 1 < lines_.size(); ++i) {
            const std::string_view next = Trimmed(lines_[i + 1], " \t");
            full += Len(Trimmed(lines_[i])) + 1 + Len(next.substr(0, next.find(' '))) > width_ * 9 / 10 ? 1 : 0;
        }
        return full * 5 + 4 >= lines_.size() * 4;
    }

    void Tell()
    {
        const bool whole = lines_.size() == 1 || item_ || Broken();
        writer_.Begin(item_ ? BlockKind::ListItem : BlockKind::Paragraph, 1,
                      !item_             ? ""
                      : IsBullet(label_) ? Bullet
                                         : label_);
        if (whole) {
            std::string text;
            for (const std::string_view line : lines_)
                AppendLine(text, Trimmed(line, " \t"), vocabulary_);
            writer_.Text(text);
        } else {
            for (const std::string_view line : lines_) {
                // Long lines are paragraphs by themselves.
                if (width_ > WidestBroken)
                    writer_.Begin(BlockKind::Paragraph);
                writer_.Text(line);
                writer_.Break();
            }
        }
        writer_.End();
    }

    BlockWriter& writer_;
    std::size_t width_;
    const Vocabulary& vocabulary_;
    std::vector<std::string_view> lines_;
    std::size_t size_ = 0;
    std::string label_;
    bool item_ = false;
};

} // namespace

std::string_view TextOf(std::string_view bytes, std::string& own)
{
    if (bytes.size() > LargestText)
        throw Refused(Refusal::TooLarge);
    const std::optional<ByteOrderMark> mark = FindByteOrderMark(bytes);
    const std::string_view beginning = bytes.substr(0, std::min<std::size_t>(bytes.size(), 65536) / 2 * 2);
    const bool wide = mark ? mark->encoding != TextEncoding::Utf8 : GuessUtf16(beginning).has_value();
    if (!wide && IsValidUtf8(bytes))
        return bytes.substr(mark ? mark->length : 0);
    own = DecodeUnknown(bytes);
    return own;
}

void ReadPlainText(std::string_view text, const BlockSink& sink)
{
    BlockWriter writer(sink);
    // Words are known from a good part of the text before the first line is joined, without reading all of it.
    constexpr std::size_t known = std::size_t{256} * 1024;
    Vocabulary vocabulary;
    vocabulary.Add(text.substr(0, known));
    Paragraph paragraph(writer, WidthOf(text), vocabulary);
    while (!text.empty()) {
        const std::string_view line = TakeLine(text);
        if (IsEmpty(line))
            paragraph.End();
        else
            paragraph.Add(line);
    }
    paragraph.End();
    writer.Finish();
}

bool LooksLikeText(std::string_view beginning)
{
    const std::string text = DecodeUnknown(beginning.substr(0, beginning.size() / 2 * 2));
    return std::all_of(text.begin(), text.end(), [](char c) {
        // Tab to carriage return, the end mark of old systems' files, and escape.
        return static_cast<unsigned char>(c) >= 0x20 || (c >= '\t' && c <= '\r') || c == '\x1A' || c == '\x1B';
    });
}

} // namespace voxmate::readers
