// The melody taken out of a voice: its pitch, and that everything is heard when it was heard before.
#include "speech/player/Flattener.h"
#include "speech/sound/SpeechMeasure.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace voxmate::speech
{
namespace
{

constexpr int Rate = 22050;
constexpr int Sentence = Rate * 8 / 10;
constexpr int Pause = Rate * 3 / 10;

struct Collect final : SampleSink {
    std::vector<std::int16_t> samples;
    bool Samples(std::span<const std::int16_t> more) override
    {
        samples.insert(samples.end(), more.begin(), more.end());
        return true;
    }
    void Event(const SpeechEvent&) override {}
};

// Six sentences of 0.8 seconds with pauses of 0.3 between them. In each the pitch goes from 140 down to 90 Hz.
std::vector<std::int16_t> Melody()
{
    std::vector<std::int16_t> samples;
    for (int sentence = 0; sentence < 6; ++sentence) {
        double phase = 0;
        for (int i = 0; i < Sentence; ++i) {
            phase += (140 - 50.0 * i / Sentence) / Rate;
            double value = 0;
            for (int harmonic = 1; harmonic <= 12; ++harmonic)
                value += std::sin(2 * 3.14159265358979 * harmonic * phase) / harmonic;
            samples.push_back(static_cast<std::int16_t>(std::lround(8000 * value)));
        }
        samples.resize(samples.size() + Pause);
    }
    return samples;
}

class FlattenerTest : public ::testing::TestWithParam<Shape>
{
};

TEST_P(FlattenerTest, ThePitchIsTheSameEverywhereAndNothingIsMoved)
{
    const std::vector<std::int16_t> melody = Melody();
    const measure::PitchTrack before = measure::TrackPitch(melody, Rate);
    EXPECT_GT(before.Quantile(0.9), before.Quantile(0.1) * 1.3);
    Shape shape = GetParam();
    Collect plain;
    Shaper shaper(Rate, plain);
    shaper.Begin(shape);
    shaper.Samples(melody);
    shaper.End();
    Collect flat;
    Shaper bent(Rate, flat);
    shape.bends = true;
    bent.Begin(shape);
    Flattener flattener(Rate, 110);
    // In pieces, as a network makes them.
    for (std::size_t at = 0; at < melody.size(); at += 12288)
        flattener.Samples(std::span(melody).subspan(at, std::min<std::size_t>(12288, melody.size() - at)), bent);
    bent.End();
    const measure::PitchTrack after = measure::TrackPitch(flat.samples, Rate);
    EXPECT_NEAR(after.Median(), 110 * shape.rate, 110 * shape.rate * 0.03);
    EXPECT_LT(after.Quantile(0.9), after.Quantile(0.1) * 1.1);
    const std::vector<std::int64_t> there = measure::Onsets(plain.samples, Rate);
    const std::vector<std::int64_t> here = measure::Onsets(flat.samples, Rate);
    ASSERT_EQ(here.size(), 6U);
    ASSERT_EQ(there.size(), 6U);
    for (std::size_t i = 0; i < here.size(); ++i)
        EXPECT_NEAR(static_cast<double>(here[i] - there[i]) / Rate, 0, 0.03) << i;
}

INSTANTIATE_TEST_SUITE_P(Shapes, FlattenerTest,
                         ::testing::Values(Shape{}, Shape{.speed = 1.3}, Shape{.speed = 0.8, .rate = 1.5}));

} // namespace
} // namespace voxmate::speech
