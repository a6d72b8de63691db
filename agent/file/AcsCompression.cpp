#include "agent/file/AcsCompression.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>

namespace voxmate::agent
{

namespace
{

constexpr std::size_t HeadSize = 1; // a zero byte
constexpr std::size_t TailSize = 6; // bytes 0xFF; they supply the end code when the data has none of its own
constexpr std::uint32_t EndOfData = 0xFFFFF;
constexpr int MostLengthBits = 11;

// The four widths of a distance, selected by the number of one bits that follow the copy bit.
struct DistanceClass {
    int prefixBits; // the one bits and, except after three of them, the zero bit that ends them
    int valueBits;
    std::uint32_t base;
    std::uint32_t shortest; // the least length of a copy in this class
};
constexpr std::array<DistanceClass, 4> Classes{{{1, 6, 1, 2}, {2, 9, 65, 2}, {3, 12, 577, 2}, {3, 20, 4673, 3}}};

// The parts of the longest code: copy bit, prefix, distance, unary length, length value. One Fill, of 57 bits, holds
// all of it.
static_assert(1 + 3 + 20 + (MostLengthBits + 1) + MostLengthBits <= 57);

class BitReader
{
public:
    explicit BitReader(std::span<const std::uint8_t> bytes) : next_(bytes.data()), end_(bytes.data() + bytes.size()) {}

    // Brings at least 57 bits into view, or all that are left.
    void Fill()
    {
        if constexpr (std::endian::native == std::endian::little) {
            if (end_ - next_ >= 8 && count_ >= 0) {
                std::uint64_t word = 0;
                std::memcpy(&word, next_, sizeof word);
                bits_ |= word << count_;
                const int bytes = (63 - count_) / 8;
                next_ += bytes;
                count_ += bytes * 8;
                // The bits above count_ are already those of *next_; the next Fill puts the same bits there again.
                return;
            }
        }
        while (count_ >= 0 && count_ <= 56 && next_ != end_) {
            bits_ |= std::uint64_t{*next_++} << count_;
            count_ += 8;
        }
    }
    std::uint64_t View() const { return bits_; }
    void Take(int bits)
    {
        bits_ >>= bits;
        count_ -= bits;
    }
    std::uint32_t TakeValue(int bits)
    {
        const auto value = static_cast<std::uint32_t>(bits_ & ((std::uint64_t{1} << bits) - 1));
        Take(bits);
        return value;
    }
    bool PastEnd() const { return count_ < 0; }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;
    std::uint64_t bits_ = 0;
    int count_ = 0;
};

class BitWriter
{
public:
    explicit BitWriter(std::vector<std::uint8_t>& out) : out_(out) {}

    void Put(std::uint32_t value, int bits)
    {
        bits_ |= std::uint64_t{value} << count_;
        count_ += bits;
        while (count_ >= 8) {
            out_.push_back(static_cast<std::uint8_t>(bits_));
            bits_ >>= 8;
            count_ -= 8;
        }
    }
    // Fills the last byte with ones, which continue in the tail.
    void FillWithOnes()
    {
        if (count_ > 0)
            Put((1u << (8 - count_)) - 1, 8 - count_);
    }

private:
    std::vector<std::uint8_t>& out_;
    std::uint64_t bits_ = 0;
    int count_ = 0;
};

void CopyWithin(std::uint8_t* to, std::size_t distance, std::size_t length)
{
    const std::uint8_t* from = to - distance;
    if (distance >= length)
        std::memcpy(to, from, length);
    else if (distance == 1)
        std::memset(to, *from, length);
    else
        for (std::size_t i = 0; i < length; ++i) // overlapping: what was just written is repeated
            to[i] = from[i];
}

} // namespace

std::uint64_t LargestUnpackedSize(std::uint64_t packedSize)
{
    // The densest code: 1 copy bit, 1 + 6 bits of distance, 12 + 11 bits of length for 2 + 2047 + 2047 bytes.
    constexpr std::uint64_t densestBits = 1 + 1 + 6 + (MostLengthBits + 1) + MostLengthBits;
    constexpr std::uint64_t densestBytes = 3 + 2 * ((1u << MostLengthBits) - 1);
    return (packedSize * 8 / densestBits + 1) * densestBytes;
}

std::vector<std::uint8_t> Decompress(std::span<const std::uint8_t> packed, std::size_t size)
{
    if (packed.size() < HeadSize + TailSize)
        throw CompressionError("packed data is too short");
    if (packed[0] != 0)
        throw CompressionError("packed data does not start with a zero byte");
    for (const std::uint8_t byte : packed.last(TailSize))
        if (byte != 0xFF)
            throw CompressionError("packed data does not end in six bytes of ones");
    if (size > LargestUnpackedSize(packed.size()))
        throw CompressionError("packed data is too short for its size");

    std::vector<std::uint8_t> out(size);
    std::size_t at = 0;
    BitReader in(packed.subspan(HeadSize));
    for (;;) {
        in.Fill();
        if ((in.View() & 1) == 0) {
            in.Take(1);
            const auto byte = static_cast<std::uint8_t>(in.TakeValue(8));
            if (in.PastEnd())
                throw CompressionError("packed data breaks off");
            if (at == size)
                throw CompressionError("packed data is longer than its size");
            out[at++] = byte;
            continue;
        }
        in.Take(1);
        const int ones = std::min(std::countr_one(in.View()), 3);
        const DistanceClass& kind = Classes[static_cast<std::size_t>(ones)];
        in.Take(kind.prefixBits);
        const std::uint32_t value = in.TakeValue(kind.valueBits);
        if (in.PastEnd())
            throw CompressionError("packed data breaks off");
        if (ones == 3 && value == EndOfData)
            break;
        const int lengthBits = std::countr_one(in.View());
        if (lengthBits > MostLengthBits)
            throw CompressionError("packed data holds a length that does not exist");
        in.Take(lengthBits + 1);
        const std::size_t length = kind.shortest + ((std::size_t{1} << lengthBits) - 1) + in.TakeValue(lengthBits);
        if (in.PastEnd())
            throw CompressionError("packed data breaks off");
        const std::size_t distance = std::size_t{kind.base} + value;
        if (distance > at)
            throw CompressionError("packed data copies from before its start");
        if (length > size - at)
            throw CompressionError("packed data is longer than its size");
        CopyWithin(out.data() + at, distance, length);
        at += length;
    }
    if (at != size)
        throw CompressionError("packed data is shorter than its size");
    return out;
}

namespace
{

constexpr std::size_t LongestAt(const DistanceClass& kind)
{
    return kind.shortest + 2 * ((1u << MostLengthBits) - 1);
}

std::size_t ClassOf(std::size_t distance)
{
    std::size_t kind = 0;
    while (kind < 3 && distance >= Classes[kind + 1].base)
        ++kind;
    return kind;
}

// The number of value bits that express a length `extra` above the shortest.
int LengthBits(std::size_t extra)
{
    return static_cast<int>(std::bit_width(extra + 1)) - 1;
}

// Finds earlier occurrences of the bytes at a position: the nearest with the same two bytes, and a chain, nearest
// first, of those with the same hash of four bytes. Keeps the longest match found for each distance class.
class Matches
{
public:
    explicit Matches(std::span<const std::uint8_t> bytes)
        : bytes_(bytes), head_(HashSize, None), previous_(bytes.size(), None), shortHead_(65536, None)
    {
    }

    struct Match {
        std::size_t distance = 0;
        std::size_t length = 0; // 0: none
    };

    // The longest match found at `at` for each distance class. Positions must be asked for in order, each once.
    const std::array<Match, 4>& Find(std::size_t at)
    {
        constexpr std::size_t longEnough = 512;
        constexpr int mostTries = 96;
        std::array<Match, 4> carried{};
        bool inLongMatch = false;
        for (std::size_t k = 0; k < 4; ++k)
            if (found_[k].length > longEnough) {
                carried[k] = {found_[k].distance, found_[k].length - 1};
                const std::size_t most = std::min(bytes_.size() - at, LongestAt(Classes[k]));
                std::size_t& length = carried[k].length;
                while (length < most && bytes_[at + length - carried[k].distance] == bytes_[at + length])
                    ++length;
                inLongMatch = true;
            }
        found_ = carried;
        const std::size_t left = bytes_.size() - at;
        if (!inLongMatch && left >= 2) {
            if (const std::size_t near = shortHead_[Pair(at)]; near != None)
                Try(at, near);
            if (left >= 4) {
                int tries = mostTries;
                for (std::size_t from = head_[Hash(at)]; from != None && tries > 0; from = previous_[from], --tries)
                    if (!Try(at, from))
                        break;
            }
        }
        if (left >= 2)
            shortHead_[Pair(at)] = at;
        if (left >= 4) {
            previous_[at] = head_[Hash(at)];
            head_[Hash(at)] = at;
        }
        return found_;
    }

private:
    static constexpr std::size_t None = std::numeric_limits<std::size_t>::max();
    static constexpr std::size_t HashSize = 1u << 16;

    std::size_t Pair(std::size_t at) const { return std::size_t{bytes_[at]} | std::size_t{bytes_[at + 1]} << 8; }
    std::size_t Hash(std::size_t at) const
    {
        std::uint32_t word = 0;
        std::memcpy(&word, bytes_.data() + at, sizeof word);
        return (word * 2654435761u) >> 16;
    }
    // Compares with the occurrence at `from`. Returns false when no farther one need be tried, because they are out of
    // reach or the match is long enough.
    bool Try(std::size_t at, std::size_t from)
    {
        const std::size_t distance = at - from;
        const std::size_t k = ClassOf(distance);
        const DistanceClass& kind = Classes[k];
        if (distance > std::size_t{kind.base} + EndOfData - 1)
            return false;
        const std::size_t most = std::min(bytes_.size() - at, LongestAt(kind));
        // A copy from a farther class costs more bits, so it only helps when it is longer than those of all nearer
        // classes.
        std::size_t toBeat = 0;
        for (std::size_t nearer = 0; nearer <= k; ++nearer)
            toBeat = std::max(toBeat, found_[nearer].length);
        if (toBeat >= most)
            return toBeat < 512;
        if (bytes_[from + toBeat] == bytes_[at + toBeat]) {
            std::size_t length = 0;
            while (length < most && bytes_[from + length] == bytes_[at + length])
                ++length;
            if (length >= kind.shortest && length > toBeat)
                found_[k] = {distance, length};
        }
        return found_[k].length < 512;
    }

    std::span<const std::uint8_t> bytes_;
    std::vector<std::size_t> head_;
    std::vector<std::size_t> previous_;
    std::vector<std::size_t> shortHead_;
    std::array<Match, 4> found_{};
};

// The cheapest known way to reach a position: by a single byte (distance 0) or by a copy.
struct Step {
    std::uint32_t cost = std::numeric_limits<std::uint32_t>::max();
    std::uint32_t distance = 0;
    std::uint32_t length = 0;
};

// Goes through the data once. Each position passes its cost on to the ends of the single byte and the copies that start
// there.
std::vector<Step> CheapestSteps(std::span<const std::uint8_t> bytes)
{
    std::vector<Step> steps(bytes.size() + 1);
    steps[0].cost = 0;
    Matches matches(bytes);
    const auto reach = [&](std::size_t to, std::uint32_t cost, std::size_t distance, std::size_t length) {
        if (cost < steps[to].cost)
            steps[to] = {cost, static_cast<std::uint32_t>(distance), static_cast<std::uint32_t>(length)};
    };
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const std::uint32_t cost = steps[at].cost;
        reach(at + 1, cost + 9, 0, 1);
        const auto& found = matches.Find(at);
        for (std::size_t k = 0; k < 4; ++k) {
            const DistanceClass& kind = Classes[k];
            if (found[k].length < kind.shortest)
                continue;
            const std::size_t extraMost = found[k].length - kind.shortest;
            const auto base = cost + 1 + static_cast<std::uint32_t>(kind.prefixBits + kind.valueBits);
            // Lengths that take the same number of bits cost the same, so the longest of each bit count is enough. The
            // few shortest lengths are tried, too, because they decide where the next copy starts.
            for (std::size_t extra = 0;;) {
                const auto bits = static_cast<std::uint32_t>(LengthBits(extra));
                reach(at + kind.shortest + extra, base + 2 * bits + 1, found[k].distance, kind.shortest + extra);
                if (extra == extraMost)
                    break;
                const std::size_t next = extra < 14 ? extra + 1 : ((extra + 2) << 1) - 2;
                extra = std::min(next, extraMost);
            }
        }
    }
    return steps;
}

} // namespace

std::vector<std::uint8_t> Compress(std::span<const std::uint8_t> bytes)
{
    const std::vector<Step> steps = CheapestSteps(bytes);
    std::vector<std::size_t> path; // where the steps end, last step first
    for (std::size_t at = bytes.size(); at > 0; at -= steps[at].length)
        path.push_back(at);

    std::vector<std::uint8_t> out{0};
    BitWriter bits(out);
    for (auto end = path.rbegin(); end != path.rend(); ++end) {
        const Step& step = steps[*end];
        if (step.distance == 0) {
            bits.Put(0, 1);
            bits.Put(bytes[*end - 1], 8);
            continue;
        }
        const std::size_t k = ClassOf(step.distance);
        const DistanceClass& kind = Classes[k];
        bits.Put(1, 1);
        bits.Put((1u << k) - 1, kind.prefixBits);
        bits.Put(step.distance - kind.base, kind.valueBits);
        const std::uint32_t extra = step.length - kind.shortest;
        const int lengthBits = LengthBits(extra);
        bits.Put((1u << lengthBits) - 1, lengthBits + 1);
        bits.Put(extra + 1 - (1u << lengthBits), lengthBits);
    }
    // The end code is 24 one bits, which the tail supplies.
    bits.FillWithOnes();
    out.insert(out.end(), TailSize, 0xFF);
    return out;
}

} // namespace voxmate::agent
