// Numbers of the character file that its reader and its writer share, and the bounds that keep the cost of a hostile
// file small.
#pragma once

#include <cstddef>
#include <cstdint>

namespace voxmate::agent
{

inline constexpr std::uint32_t Signature = 0xABCDABC3;
inline constexpr std::uint32_t HeaderSize = 36;
/// Largest file that is read, in bytes. Characters take a few megabytes; a hostile file takes some eight times its size
/// in memory.
inline constexpr std::uint64_t MaxFileSize = 64u << 20;
/// Most animations, images and sounds. Names are searched one after the other, which would be slow in a list that fills
/// the largest file. Sounds, and the images of mouths, have 16-bit numbers anyway.
inline constexpr std::uint32_t MaxEntries = 1u << 16;
/// Most pixels of a character's frame, of one image, and of all images of one frame together: 2048 by 2048. The
/// costliest picture, a frame full of images with as large a mouth over them, is then drawn in some 40 ms. With four
/// times as many pixels, a file of 32 KB could hold the program up for 150 ms at every picture.
inline constexpr std::uint64_t MaxPixels = 1u << 22;
/// Bytes of animations that may be read more than once because several entries of the list share them.
inline constexpr std::uint64_t SharedAnimationBytes = 1u << 20;

/// Bytes of one stored row of an image `width` pixels wide; rows are padded to 4 bytes.
constexpr std::size_t RowSize(std::uint16_t width)
{
    return (std::size_t{width} + 3) / 4 * 4;
}

} // namespace voxmate::agent
