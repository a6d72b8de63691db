// Processes an engine's output on its way to the listener: speed and pitch beyond the engine's own range, whispering,
// volume and silence. Events are moved along with the samples.
#pragma once

#include "speech/Engine.h"
#include "speech/sound/Whisper.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

struct sonicStreamStruct;

namespace voxmate::speech
{

/// How the engine's samples are changed.
struct Shape {
    double speed = 1; ///< 2: twice as fast at the same pitch
    double rate = 1;  ///< 2: twice as fast and an octave higher, like a tape played faster
    bool whisper = false;
    double gain = 1;
    bool bends = false; ///< whether Bend will be called
};

/// Between Begin and End an engine delivers one stretch of sound. Stretches and silences are written to the sink one
/// after another.
class Shaper
{
public:
    Shaper(int samplesPerSecond, SampleSink& sink);
    Shaper(const Shaper&) = delete;
    Shaper& operator=(const Shaper&) = delete;

    void Begin(const Shape& shape);
    /// Raises the pitch of the samples that follow by this factor, beside the shape's own; they last as long.
    void Bend(double factor);
    /// The engine's samples; false when the sink wants no more.
    bool Samples(std::span<const std::int16_t> samples);
    /// Passes on an event at sample `position` of the stretch, counted in the engine's own samples.
    void Event(SpeechEvent::Kind kind, std::int64_t position, int value);
    /// Delivers the samples still buffered; false when the sink wants no more.
    bool End();

    /// Delivers digital silence (all samples 0); false when the sink wants no more.
    bool Silence(int milliseconds);
    /// Passes on an event at the end of everything delivered so far. Only outside a stretch.
    void EventHere(SpeechEvent::Kind kind, int value);

private:
    struct SonicDeleter {
        void operator()(sonicStreamStruct* stream) const;
    };

    bool Deliver(std::span<const std::int16_t> samples);
    bool DrainSonic();

    const int rate_;
    SampleSink& sink_;
    Shape shape_;
    std::unique_ptr<sonicStreamStruct, SonicDeleter> sonic_;
    std::optional<Whisperer> whisperer_;
    std::int64_t stretchStart_ = 0;
    std::int64_t delivered_ = 0;
    std::int64_t given_ = 0; ///< samples of the stretch that were given to sonic
    std::vector<std::int16_t> whispered_;
    std::vector<std::int16_t> loud_;
    std::vector<std::int16_t> scaled_;
};

} // namespace voxmate::speech
