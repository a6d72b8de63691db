// The character server: loads characters and carries their requests and events.
#pragma once

#include "agent/Character.h"
#include "agent/EventQueue.h"
#include "agent/Stage.h"
#include "agent/VoiceTurn.h"
#include "base/Text.h"
#include "platform/Agent.h"
#include "speech/VoiceOutput.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace voxmate::agent
{

class Server : public AgentControl
{
public:
    /// Where a character comes from; raises AcsError when it cannot be read.
    using Reader = std::function<std::shared_ptr<const AcsFile>(const std::string& path)>;

    /// Stage and voice outlive the server; all calls and events belong to the user-interface thread.
    /// Without a reader of its own the server reads files, whatever the case of their extension.
    Server(Stage& stage, speech::VoiceOutput& voice, Reader reader = nullptr);
    ~Server() override;
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /// Raises run-time error 321 when the file cannot be used as a character (the description says why and names it),
    /// and 457 when a character of that name is loaded already. Names compare without case. It stands where the user
    /// had put the one unloaded last, feet on the same spot; without that near the lower right corner of the primary
    /// screen.
    void Load(const std::string& name, const std::string& path) override;
    /// Ends all that the character does: its requests are interrupted, each with its completion event, and it goes from
    /// the screen at once. Does nothing when there is no such character.
    void Unload(const std::string& name) override;
    /// Raises run-time error 9 when there is no such character.
    AgentCharacter& Characters(const std::string& name) override;
    AudioStatus AudioOutputStatus() override;
    /// On at first; concerns the sounds of frames, not the voice.
    void SetSoundEffectsOn(bool on) override;

private:
    Stage& stage_;
    speech::VoiceOutput& voice_;
    Reader reader_;
    EventQueue events_;
    VoiceTurn turn_;
    RequestOrder order_;
    std::optional<Point> feet_; ///< where the user had put the character unloaded last
    bool soundEffectsOn_ = true;
    struct WithoutCase {
        bool operator()(const std::string& a, const std::string& b) const { return UCase(a) < UCase(b); }
    };
    std::map<std::string, std::unique_ptr<Character>, WithoutCase> characters_;
};

} // namespace voxmate::agent
