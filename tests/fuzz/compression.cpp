// Fuzzes the character file's compression. Every input is used twice: as packed data, compared with a second reader
// that goes bit by bit, and as data to be packed.
#include "fuzz.h"

#include "agent/file/AcsCompression.h"

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <vector>

using namespace voxmate::agent;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

namespace
{

using Bytes = std::vector<std::uint8_t>;

// Reads exactly as the format is described: bit by bit, without knowing the size beforehand. Returns nothing for
// malformed data; stops once there are more than `Most` bytes.
class PlainReader
{
public:
    static constexpr std::size_t Most = 1u << 17;

    explicit PlainReader(std::span<const std::uint8_t> packed) : packed_(packed) {}

    std::optional<Bytes> Read()
    {
        const std::size_t size = packed_.size();
        if (size < 7 || packed_[0] != 0)
            return std::nullopt;
        for (std::size_t i = size - 6; i < size; ++i)
            if (packed_[i] != 0xFF)
                return std::nullopt;
        Bytes out;
        while (!overrun_ && out.size() <= Most) {
            if (Bit() == 0) {
                const std::uint32_t byte = Bits(8);
                if (!overrun_)
                    out.push_back(static_cast<std::uint8_t>(byte));
                continue;
            }
            std::size_t ones = 0;
            while (ones < 3 && Bit() == 1)
                ++ones;
            constexpr std::array<int, 4> widths{6, 9, 12, 20};
            constexpr std::array<std::uint32_t, 4> bases{1, 65, 577, 4673};
            const std::uint32_t value = Bits(widths[ones]);
            if (overrun_)
                break;
            if (ones == 3 && value == 0xFFFFF)
                return out;
            int lengthBits = 0;
            while (Bit() == 1)
                if (++lengthBits > 11 || overrun_)
                    return std::nullopt;
            const std::uint32_t length = (ones == 3 ? 3u : 2u) + (1u << lengthBits) - 1 + Bits(lengthBits);
            const std::uint32_t distance = bases[ones] + value;
            if (overrun_ || distance > out.size())
                return std::nullopt;
            for (std::uint32_t i = 0; i < length; ++i)
                out.push_back(out[out.size() - distance]);
        }
        return overrun_ ? std::nullopt : std::optional(out);
    }

private:
    std::uint32_t Bit()
    {
        const std::size_t byte = 1 + at_ / 8;
        if (byte >= packed_.size()) {
            overrun_ = true;
            return 0;
        }
        return (packed_[byte] >> (at_++ % 8)) & 1u;
    }
    std::uint32_t Bits(int count)
    {
        std::uint32_t value = 0;
        for (int i = 0; i < count; ++i)
            value |= Bit() << i;
        return value;
    }

    std::span<const std::uint8_t> packed_;
    std::size_t at_ = 0;
    bool overrun_ = false;
};

std::optional<Bytes> Unpacked(std::span<const std::uint8_t> packed, std::size_t size)
{
    const InTime inTime("data is unpacked");
    try {
        Bytes out = Decompress(packed, size);
        Require(out.size() == size, "data unpacks to exactly the size that was asked for");
        return out;
    } catch (const CompressionError&) {
        return std::nullopt;
    }
}

void PackAndUnpack(std::span<const std::uint8_t> bytes)
{
    Bytes packed;
    {
        const InTime inTime("data is packed");
        packed = Compress(bytes);
    }
    // Nine bits for each byte that is not copied, one byte in front, six bytes behind.
    Require(packed.size() <= 1 + (bytes.size() * 9 + 7) / 8 + 6, "packing never takes more than nine bits a byte");
    const std::optional<Bytes> back = Unpacked(packed, bytes.size());
    Require(back && std::ranges::equal(*back, bytes), "what was packed unpacks to what it was");
    const std::optional<Bytes> plain = PlainReader(packed).Read();
    Require(plain && std::ranges::equal(*plain, bytes), "what was packed is what the format says");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span<const std::uint8_t> input(data, size);
    const std::optional<Bytes> plain = PlainReader(input).Read();
    if (plain && plain->size() > PlainReader::Most) {
        Require(!Unpacked(input, PlainReader::Most), "data that gives too much is refused");
    } else if (plain) {
        Require(plain->size() <= LargestUnpackedSize(size), "no data unpacks to more than the largest size foretold");
        Require(Unpacked(input, plain->size()) == plain, "data unpacks to what the format says");
        Require(!Unpacked(input, plain->size() + 1), "data that gives too little is refused");
        if (!plain->empty())
            Require(!Unpacked(input, plain->size() - 1), "data that gives too much is refused");
    } else {
        for (const std::size_t claimed : {std::size_t{0}, size, std::size_t{1} << 16})
            Require(!Unpacked(input, claimed), "data that is not sound is refused");
    }
    // Packing takes fifty times as long as unpacking, so only some inputs are packed.
    if (size % 4 != 0)
        return 0;
    if (!plain)
        PackAndUnpack(input);
    else if (plain->size() <= 1u << 12)
        PackAndUnpack(*plain);
    return 0;
}
