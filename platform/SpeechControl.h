// The speech control: the list of voices. To its callers each voice is one engine.
#pragma once

#include <string>

namespace voxmate
{

class SpeechControl
{
public:
    virtual ~SpeechControl() = default;
    virtual int CountEngines() = 0;
    /// Display name of engine `index` (1 to CountEngines).
    virtual std::string ModeName(int index) = 0;
    /// Mode identifier of engine `index`: a GUID in its text form without braces, the same from run to run.
    virtual std::string ModeID(int index) = 0;
};

} // namespace voxmate
