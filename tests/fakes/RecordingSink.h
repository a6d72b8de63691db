// Collects what an engine delivers.
#pragma once

#include "speech/Engine.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace voxmate::fakes
{

struct RecordingSink final : speech::SampleSink {
    std::vector<std::int16_t> samples;
    std::vector<speech::SpeechEvent> events;
    std::size_t stopAfter = SIZE_MAX;
    std::int64_t latestEventBehind = 0; ///< how far an event was behind the samples already delivered, at most

    bool Samples(std::span<const std::int16_t> more) override
    {
        samples.insert(samples.end(), more.begin(), more.end());
        return samples.size() < stopAfter;
    }
    void Event(const speech::SpeechEvent& event) override
    {
        latestEventBehind = std::max(latestEventBehind, static_cast<std::int64_t>(samples.size()) - event.sample);
        events.push_back(event);
    }
    std::vector<int> Values(speech::SpeechEvent::Kind kind) const
    {
        std::vector<int> values;
        for (const speech::SpeechEvent& event : events)
            if (event.kind == kind)
                values.push_back(event.value);
        return values;
    }
};

} // namespace voxmate::fakes
