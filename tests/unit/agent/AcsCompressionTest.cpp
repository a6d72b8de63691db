// The packing of images: packing and unpacking of every kind of data, and hand-written streams of bits for every code.
#include "agent/file/AcsCompression.h"

#include <gtest/gtest.h>

#include <ostream>
#include <random>
#include <string>

using namespace voxmate::agent;

namespace
{

using Bytes = std::vector<std::uint8_t>;

// Makes packed data from bits as one reads them: "1 0 000011". The lowest bit of a value comes first, as in the stream.
Bytes Packed(const std::string& bits)
{
    Bytes out{0};
    int count = 0;
    std::uint8_t byte = 0;
    const auto put = [&](bool one) {
        byte = static_cast<std::uint8_t>(byte | (one ? 1 << count : 0));
        if (++count == 8) {
            out.push_back(byte);
            byte = 0;
            count = 0;
        }
    };
    for (const char c : bits)
        if (c == '0' || c == '1')
            put(c == '1');
    while (count != 0)
        put(true);
    out.insert(out.end(), 6, 0xFF);
    return out;
}

// `width` bits of a value, lowest first.
std::string Value(unsigned value, int width)
{
    std::string bits;
    for (int i = 0; i < width; ++i)
        bits += (value >> i & 1) != 0 ? '1' : '0';
    return bits;
}

std::string Literal(unsigned byte)
{
    std::string bits = "0";
    return bits.append(Value(byte, 8));
}

std::string Literals(const Bytes& bytes)
{
    std::string bits;
    for (const std::uint8_t byte : bytes)
        bits += Literal(byte);
    return bits;
}

const std::string EndCode = "1 111 11111111111111111111";

Bytes Numbered(std::size_t count, unsigned seed = 1)
{
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (std::uint8_t& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

std::string ErrorOf(const Bytes& packed, std::size_t size)
{
    try {
        Decompress(packed, size);
    } catch (const CompressionError& error) {
        return error.what();
    }
    return "no error";
}

void ExpectThereAndBack(const Bytes& bytes)
{
    const Bytes packed = Compress(bytes);
    ASSERT_GE(packed.size(), 7u);
    EXPECT_EQ(packed.front(), 0);
    EXPECT_EQ(Bytes(packed.end() - 6, packed.end()), Bytes(6, 0xFF));
    EXPECT_LE(bytes.size(), LargestUnpackedSize(packed.size()));
    EXPECT_TRUE(Decompress(packed, bytes.size()) == bytes);
}

} // namespace

TEST(AcsDecompressTest, ReadsOneByte)
{
    EXPECT_EQ(Decompress(Packed(Literal(0xA5) + EndCode), 1), Bytes{0xA5});
}

TEST(AcsDecompressTest, TakesTheEndCodeFromTheTail)
{
    EXPECT_EQ(Decompress(Packed(Literal(0x5A)), 1), Bytes{0x5A});
}

TEST(AcsDecompressTest, ReadsNothingFromTheShortestData)
{
    EXPECT_EQ(Decompress(Packed(""), 0), Bytes{});
}

TEST(AcsDecompressTest, CopiesFromTheNearestDistance)
{
    // 6-bit distance 0 + 1, length 2 + 0
    EXPECT_EQ(Decompress(Packed(Literal(7) + "1 0 000000 0"), 3), (Bytes{7, 7, 7}));
}

TEST(AcsDecompressTest, RepeatsWhatAnOverlappingCopyHasJustWritten)
{
    // distance 2 + 1 = 3, length 2 + 3 + 2 = 7: two one bits, then the value 2
    EXPECT_EQ(Decompress(Packed(Literals({1, 2, 3}) + "1 0 010000 110 01"), 10), (Bytes{1, 2, 3, 1, 2, 3, 1, 2, 3, 1}));
}

struct DistanceCase {
    const char* prefix;
    int width;
    std::size_t base;
    std::size_t shortest;
    unsigned last;
};

// What the name of a test shows of its case.
void PrintTo(const DistanceCase& p, std::ostream* out)
{
    *out << p.width << " bits, up to " << p.base + p.last;
}

class AcsDistanceTest : public testing::TestWithParam<DistanceCase>
{
};

TEST_P(AcsDistanceTest, CopiesFromItsFirstAndItsLastDistance)
{
    const DistanceCase& p = GetParam();
    for (const unsigned value : {0u, 1u, p.last}) {
        const std::size_t distance = p.base + value;
        const Bytes start = Numbered(distance);
        Bytes expected = start;
        for (std::size_t i = 0; i < p.shortest; ++i)
            expected.push_back(expected[expected.size() - distance]);
        const Bytes packed = Packed(Literals(start) + p.prefix + Value(value, p.width) + "0");
        EXPECT_TRUE(Decompress(packed, expected.size()) == expected) << distance;
    }
}

TEST_P(AcsDistanceTest, RefusesACopyFromBeforeTheStart)
{
    const DistanceCase& p = GetParam();
    const Bytes start = Numbered(p.base - 1);
    const Bytes packed = Packed(Literals(start) + p.prefix + Value(0, p.width) + "0");
    EXPECT_EQ(ErrorOf(packed, start.size() + p.shortest), "packed data copies from before its start");
}

INSTANTIATE_TEST_SUITE_P(EveryWidth, AcsDistanceTest,
                         testing::Values(DistanceCase{"1 0", 6, 1, 2, 63}, DistanceCase{"1 10", 9, 65, 2, 511},
                                         DistanceCase{"1 110", 12, 577, 2, 4095},
                                         DistanceCase{"1 111", 20, 4673, 3, 100000},
                                         DistanceCase{"1 111", 20, 4673, 3, 0xFFFFE}));

TEST(AcsDecompressTest, ReadsEveryWidthOfALength)
{
    for (int ones = 0; ones <= 11; ++ones) {
        const unsigned most = (1u << ones) - 1;
        for (const unsigned value : {0u, most}) {
            const std::size_t length = 2 + most + value;
            const std::string bits =
                Literal(9) + "1 0 000000" + std::string(static_cast<std::size_t>(ones), '1') + "0" + Value(value, ones);
            EXPECT_TRUE(Decompress(Packed(bits), 1 + length) == Bytes(1 + length, 9)) << ones;
        }
    }
}

TEST(AcsDecompressTest, RefusesALengthOfTwelveOnes)
{
    const std::string bits = Literal(9) + "1 0 000000 111111111111 0" + Value(0, 12);
    EXPECT_EQ(ErrorOf(Packed(bits), 8000), "packed data holds a length that does not exist");
}

TEST(AcsDecompressTest, RefusesDataThatDoesNotStartWithZero)
{
    Bytes packed = Packed(Literal(1));
    packed[0] = 1;
    EXPECT_EQ(ErrorOf(packed, 1), "packed data does not start with a zero byte");
}

TEST(AcsDecompressTest, RefusesDataWithoutItsTail)
{
    for (std::size_t i = 1; i <= 6; ++i) {
        Bytes packed = Packed(Literal(1));
        packed[packed.size() - i] = 0xFE;
        EXPECT_EQ(ErrorOf(packed, 1), "packed data does not end in six bytes of ones");
    }
    EXPECT_EQ(ErrorOf({0, 255, 255, 255, 255, 255}, 0), "packed data is too short");
    EXPECT_EQ(ErrorOf({}, 0), "packed data is too short");
}

TEST(AcsDecompressTest, RefusesDataOfAnotherSize)
{
    const Bytes packed = Packed(Literals({1, 2, 3}));
    EXPECT_EQ(ErrorOf(packed, 2), "packed data is longer than its size");
    EXPECT_EQ(ErrorOf(packed, 4), "packed data is shorter than its size");
    EXPECT_EQ(ErrorOf(Packed(Literal(7) + "1 0 000000 0"), 2), "packed data is longer than its size");
}

TEST(AcsDecompressTest, RefusesASizeThatTheDataCannotHold)
{
    EXPECT_EQ(ErrorOf(Packed(Literal(7)), 1u << 30), "packed data is too short for its size");
}

TEST(AcsDecompressTest, GivesAnErrorOrTheRightSizeForAnyBytes)
{
    std::mt19937 random(7);
    int refused = 0;
    for (int round = 0; round < 20000; ++round) {
        Bytes packed(7 + random() % 60);
        for (std::uint8_t& byte : packed)
            byte = static_cast<std::uint8_t>(random());
        packed[0] = 0;
        std::fill(packed.end() - 6, packed.end(), std::uint8_t{0xFF});
        const std::size_t size = random() % 100;
        try {
            ASSERT_EQ(Decompress(packed, size).size(), size);
        } catch (const CompressionError&) {
            ++refused;
        }
    }
    EXPECT_GT(refused, 10000);
}

TEST(AcsCompressTest, GivesBackNothing)
{
    ExpectThereAndBack({});
}

TEST(AcsCompressTest, GivesBackEveryLengthOfARun)
{
    for (std::size_t size = 1; size < 300; ++size)
        ExpectThereAndBack(Bytes(size, 3));
    for (const std::size_t size : {4095u, 4096u, 4097u, 4098u, 4099u, 8193u, 100000u})
        ExpectThereAndBack(Bytes(size, 3));
}

TEST(AcsCompressTest, GivesBackRandomData)
{
    for (std::size_t size = 1; size < 200; ++size)
        ExpectThereAndBack(Numbered(size, static_cast<unsigned>(size)));
    ExpectThereAndBack(Numbered(200000));
}

TEST(AcsCompressTest, GivesBackPeriodicData)
{
    for (const std::size_t period : {2u, 3u, 64u, 65u, 66u, 576u, 577u, 578u, 4672u, 4673u, 4674u, 30000u}) {
        const Bytes one = Numbered(period);
        Bytes bytes;
        while (bytes.size() < 3 * period + 500)
            bytes.insert(bytes.end(), one.begin(), one.end());
        ExpectThereAndBack(bytes);
        EXPECT_LT(Compress(bytes).size(), period * 9 / 8 + 80) << period;
    }
}

TEST(AcsCompressTest, GivesBackARepetitionAtTheFarthestDistanceAndBeyond)
{
    const Bytes start = Numbered(100);
    for (const std::size_t distance : {4673u + 0xFFFFEu, 4673u + 0xFFFFFu}) {
        Bytes bytes = start;
        bytes.resize(distance, 0);
        bytes.insert(bytes.end(), start.begin(), start.end());
        ExpectThereAndBack(bytes);
    }
}

TEST(AcsCompressTest, GivesBackHugeData)
{
    std::mt19937 random(3);
    Bytes bytes;
    while (bytes.size() < 3000000)
        bytes.insert(bytes.end(), 1 + random() % 40, static_cast<std::uint8_t>(random() % 24));
    ExpectThereAndBack(bytes);
}

TEST(AcsCompressTest, PacksARunOfAnImageToAFewBytes)
{
    // 9 bits of the first byte and 31 of one copy, in 5 bytes, beside the head and the tail
    EXPECT_EQ(Compress(Bytes(4097, 200)).size(), 12u);
}
