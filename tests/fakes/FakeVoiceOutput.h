// A voice that says nothing: the test tells it what is being heard.
#pragma once

#include "speech/VoiceOutput.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeVoiceOutput : public speech::VoiceOutput
{
public:
    AudioStatus Status() override { return status; }

    void Start(speech::Utterance utterance, speech::VoiceEvents events) override
    {
        started.push_back(utterance);
        heard.push_back(std::move(events));
        speaking = true;
    }

    void Stop() override
    {
        ++stops;
        speaking = false;
    }

    // What the last utterance sounds like. The events are copied first: a handler may start the next one.
    void Begin() { Last().Started(); }
    void Word(int word) { Last().Word(word); }
    void Mouth(int mouth) { Last().Mouth(mouth); }
    void Bookmark(int number) { Last().Bookmark(number); }
    void End(bool ok = true)
    {
        speaking = false;
        Last().Ended(ok);
    }
    /// From the first sample to the last.
    void SpeakAll()
    {
        Begin();
        End();
    }
    speech::VoiceEvents Last() const { return heard.back(); }

    AudioStatus status = AudioStatus::Available;
    bool speaking = false;
    int stops = 0;
    std::vector<speech::Utterance> started;
    std::vector<speech::VoiceEvents> heard; ///< of each utterance in `started`
};

} // namespace voxmate::fakes
