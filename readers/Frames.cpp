#include "readers/Frames.h"

#include "base/Text.h"

#include <array>
#include <cstdint>

namespace voxmate::readers
{

namespace
{

constexpr char KindFrame = 'K';
constexpr char BlockFrame = 'B';
constexpr char EndFrame = 'E';
constexpr std::size_t LengthSize = 4;
constexpr std::size_t LongestLanguage = 64;
// A block's fields, its type and level, and the lengths of its three texts.
constexpr std::size_t LongestFrame = LongestText + LongestLabel + LongestLanguage + 3 + 3 * LengthSize;

void PutLength(std::string& bytes, std::size_t length)
{
    for (unsigned i = 0; i < LengthSize; ++i)
        bytes += static_cast<char>(length >> (8 * i) & 0xFF);
}

void PutText(std::string& bytes, std::string_view text, std::size_t longest)
{
    if (text.size() > longest)
        text = text.substr(0, WholeUtf8(text.substr(0, longest)));
    PutLength(bytes, text.size());
    bytes += text;
}

std::size_t LengthAt(std::string_view bytes)
{
    std::size_t length = 0;
    for (std::size_t i = 0; i < LengthSize; ++i)
        length |= std::size_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
    return length;
}

// Takes fields from the front of a frame.
struct Fields {
    std::string_view bytes;
    bool right = true;

    unsigned Number(unsigned most)
    {
        const unsigned number = bytes.empty() ? most + 1 : static_cast<unsigned char>(bytes[0]);
        right = right && number <= most;
        if (right)
            bytes.remove_prefix(1);
        return number;
    }
    std::string Text(std::size_t longest)
    {
        const std::size_t length = bytes.size() < LengthSize ? longest + 1 : LengthAt(bytes);
        right = right && length <= longest && length <= bytes.size() - LengthSize;
        if (!right)
            return "";
        std::string text(bytes.substr(LengthSize, length));
        bytes.remove_prefix(LengthSize + length);
        right = IsValidUtf8(text);
        return text;
    }
};

std::optional<Frame> Decode(std::string_view bytes)
{
    Fields fields{bytes.substr(1)};
    Frame frame;
    if (bytes[0] == KindFrame) {
        frame = static_cast<Kind>(fields.Number(static_cast<unsigned>(LastKind)));
    } else if (bytes[0] == EndFrame) {
        frame = static_cast<Refusal>(fields.Number(static_cast<unsigned>(LastRefusal)));
    } else if (bytes[0] == BlockFrame) {
        Block block;
        constexpr unsigned deepest = 9;
        block.kind = static_cast<BlockKind>(fields.Number(static_cast<unsigned>(LastBlockKind)));
        block.level = static_cast<int>(fields.Number(deepest));
        block.label = fields.Text(LongestLabel);
        block.text = fields.Text(LongestText);
        block.language = fields.Text(LongestLanguage);
        frame = std::move(block);
    } else {
        return std::nullopt;
    }
    if (!fields.right || !fields.bytes.empty())
        return std::nullopt;
    return frame;
}

} // namespace

std::string EncodeFrame(const Frame& frame)
{
    std::string bytes;
    if (const Kind* kind = std::get_if<Kind>(&frame)) {
        bytes = {KindFrame, static_cast<char>(*kind)};
    } else if (const Refusal* refusal = std::get_if<Refusal>(&frame)) {
        bytes = {EndFrame, static_cast<char>(*refusal)};
    } else {
        const Block& block = std::get<Block>(frame);
        bytes = {BlockFrame, static_cast<char>(block.kind), static_cast<char>(block.level)};
        PutText(bytes, block.label, LongestLabel);
        PutText(bytes, block.text, LongestText);
        PutText(bytes, block.language, LongestLanguage);
    }
    std::string whole;
    whole.reserve(LengthSize + bytes.size());
    PutLength(whole, bytes.size());
    return whole + bytes;
}

void FrameDecoder::Add(std::string_view bytes)
{
    bytes_.erase(0, at_);
    at_ = 0;
    bytes_ += bytes;
}

std::optional<Frame> FrameDecoder::Next()
{
    const std::string_view rest = std::string_view(bytes_).substr(at_);
    if (wrong_ || rest.size() < LengthSize)
        return std::nullopt;
    const std::size_t length = LengthAt(rest);
    wrong_ = length < 1 || length > LongestFrame;
    if (wrong_ || rest.size() - LengthSize < length)
        return std::nullopt;
    std::optional<Frame> frame = Decode(rest.substr(LengthSize, length));
    wrong_ = !frame;
    at_ += LengthSize + length;
    return frame;
}

} // namespace voxmate::readers
