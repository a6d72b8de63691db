// The bytes of a wave file, or of another recording, as libsndfile reads them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <sndfile.h>

namespace voxmate::speech
{

/// Bytes in memory that begin like a wave file. A program that cannot seek back after writing its samples
/// leaves their length in the file as 0; in that case everything that follows is presented as samples.
class WaveInput
{
public:
    explicit WaveInput(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}
    WaveInput(const WaveInput&) = delete;
    WaveInput& operator=(const WaveInput&) = delete;

    /// Null when the bytes do not begin like a wave file. They are not copied.
    static std::unique_ptr<WaveInput> OfMemory(std::span<const std::uint8_t> bytes);
    /// The same for the bytes of a file, which may also be a recording of another kind: FLAC, Ogg, MPEG audio, AIFF or
    /// AU.
    static std::unique_ptr<WaveInput> OfRecording(std::span<const std::uint8_t> bytes);

    /// In bytes.
    std::uint64_t Size() const { return bytes_.size(); }
    bool IsWave() const { return isWave_; }
    /// Null when libsndfile cannot read it. The input must outlive the returned handle.
    SNDFILE* Open(SF_INFO& info);

private:
    struct Chunk {
        std::uint32_t name = 0; ///< its four letters, the first in the highest byte
        std::uint64_t length = 0;
    };

    static std::unique_ptr<WaveInput> Checked(std::unique_ptr<WaveInput> input);
    /// Copies bytes from offset `at` on and returns how many; fewer than asked for only at the end.
    std::size_t Copy(std::uint64_t at, std::span<std::uint8_t> target) const;
    /// The chunk whose header is at offset `at`; its name is 0 when it reaches beyond the end of the file.
    Chunk ChunkAt(std::uint64_t at);
    bool ChunksFollow(std::uint64_t at);
    void MendLength();
    std::size_t Read(std::span<std::uint8_t> target);

    std::span<const std::uint8_t> bytes_;
    std::uint64_t at_ = 0;
    bool isWave_ = true;
    bool highestFirst_ = false;  ///< byte order of numbers: true for big-endian
    std::uint64_t mendedAt_ = 0; ///< offset of the corrected length; 0 when none is corrected
    std::array<std::uint8_t, 4> mended_{};
};

} // namespace voxmate::speech
