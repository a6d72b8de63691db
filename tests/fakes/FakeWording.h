// What was handed over last: the rules for words, and whether each language has a voice of its own.
#pragma once

#include "platform/WordingControl.h"

#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeWording : public WordingControl
{
public:
    std::vector<WordingRule> rules;
    bool shortens = false;
    bool byLanguage = false;
    bool knowsLanguages = true;

    void UseWording(std::vector<WordingRule> newRules, bool newShortens) override
    {
        rules = std::move(newRules);
        shortens = newShortens;
    }
    void UseVoicesByLanguage(bool on) override { byLanguage = on; }
    bool KnowsLanguages() const override { return knowsLanguages; }
};

} // namespace voxmate::fakes
