// One channel out of several.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace voxmate::speech
{

/// Averages channels, so that nothing of any is lost: one that is another upside down would cancel it and is turned
/// over, and of more than two those in which nothing has been heard so far are not counted. What is decided anew comes
/// in gradually.
class MonoMix
{
public:
    explicit MonoMix(std::size_t channels);
    /// Mixes frames of one sample a channel. The samples hold until the next call.
    std::span<const float> Mix(std::span<const float> frames);

private:
    void Decide(std::span<const float> frames);

    std::size_t channels_;
    bool silent_ = true; ///< nothing has been heard so far
    std::vector<bool> heard_;
    std::vector<float> gains_;  ///< of each channel, as they were
    std::vector<float> wanted_; ///< and as they shall be
    std::vector<float> mixed_;
};

} // namespace voxmate::speech
