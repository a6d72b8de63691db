#include "speech/player/Shaper.h"

#include <algorithm>
#include <cmath>

#include <sonic.h>

namespace voxmate::speech
{

namespace
{

// How much of the sound sonic holds on average: one period of 65 Hz.
constexpr double HeldSeconds = 1.0 / 65;
// A smaller change of the speed is made so seldom that the next one would have to wait for it.
constexpr double LeastChange = 0.06;
// In what time a difference is made up for.
constexpr double CatchUpSeconds = 0.3;

} // namespace

void Shaper::SonicDeleter::operator()(sonicStreamStruct* stream) const
{
    sonicDestroyStream(stream);
}

Shaper::Shaper(int samplesPerSecond, SampleSink& sink) : rate_(samplesPerSecond), sink_(sink) {}

void Shaper::Begin(const Shape& shape)
{
    shape_ = shape;
    stretchStart_ = delivered_;
    given_ = 0;
    sonic_.reset();
    whisperer_.reset();
    if (shape.speed != 1 || shape.rate != 1 || shape.bends) {
        sonic_.reset(sonicCreateStream(rate_, 1));
        if (sonic_) {
            sonicSetSpeed(sonic_.get(), static_cast<float>(shape.speed));
            sonicSetRate(sonic_.get(), static_cast<float>(shape.rate));
        } else {
            shape_.speed = 1;
            shape_.rate = 1;
        }
    }
    if (shape.whisper)
        whisperer_.emplace(rate_);
}

void Shaper::Bend(double factor)
{
    if (!sonic_)
        return;
    // With a speed that changes the library makes a little more or less than it should, and what is shown with the
    // sound would drift from it. It always holds a part of what it has been given.
    const double due = static_cast<double>(given_) / (shape_.speed * shape_.rate);
    const double late = (due - static_cast<double>(delivered_ - stretchStart_)) / rate_ - HeldSeconds;
    const double catchUp = std::clamp(1 + late / CatchUpSeconds, 0.8, 1.25);
    const double speed = shape_.speed / factor / catchUp;
    sonicSetSpeed(sonic_.get(), static_cast<float>(std::abs(speed - 1) < LeastChange ? 1 : speed));
    sonicSetRate(sonic_.get(), static_cast<float>(shape_.rate * factor));
}

bool Shaper::Samples(std::span<const std::int16_t> samples)
{
    if (!sonic_)
        return Deliver(samples);
    given_ += std::ssize(samples);
    // The library takes a pointer to non-const samples but only reads them.
    sonicWriteShortToStream(sonic_.get(), const_cast<short*>(samples.data()), static_cast<int>(samples.size()));
    return DrainSonic();
}

bool Shaper::DrainSonic()
{
    scaled_.resize(4096);
    while (const int count = sonicReadShortFromStream(sonic_.get(), scaled_.data(), static_cast<int>(scaled_.size())))
        if (!Deliver(std::span(scaled_).first(static_cast<std::size_t>(count))))
            return false;
    return true;
}

void Shaper::Event(SpeechEvent::Kind kind, std::int64_t position, int value)
{
    const std::int64_t moved = std::llround(static_cast<double>(position) / (shape_.speed * shape_.rate));
    sink_.Event({kind, stretchStart_ + moved, value});
}

bool Shaper::End()
{
    bool wanted = true;
    if (sonic_) {
        sonicFlushStream(sonic_.get());
        wanted = DrainSonic();
        sonic_.reset();
    }
    if (whisperer_) {
        whispered_.clear();
        whisperer_->Flush(whispered_);
        whisperer_.reset(); // so that its last samples are not whispered again
        wanted = wanted && Deliver(whispered_);
    }
    return wanted;
}

bool Shaper::Deliver(std::span<const std::int16_t> samples)
{
    if (whisperer_) {
        whispered_.clear();
        whisperer_->Push(samples, whispered_);
        samples = whispered_;
    }
    if (samples.empty())
        return true;
    if (shape_.gain != 1) {
        loud_.resize(samples.size());
        std::transform(samples.begin(), samples.end(), loud_.begin(), [gain = shape_.gain](std::int16_t sample) {
            return static_cast<std::int16_t>(std::clamp(std::lround(sample * gain), -32767L, 32767L));
        });
        samples = loud_;
    }
    delivered_ += static_cast<std::int64_t>(samples.size());
    return sink_.Samples(samples);
}

bool Shaper::Silence(int milliseconds)
{
    const std::vector<std::int16_t> silence(
        static_cast<std::size_t>(static_cast<std::int64_t>(milliseconds) * rate_ / 1000));
    sink_.Event({SpeechEvent::Kind::Mouth, delivered_, 0});
    delivered_ += static_cast<std::int64_t>(silence.size());
    return sink_.Samples(silence);
}

void Shaper::EventHere(SpeechEvent::Kind kind, int value)
{
    sink_.Event({kind, delivered_, value});
}

} // namespace voxmate::speech
