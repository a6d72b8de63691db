#include "Film.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

namespace voxmate::characters
{

namespace
{

constexpr agent::Colour Ground{0xF4, 0xF7, 0xF9};
// The mouths of a figure that speaks, one after the other, each for this time (1/100 s).
constexpr std::array<int, 12> SpokenMouths{0, 5, 1, 6, 3, 5, 0, 2, 6, 4, 5, 1};
constexpr int MouthTime = 9;

void PutWord(QByteArray& to, int value)
{
    to += static_cast<char>(value & 0xFF);
    to += static_cast<char>(value >> 8 & 0xFF);
}

/// Codes of growing width, packed from the lowest bit on, in blocks of at most 255 bytes.
class CodeWriter
{
public:
    void Put(int code, int width)
    {
        bits_ |= static_cast<std::uint32_t>(code) << count_;
        for (count_ += width; count_ >= 8; count_ -= 8, bits_ >>= 8)
            bytes_ += static_cast<char>(bits_ & 0xFF);
    }
    QByteArray Blocks()
    {
        if (count_ > 0)
            bytes_ += static_cast<char>(bits_ & 0xFF);
        QByteArray blocks;
        for (qsizetype at = 0; at < bytes_.size(); at += 255) {
            const QByteArray block = bytes_.mid(at, 255);
            blocks += static_cast<char>(block.size());
            blocks += block;
        }
        return blocks + '\0';
    }

private:
    QByteArray bytes_;
    std::uint32_t bits_ = 0;
    int count_ = 0;
};

/// GIF's variant of LZW for pixels of eight bits.
QByteArray Packed(const std::vector<std::uint8_t>& pixels)
{
    constexpr int clear = 256;
    constexpr int end = 257;
    constexpr int most = 4096;
    CodeWriter out;
    QHash<int, int> table; // from a code and the pixel after it to the code of both
    int next = end + 1;
    int width = 9;
    out.Put(clear, width);
    int code = pixels.front();
    for (std::size_t i = 1; i < pixels.size(); ++i) {
        const int key = code << 8 | pixels[i];
        if (const auto known = table.constFind(key); known != table.constEnd()) {
            code = *known;
            continue;
        }
        out.Put(code, width);
        code = pixels[i];
        if (next == most) {
            out.Put(clear, width);
            table.clear();
            next = end + 1;
            width = 9;
            continue;
        }
        if (next == 1 << width)
            ++width;
        table[key] = next++;
    }
    out.Put(code, width);
    // The reader has one more entry by now than this table.
    if (next == 1 << width && width < 12)
        ++width;
    out.Put(end, width);
    return out.Blocks();
}

struct Picture {
    const agent::Frame* frame;
    int mouth;
    int duration;
};

std::vector<Picture> Played(const agent::Animation& animation)
{
    std::vector<Picture> pictures;
    std::vector<bool> passed(animation.frames.size());
    const bool speaks = std::all_of(animation.frames.begin(), animation.frames.end(),
                                    [](const agent::Frame& f) { return f.duration == 0 || f.HasMouths(); });
    int time = 0;
    for (std::size_t at = 0; at < animation.frames.size() && !passed[at];) {
        const agent::Frame& frame = animation.frames[at];
        passed[at] = true;
        for (int left = frame.duration; left > 0;) {
            const int now = speaks ? std::min(left, MouthTime - time % MouthTime) : left;
            const auto spoken = static_cast<std::size_t>(time / MouthTime) % SpokenMouths.size();
            pictures.push_back({&frame, speaks ? SpokenMouths.at(spoken) : -1, now});
            left -= now;
            time += now;
        }
        at = !frame.branches.empty() && frame.branches[0].percent == 100 ? frame.branches[0].frame : at + 1;
    }
    if (pictures.empty())
        throw std::runtime_error("nothing is seen in the animation " + animation.name);
    return pictures;
}

} // namespace

QByteArray Film(const agent::AcsFile& file, const agent::Animation& animation)
{
    const std::vector<Picture> pictures = Played(animation);
    QByteArray out = "GIF89a";
    PutWord(out, file.width);
    PutWord(out, file.height);
    out += QByteArray("\xF7\0\0", 3); // 256 colours for all pictures
    QHash<std::uint32_t, std::uint8_t> indices;
    for (std::size_t i = 0; i < 256; ++i) {
        agent::Colour colour = i < file.palette.size() ? file.palette[i] : agent::Colour{};
        if (i == file.transparentIndex)
            colour = Ground;
        else
            indices.insert(0xFF000000u | static_cast<std::uint32_t>(colour.red) << 16 |
                               static_cast<std::uint32_t>(colour.green) << 8 | colour.blue,
                           static_cast<std::uint8_t>(i));
        out += static_cast<char>(colour.red);
        out += static_cast<char>(colour.green);
        out += static_cast<char>(colour.blue);
    }
    out += QByteArray("!\xFF\x0BNETSCAPE2.0\x03\x01\0\0\0", 19); // repeats forever
    for (const Picture& picture : pictures) {
        const Bitmap bitmap = agent::ComposeFrame(file, *picture.frame, picture.mouth);
        std::vector<std::uint8_t> pixels;
        for (const std::uint32_t pixel : bitmap.pixels)
            pixels.push_back(pixel == 0 ? file.transparentIndex : indices.value(pixel));
        out += QByteArray("!\xF9\x04\x04", 4);
        PutWord(out, picture.duration);
        out += QByteArray("\0\0,\0\0\0\0", 7);
        PutWord(out, file.width);
        PutWord(out, file.height);
        out += '\0';
        out += '\x08';
        out += Packed(pixels);
    }
    return out + ';';
}

} // namespace voxmate::characters
