#include "platform/linux/word/Md5.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

namespace voxmate::linux_platform
{

namespace
{

constexpr std::size_t BlockSize = 64;

// RFC 1321, 3.4: the integer parts of 2^32 times the absolute sine of 1 to 64.
std::array<std::uint32_t, 64> Sines()
{
    std::array<std::uint32_t, 64> sines{};
    for (std::size_t i = 0; i < sines.size(); ++i)
        sines[i] = static_cast<std::uint32_t>(std::floor(std::fabs(std::sin(static_cast<double>(i + 1))) * 0x1p32));
    return sines;
}

using State = std::array<std::uint32_t, 4>;

void Mix(State& state, std::string_view block)
{
    static const std::array<std::uint32_t, 64> sines = Sines();
    constexpr std::array<std::array<int, 4>, 4> turns{
        {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}}};
    std::array<std::uint32_t, 16> words{};
    for (std::size_t i = 0; i < BlockSize; ++i)
        words[i / 4] |= static_cast<std::uint32_t>(static_cast<unsigned char>(block[i])) << (8 * (i % 4));
    auto [a, b, c, d] = state;
    for (std::size_t i = 0; i < 64; ++i) {
        std::uint32_t mixed = 0;
        std::size_t word = 0;
        switch (i / 16) {
        case 0:
            mixed = (b & c) | (~b & d);
            word = i;
            break;
        case 1:
            mixed = (d & b) | (~d & c);
            word = 5 * i + 1;
            break;
        case 2:
            mixed = b ^ c ^ d;
            word = 3 * i + 5;
            break;
        default:
            mixed = c ^ (b | ~d);
            word = 7 * i;
        }
        mixed += a + sines[i] + words[word % 16];
        a = d;
        d = c;
        c = b;
        b += std::rotl(mixed, turns[i / 16][i % 4]);
    }
    state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d};
}

} // namespace

std::array<std::uint8_t, 16> Md5(std::string_view bytes)
{
    std::string padded(bytes);
    padded += '\x80';
    padded.resize((padded.size() + 8 + BlockSize - 1) / BlockSize * BlockSize - 8, '\0');
    const std::uint64_t bits = std::uint64_t{bytes.size()} * 8;
    for (int i = 0; i < 8; ++i)
        padded += static_cast<char>(bits >> (8 * i) & 0xFF);

    State state{0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    for (std::size_t at = 0; at < padded.size(); at += BlockSize)
        Mix(state, std::string_view(padded).substr(at, BlockSize));

    std::array<std::uint8_t, 16> digest{};
    for (std::size_t i = 0; i < digest.size(); ++i)
        digest[i] = static_cast<std::uint8_t>(state[i / 4] >> (8 * (i % 4)));
    return digest;
}

} // namespace voxmate::linux_platform
