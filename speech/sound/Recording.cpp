#include "speech/sound/Recording.h"

#include "base/RuntimeError.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <span>
#include <utility>
#include <vector>

namespace voxmate::speech
{

namespace
{

constexpr std::chrono::milliseconds BetweenQuestions{100};
constexpr std::size_t BlockSamples = 4096;

class DecodedRecording final : public WaveReader
{
public:
    DecodedRecording(std::unique_ptr<Helper> helper, Wanted wanted)
        : helper_(std::move(helper)), wanted_(std::move(wanted))
    {
        if (Fill(std::as_writable_bytes(std::span(&head_, 1))) < sizeof head_)
            head_ = {};
    }

    bool Good() const { return head_.samplesPerSecond >= LowestRate && head_.samplesPerSecond <= HighestRate; }
    int SamplesPerSecond() const override { return static_cast<int>(head_.samplesPerSecond); }
    std::int64_t Length() const override
    {
        return std::clamp<std::int64_t>(head_.length, 0, head_.samplesPerSecond * LongestRecording);
    }

    std::span<const std::int16_t> Next() override
    {
        samples_.resize(BlockSamples);
        samples_.resize(Fill(std::as_writable_bytes(std::span(samples_))) / sizeof(std::int16_t));
        return samples_;
    }

private:
    // Returns how many bytes there are: fewer than asked for only at the end.
    std::size_t Fill(std::span<std::byte> target)
    {
        std::size_t count = 0;
        while (count < target.size() && !helper_->AtEnd() && wanted_()) {
            const std::span<std::byte> rest = target.subspan(count);
            count += helper_->Read({reinterpret_cast<char*>(rest.data()), rest.size()}, BetweenQuestions);
        }
        return count;
    }

    std::unique_ptr<Helper> helper_;
    Wanted wanted_;
    RecordingHead head_;
    std::vector<std::int16_t> samples_;
};

} // namespace

std::unique_ptr<WaveReader> OpenRecording(std::unique_ptr<Helper> helper, Wanted wanted)
{
    auto recording = std::make_unique<DecodedRecording>(std::move(helper), std::move(wanted));
    return recording->Good() ? std::move(recording) : nullptr;
}

std::unique_ptr<WaveReader> OpenRecording(const std::string& path, Wanted wanted)
{
    try {
        return OpenRecording(StartHelper(DecoderProgram, path), std::move(wanted));
    } catch (const RuntimeError&) {
        return nullptr;
    }
}

} // namespace voxmate::speech
