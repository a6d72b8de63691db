#include "speech/text/ModeId.h"

#include <cstdint>
#include <cstdio>

namespace voxmate::speech
{

namespace
{

// FNV-1a with its published 64-bit prime, then the final mixing steps of SplitMix64, so that every bit depends on every
// byte.
std::uint64_t Hash(std::uint64_t start, std::string_view family, std::string_view key)
{
    std::uint64_t hash = start;
    const auto add = [&hash](std::string_view text) {
        for (const char c : text)
            hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3U;
    };
    add(family);
    add("/");
    add(key);
    hash = (hash ^ (hash >> 30)) * 0xBF58476D1CE4E5B9U;
    hash = (hash ^ (hash >> 27)) * 0x94D049BB133111EBU;
    return hash ^ (hash >> 31);
}

} // namespace

std::string ModeIdOf(std::string_view family, std::string_view key)
{
    // FNV-1a's published 64-bit offset basis; its complement is used for the second half.
    constexpr std::uint64_t basis = 0xCBF29CE484222325U;
    const std::uint64_t high = (Hash(basis, family, key) & ~0xF000ULL) | 0x8000ULL;
    const std::uint64_t low = (Hash(~basis, family, key) & ~(3ULL << 62)) | (2ULL << 62);
    char text[37];
    std::snprintf(text, sizeof text, "%08X-%04X-%04X-%04X-%04X%08X", static_cast<unsigned>(high >> 32),
                  static_cast<unsigned>(high >> 16 & 0xFFFF), static_cast<unsigned>(high & 0xFFFF),
                  static_cast<unsigned>(low >> 48), static_cast<unsigned>(low >> 32 & 0xFFFF),
                  static_cast<unsigned>(low & 0xFFFFFFFF));
    return text;
}

} // namespace voxmate::speech
