#include "speech/sound/WaveInput.h"

#include "speech/sound/SoundFileLibrary.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace voxmate::speech
{

namespace
{

constexpr std::uint64_t HeadSize = 12;     ///< the file's header
constexpr std::uint64_t ChunkHeadSize = 8; ///< a name and a length
constexpr int MostChunks = 1000;           ///< the most chunks looked at; wave files have a handful

constexpr std::uint32_t Name(const char (&letters)[5])
{
    std::uint32_t name = 0;
    for (std::size_t i = 0; i < 4; ++i)
        name = name << 8 | static_cast<unsigned char>(letters[i]);
    return name;
}

std::uint32_t Number(std::span<const std::uint8_t, 4> bytes, bool highestFirst)
{
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number = number << 8 | bytes[highestFirst ? i : 3 - i];
    return number;
}

} // namespace

std::unique_ptr<WaveInput> WaveInput::OfMemory(std::span<const std::uint8_t> bytes)
{
    return Checked(std::make_unique<WaveInput>(bytes));
}

// What the user opens may be a recording of the usual kinds. The readers of two dozen others that libsndfile has too,
// which few files need, should not be exposed to files from strangers.
std::unique_ptr<WaveInput> WaveInput::OfRecording(std::span<const std::uint8_t> bytes)
{
    auto input = std::make_unique<WaveInput>(bytes);
    std::array<std::uint8_t, HeadSize + 8> head{};
    const std::size_t count = input->Copy(0, head);
    const std::string_view text(reinterpret_cast<const char*>(head.data()), count);
    const std::string_view form = text.size() >= HeadSize ? text.substr(8, 4) : std::string_view();
    constexpr std::array<std::string_view, 4> beginnings{"fLaC", "OggS", "ID3", ".snd"};
    // A frame of MPEG audio: eleven bits set, and then a layer.
    const bool frame = count > 3 && head[0] == 0xFF && (head[1] & 0xE0) == 0xE0 && (head[1] & 0x06) != 0;
    input->isWave_ = text.starts_with("RIF") && form == "WAVE";
    if (input->isWave_)
        return Checked(std::move(input));
    const bool known = std::ranges::any_of(beginnings, [&](auto begin) { return text.starts_with(begin); });
    if (known || frame || (text.starts_with("FORM") && (form == "AIFF" || form == "AIFC")))
        return input;
    return nullptr;
}

std::size_t WaveInput::Copy(std::uint64_t at, std::span<std::uint8_t> target) const
{
    const auto from = static_cast<std::size_t>(std::min<std::uint64_t>(at, bytes_.size()));
    const std::size_t count = std::min(target.size(), bytes_.size() - from);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(from), count, target.begin());
    return count;
}

// Checked before libsndfile sees the file: a character's sounds are wave files and nothing else. Numbers are
// little-endian in RIFF files and big-endian in RIFX files.
std::unique_ptr<WaveInput> WaveInput::Checked(std::unique_ptr<WaveInput> input)
{
    std::array<std::uint8_t, HeadSize> head{};
    if (input->Copy(0, head) < head.size())
        return nullptr;
    const std::uint32_t form = Number(std::span(head).first<4>(), true);
    if ((form != Name("RIFF") && form != Name("RIFX")) || Number(std::span(head).last<4>(), true) != Name("WAVE"))
        return nullptr;
    input->highestFirst_ = form == Name("RIFX");
    input->MendLength();
    return input;
}

WaveInput::Chunk WaveInput::ChunkAt(std::uint64_t at)
{
    std::array<std::uint8_t, ChunkHeadSize> head{};
    if (Copy(at, head) < head.size())
        return {};
    const Chunk chunk{Number(std::span(head).first<4>(), true), Number(std::span(head).last<4>(), highestFirst_)};
    return chunk.length <= Size() - at - ChunkHeadSize ? chunk : Chunk{};
}

// Whether chunks with printable names fill the file from here to its end: then these bytes are not samples.
bool WaveInput::ChunksFollow(std::uint64_t at)
{
    int count = 0;
    for (; at < Size() && count < MostChunks; ++count) {
        const Chunk chunk = ChunkAt(at);
        for (int shift = 0; shift < 32; shift += 8)
            if ((chunk.name >> shift & 0xFF) < 0x20 || (chunk.name >> shift & 0xFF) > 0x7E)
                return false;
        at += ChunkHeadSize + chunk.length + chunk.length % 2;
    }
    return true;
}

void WaveInput::MendLength()
{
    std::uint64_t at = HeadSize;
    for (int count = 0; count < MostChunks; ++count) {
        const Chunk chunk = ChunkAt(at);
        if (chunk.name == 0)
            return;
        const std::uint64_t behind = at + ChunkHeadSize;
        if (chunk.name == Name("data")) {
            if (chunk.length > 0 || behind == Size() || ChunksFollow(behind))
                return;
            const auto length = static_cast<std::uint32_t>(std::min<std::uint64_t>(Size() - behind, 0xFFFFFFFF));
            for (std::size_t i = 0; i < mended_.size(); ++i)
                mended_.at(highestFirst_ ? 3 - i : i) = static_cast<std::uint8_t>(length >> (8 * i));
            mendedAt_ = at + 4;
            return;
        }
        at = behind + chunk.length + chunk.length % 2;
    }
}

std::size_t WaveInput::Read(std::span<std::uint8_t> target)
{
    const std::size_t count = Copy(at_, target);
    for (std::size_t i = 0; mendedAt_ != 0 && i < mended_.size(); ++i)
        if (mendedAt_ + i >= at_ && mendedAt_ + i < at_ + count)
            target[static_cast<std::size_t>(mendedAt_ + i - at_)] = mended_.at(i);
    at_ += count;
    return count;
}

const SoundFileLibrary& SoundFiles()
{
    static const SoundFileLibrary library;
    return library;
}

SNDFILE* WaveInput::Open(SF_INFO& info)
{
    SF_VIRTUAL_IO access{[](void* self) { return static_cast<sf_count_t>(static_cast<WaveInput*>(self)->Size()); },
                         [](sf_count_t offset, int whence, void* self) {
                             WaveInput& input = *static_cast<WaveInput*>(self);
                             const auto size = static_cast<sf_count_t>(input.Size());
                             const sf_count_t base = whence == SEEK_SET   ? 0
                                                     : whence == SEEK_CUR ? static_cast<sf_count_t>(input.at_)
                                                                          : size;
                             input.at_ = static_cast<std::uint64_t>(std::clamp<sf_count_t>(base + offset, 0, size));
                             return static_cast<sf_count_t>(input.at_);
                         },
                         [](void* target, sf_count_t count, void* self) {
                             if (count <= 0)
                                 return sf_count_t{0};
                             return static_cast<sf_count_t>(static_cast<WaveInput*>(self)->Read(
                                 {static_cast<std::uint8_t*>(target), static_cast<std::size_t>(count)}));
                         },
                         [](const void*, sf_count_t, void*) { return sf_count_t{0}; },
                         [](void* self) { return static_cast<sf_count_t>(static_cast<WaveInput*>(self)->at_); }};
    return !SoundFiles() ? nullptr : SoundFiles().Open(&access, SFM_READ, &info, this);
}

} // namespace voxmate::speech
