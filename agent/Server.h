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
    /// Reads the character at `path`; raises AcsError when it cannot be read.
    using Reader = std::function<std::shared_ptr<const AcsFile>(const std::string& path)>;

    /// Stage and voice must outlive the server. All calls and events belong to the user-interface thread. Without a
    /// `reader` the server reads files, whatever the case of their extension.
    Server(Stage& stage, speech::VoiceOutput& voice, Reader reader = nullptr);
    ~Server() override;

    /// Raises run-time error 321 when the file cannot be used as a character (the description names the file and says
    /// why), and 457 when a character of that name is already loaded. Names compare without case. The feet of the new
    /// character stand where the user had put those of the character unloaded last; otherwise it stands near the lower
    /// right corner of the primary screen. If that one stood aside, the new one does.
    void Load(const std::string& name, const std::string& path) override;
    /// Ends all that the character does and takes it off the screen at once. Its requests are interrupted, each with
    /// its completion event. Does nothing when there is no such character.
    void Unload(const std::string& name) override;
    /// The character loaded under that name; raises run-time error 9 when there is none.
    AgentCharacter& Characters(const std::string& name) override;
    AudioStatus AudioOutputStatus() override;
    /// On at first. Concerns the sounds of animation frames, not the voice.
    void SetSoundEffectsOn(bool on) override;
    void SetIdleLife(IdleLife life) override;

private:
    Stage& stage_;
    speech::VoiceOutput& voice_;
    Reader reader_;
    EventQueue events_;
    VoiceTurn turn_;
    RequestOrder order_;
    std::optional<Point> feet_;  ///< where the user had put the character unloaded last
    std::optional<Point> aside_; ///< where it had been sent aside
    bool soundEffectsOn_ = true;
    IdleLife life_ = IdleLife::Full;
    struct WithoutCase {
        bool operator()(const std::string& a, const std::string& b) const { return UCase(a) < UCase(b); }
    };
    std::map<std::string, std::unique_ptr<Character>, WithoutCase> characters_;
};

} // namespace voxmate::agent
