// An engine that delivers what a test tells it to.
#pragma once

#include "speech/Engine.h"

#include <atomic>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeEngine final : public speech::Engine
{
public:
    explicit FakeEngine(std::vector<speech::Voice> voices) : voices_(std::move(voices)) {}

    const std::vector<speech::Voice>& Voices() override { return voices_; }
    int SampleRate(const speech::Voice&) override { return Rate; }
    bool Synthesize(const speech::Voice& voice, std::span<const speech::Segment> segments,
                    speech::SampleSink& sink) override
    {
        ++calls;
        lastKey = voice.key;
        lastText = segments.empty() ? "" : segments.front().text;
        const bool ok = synthesize ? synthesize(sink) : true;
        ++returns;
        return ok;
    }

    void Rest() override { ++rests; }

    static constexpr int Rate = 1000; // one sample is one millisecond
    std::function<bool(speech::SampleSink&)> synthesize;
    std::atomic<int> calls = 0;
    std::atomic<int> returns = 0;
    std::atomic<int> rests = 0;
    std::string lastKey;
    std::string lastText;

private:
    std::vector<speech::Voice> voices_;
};

} // namespace voxmate::fakes
