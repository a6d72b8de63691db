// A voice channel that says words as the user wants them said.
#pragma once

#include "platform/WordingControl.h"
#include "speech/VoiceOutput.h"
#include "speech/text/LanguageGuess.h"
#include "speech/text/Wording.h"

#include <utility>
#include <vector>

namespace voxmate::speech
{

class WordedVoice final : public VoiceOutput, public WordingControl
{
public:
    /// `voice` speaks; it must outlive this object.
    explicit WordedVoice(VoiceOutput& voice) : voice_(voice) {}

    void UseWording(std::vector<WordingRule> rules, bool shortens) override
    {
        wording_ = Wording(rules, shortens);
        rules_ = std::move(rules);
        shortens_ = shortens;
    }
    void UseVoicesByLanguage(bool on) override { byLanguage_ = on; }
    bool KnowsLanguages() const override { return GuessesLanguages(); }
    /// As they were handed over last.
    const std::vector<WordingRule>& Rules() const { return rules_; }
    bool Shortens() const { return shortens_; }
    bool ByLanguage() const { return byLanguage_; }

    AudioStatus Status() override { return voice_.Status(); }
    void Start(Utterance utterance, VoiceEvents events) override
    {
        // Of a wave file only its length and the words that are shown count.
        if (utterance.waveFile.empty())
            utterance.segments = wording_.Apply(std::move(utterance.segments));
        utterance.byLanguage = byLanguage_;
        voice_.Start(std::move(utterance), std::move(events));
    }
    void Stop() override { voice_.Stop(); }

private:
    VoiceOutput& voice_;
    Wording wording_{{}, false};
    std::vector<WordingRule> rules_;
    bool shortens_ = false;
    bool byLanguage_ = false;
};

} // namespace voxmate::speech
