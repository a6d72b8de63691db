// Mixes several channels down to one.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace voxmate::speech
{

/// Averages the channels so that none is lost: a channel that is another one inverted would cancel it, so it is
/// inverted back. With more than two channels, those that have been silent so far are not counted. Changed gains are
/// faded in.
class MonoMix
{
public:
    explicit MonoMix(std::size_t channels);
    /// Mixes frames of one sample per channel. The result is valid until the next call.
    std::span<const float> Mix(std::span<const float> frames);

private:
    void Decide(std::span<const float> frames);

    std::size_t channels_;
    bool silent_ = true; ///< nothing has been heard so far
    std::vector<bool> heard_;
    std::vector<float> gains_;  ///< of each channel, at the end of the last block
    std::vector<float> wanted_; ///< of each channel, to be reached at the end of the current one
    std::vector<float> mixed_;
};

} // namespace voxmate::speech
