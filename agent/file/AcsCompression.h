// The packing of images and regions in a character file: copies of earlier bytes and single bytes, as a stream of bits.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <vector>

namespace voxmate::agent
{

/// Packed data that breaks off, copies from before its start, or does not give exactly the size it should.
class CompressionError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The most bytes that `packedSize` packed bytes can stand for: a limit to check a claimed size against before any
/// memory is taken for it.
std::uint64_t LargestUnpackedSize(std::uint64_t packedSize);

/// Unpacks into exactly `size` bytes; raises CompressionError when the data gives fewer, more, or is not sound. Takes
/// no memory beyond the result and reads nothing outside `packed`.
std::vector<std::uint8_t> Decompress(std::span<const std::uint8_t> packed, std::size_t size);

/// Packs any bytes, none included. The result may be larger than the input: the caller then stores the input as it is.
std::vector<std::uint8_t> Compress(std::span<const std::uint8_t> bytes);

} // namespace voxmate::agent
