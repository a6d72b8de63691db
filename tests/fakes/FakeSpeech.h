// The list of voices: those that the test puts into it.
#pragma once

#include "base/RuntimeError.h"
#include "platform/SpeechControl.h"

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeSpeech : public SpeechControl
{
public:
    std::vector<std::pair<std::string, std::string>> engines; ///< name, identifier
    std::optional<RuntimeError> error;
    int CountEngines() override
    {
        if (error)
            throw RuntimeError(*error);
        return static_cast<int>(engines.size());
    }
    std::string ModeName(int index) override { return engines.at(static_cast<std::size_t>(index - 1)).first; }
    std::string ModeID(int index) override { return engines.at(static_cast<std::size_t>(index - 1)).second; }
};

} // namespace voxmate::fakes
