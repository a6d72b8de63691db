// The bytes of a wave file as libsndfile reads them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include <sndfile.h>

namespace voxmate::speech
{

/// A file or a piece of memory that begins as wave files do. A program that could not go back when it had written its
/// samples leaves their number as 0; then it says here that there are as many as follow.
class WaveInput
{
public:
    virtual ~WaveInput() = default;
    /// Null for what does not begin as a wave file. The bytes are not copied.
    static std::unique_ptr<WaveInput> OfMemory(std::span<const std::uint8_t> bytes);
    /// Null as well for what is no regular file or cannot be read.
    static std::unique_ptr<WaveInput> OfFile(const std::string& path);

    /// In bytes.
    std::uint64_t Size() const { return size_; }
    /// Null when libsndfile doesn't know what to do with it. The input must outlive what is opened.
    SNDFILE* Open(SF_INFO& info);

protected:
    explicit WaveInput(std::uint64_t size) : size_(size) {}
    /// Copies bytes from `at` on and returns how many, fewer than asked for only at the end or when reading fails.
    virtual std::size_t Copy(std::uint64_t at, std::span<std::uint8_t> target) = 0;

private:
    struct Chunk {
        std::uint32_t name = 0; ///< its letters, the first in the highest byte
        std::uint64_t length = 0;
    };

    static std::unique_ptr<WaveInput> Checked(std::unique_ptr<WaveInput> input);
    /// The chunk whose head is at this place; none that reaches beyond the file has a name.
    Chunk ChunkAt(std::uint64_t at);
    bool ChunksFollow(std::uint64_t at);
    void MendLength();
    std::size_t Read(std::span<std::uint8_t> target);

    std::uint64_t size_;
    std::uint64_t at_ = 0;
    bool highestFirst_ = false;  ///< the order of bytes in numbers
    std::uint64_t mendedAt_ = 0; ///< where the mended number stands; 0 for none
    std::array<std::uint8_t, 4> mended_{};
};

} // namespace voxmate::speech
