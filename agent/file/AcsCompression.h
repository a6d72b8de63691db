// The compression of images and regions in a character file: a stream of bits that holds single bytes and copies of
// earlier bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <vector>

namespace voxmate::agent
{

/// Packed data that breaks off, copies from before its start, or does not unpack to exactly the expected size.
class CompressionError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The most bytes that `packedSize` packed bytes can unpack to: a limit to check a claimed size against before memory
/// is allocated for it.
std::uint64_t LargestUnpackedSize(std::uint64_t packedSize);

/// Unpacks into exactly `size` bytes; raises CompressionError when the data gives fewer or more, or is malformed.
/// Allocates no memory but for the result and reads nothing outside `packed`.
std::vector<std::uint8_t> Decompress(std::span<const std::uint8_t> packed, std::size_t size);

/// Packs any bytes, even none. The result may be larger than the input; the caller then stores the input unpacked.
std::vector<std::uint8_t> Compress(std::span<const std::uint8_t> bytes);

} // namespace voxmate::agent
