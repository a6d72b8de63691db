// The character server's fake: loads any character, unless the test gives it an error.
#pragma once

#include "base/RuntimeError.h"
#include "platform/Agent.h"
#include "tests/fakes/FakeCharacter.h"
#include "tests/fakes/Log.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate::fakes
{

class FakeAgent : public AgentControl
{
public:
    explicit FakeAgent(Log& log) : log_(log) {}

    AudioStatus status = AudioStatus::Available;
    std::map<std::string, std::unique_ptr<FakeCharacter>> loaded;
    std::optional<RuntimeError> loadError;
    std::function<void(FakeCharacter&)> prepare; ///< shapes a character when it is loaded
    std::optional<bool> soundEffects;
    std::vector<IdleLife> lives; ///< what idle characters were told, in order

    void Load(const std::string& name, const std::string& path) override
    {
        log_.push_back("Load " + name + " " + path);
        if (loadError)
            throw RuntimeError(*loadError);
        loaded[name] = std::make_unique<FakeCharacter>(log_, name);
        if (prepare)
            prepare(*loaded[name]);
    }
    void Unload(const std::string& name) override
    {
        log_.push_back("Unload " + name);
        loaded.erase(name);
    }
    AgentCharacter& Characters(const std::string& name) override
    {
        if (!loaded.contains(name))
            throw ObjectNotSet();
        return *loaded[name];
    }
    AudioStatus AudioOutputStatus() override { return status; }
    void SetSoundEffectsOn(bool on) override { soundEffects = on; }
    void SetIdleLife(IdleLife life) override { lives.push_back(life); }

private:
    Log& log_;
};

} // namespace voxmate::fakes
