#include "speech/sound/WaveFile.h"

#include "speech/sound/MonoMix.h"
#include "speech/sound/SoundFileLibrary.h"
#include "speech/sound/WaveInput.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace voxmate::speech
{

namespace
{

constexpr int LongestSeconds = 600;
constexpr int MostChannels = 32;
constexpr int BlockFrames = 4096;

int Bits(int format)
{
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
        return 8;
    case SF_FORMAT_PCM_16:
        return 16;
    case SF_FORMAT_PCM_24:
        return 24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_FLOAT:
        return 32;
    case SF_FORMAT_DOUBLE:
        return 64;
    default:
        return 0;
    }
}

struct Close {
    void operator()(SNDFILE* file) const { SoundFiles().Close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, Close>;

/// Reads the samples of any WaveInput.
class Reader final : public WaveReader
{
public:
    Reader(std::unique_ptr<WaveInput> input, SoundFile file, const SF_INFO& info)
        : input_(std::move(input)), file_(std::move(file)), info_(info), left_(Most(*input_, info)),
          block_(static_cast<std::size_t>(info.channels) * BlockFrames), mix_(static_cast<std::size_t>(info.channels))
    {
    }

    /// Null when there is no input or it is not a wave file of a supported kind.
    static std::unique_ptr<Reader> Over(std::unique_ptr<WaveInput> input)
    {
        SF_INFO info{};
        SoundFile file(input ? input->Open(info) : nullptr);
        if (!file || info.channels < 1 || info.channels > MostChannels || info.samplerate < LowestRate ||
            info.samplerate > HighestRate)
            return nullptr;
        return std::make_unique<Reader>(std::move(input), std::move(file), info);
    }

    const SF_INFO& Info() const { return info_; }
    int SamplesPerSecond() const override { return info_.samplerate; }
    std::int64_t Length() const override
    {
        return std::clamp<std::int64_t>(info_.frames, 0, info_.samplerate * LongestRecording);
    }

    std::span<const std::int16_t> Next() override
    {
        samples_.clear();
        // A damaged header's sample count is not trusted: samples are read as they come, but only up to a limit.
        if (left_ == 0)
            return samples_;
        const sf_count_t frames = SoundFiles().Read(file_.get(), block_.data(), BlockFrames);
        if (frames <= 0)
            return samples_;
        const std::size_t count = static_cast<std::size_t>(frames) * static_cast<std::size_t>(info_.channels);
        for (const float sample : mix_.Mix(std::span(block_).first(count))) {
            const float value = sample * 32768;
            samples_.push_back(static_cast<std::int16_t>(
                std::lround(std::clamp(std::isfinite(value) ? value : 0.0F, -32768.0F, 32767.0F))));
        }
        if (samples_.size() > left_)
            samples_.resize(static_cast<std::size_t>(left_));
        left_ -= samples_.size();
        return samples_;
    }

private:
    // The most samples that are read.
    static std::uintmax_t Most(const WaveInput& input, const SF_INFO& info)
    {
        return input.IsWave() ? input.Size() * MostSamplesPerByte
                              : static_cast<std::uintmax_t>(info.samplerate * LongestRecording);
    }

    std::unique_ptr<WaveInput> input_;
    SoundFile file_;
    SF_INFO info_;
    std::uintmax_t left_;
    std::vector<float> block_;
    MonoMix mix_;
    std::vector<std::int16_t> samples_;
};

} // namespace

std::optional<WaveFormat> DescribeWave(std::span<const std::uint8_t> file)
{
    const std::unique_ptr<Reader> reader = Reader::Over(WaveInput::OfMemory(file));
    if (!reader)
        return std::nullopt;
    const SF_INFO& info = reader->Info();
    return WaveFormat{info.channels, info.samplerate, Bits(info.format), info.frames};
}

std::optional<WaveData> DecodeWave(std::span<const std::uint8_t> file)
{
    const std::unique_ptr<Reader> reader = Reader::Over(WaveInput::OfMemory(file));
    if (!reader)
        return std::nullopt;
    WaveData data{reader->SamplesPerSecond(), {}};
    const std::size_t most = static_cast<std::size_t>(data.samplesPerSecond) * LongestSeconds;
    for (auto samples = reader->Next(); !samples.empty() && data.samples.size() < most; samples = reader->Next()) {
        const std::size_t count = std::min(samples.size(), most - data.samples.size());
        data.samples.insert(data.samples.end(), samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(count));
    }
    if (data.samples.empty())
        return std::nullopt;
    return data;
}

std::unique_ptr<WaveReader> WaveReader::Of(std::span<const std::uint8_t> bytes)
{
    return Reader::Over(WaveInput::OfRecording(bytes));
}

} // namespace voxmate::speech
