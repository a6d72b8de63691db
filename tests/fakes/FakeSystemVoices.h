// The system's voices, which say each word as one tone and tell of it when a test wants.
#pragma once

#include "platform/SystemVoices.h"

#include <cmath>
#include <string>
#include <vector>

namespace voxmate::fakes
{

class FakeSystemVoices final : public SystemVoices
{
public:
    static constexpr int Rate = 22050;
    static constexpr int WordSamples = Rate * 3 / 10; ///< of each word, the last twentieth of a second in silence

    std::vector<Voice> voices{{"tokens/anna", "Anna (German)", "de-de"}, {"tokens/bo", "Bo", ""}};
    double hertz = 110;
    bool lateEvents = false; ///< a word is told of after half of its samples
    int failAfter = -1;      ///< words after which speaking fails
    std::vector<std::string> log;

    std::vector<Voice> List() override
    {
        log.push_back("list");
        return voices;
    }
    int SamplesPerSecond() const override { return Rate; }
    void Rest() override { log.push_back("rest"); }

    bool Speak(const std::string& key, std::u16string_view text, Output& output) override
    {
        log.push_back(key + ": " + std::string(text.begin(), text.end()));
        std::int64_t at = 0;
        int words = 0;
        for (std::size_t unit = 0; unit < text.size(); ++unit) {
            const bool begins = text[unit] > u' ' && (unit == 0 || text[unit - 1] <= u' ');
            if (!begins)
                continue;
            if (words++ == failAfter)
                return false;
            const auto tell = [&] {
                output.Word(unit, at);
                output.Viseme(2, at);
                output.Viseme(0, at + WordSamples * 5 / 6);
            };
            if (!lateEvents)
                tell();
            const std::vector<std::int16_t> tone = Tone();
            const std::span<const std::int16_t> whole(tone);
            if (!output.Samples(whole.first(WordSamples / 2)))
                return true;
            if (lateEvents)
                tell();
            if (!output.Samples(whole.subspan(WordSamples / 2)))
                return true;
            at += WordSamples;
        }
        return true;
    }

private:
    // With overtones, as voices have them.
    std::vector<std::int16_t> Tone() const
    {
        std::vector<std::int16_t> samples(WordSamples);
        for (std::size_t i = 0; i < samples.size() * 5 / 6; ++i) {
            const double turn = 2 * 3.14159265358979 * hertz * static_cast<double>(i) / Rate;
            samples[i] =
                static_cast<std::int16_t>(4000 * (std::sin(turn) + std::sin(2 * turn) / 2 + std::sin(3 * turn) / 3));
        }
        return samples;
    }
};

} // namespace voxmate::fakes
