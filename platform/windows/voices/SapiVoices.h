// The voices of Windows' own speech interface (SAPI 5).
#pragma once

#include "platform/SystemVoices.h"

#include <memory>

namespace voxmate::windows_platform
{

class SapiVoices : public SystemVoices
{
public:
    SapiVoices();
    ~SapiVoices() override;
    SapiVoices(const SapiVoices&) = delete;
    SapiVoices& operator=(const SapiVoices&) = delete;

    /// Those for all programs, then those that Windows brings for its own ("OneCore") under names that the first do not
    /// have. A key is the voice's token.
    std::vector<Voice> List() override;
    int SamplesPerSecond() const override { return Rate; }
    bool Speak(const std::string& key, std::u16string_view text, Output& output) override;
    void Rest() override;

    static constexpr int Rate = 22050;

private:
    struct Loaded;
    std::unique_ptr<Loaded> loaded_; ///< the voice in use, on the thread of Speak
};

} // namespace voxmate::windows_platform
