// The rules for words that were handed over last.
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

    void UseWording(std::vector<WordingRule> newRules, bool newShortens) override
    {
        rules = std::move(newRules);
        shortens = newShortens;
    }
};

} // namespace voxmate::fakes
