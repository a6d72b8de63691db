// The Agent control: loads characters, queues their requests and reports what happens to them. All calls and events
// happen on the user-interface thread.
#pragma once

#include "base/Geometry.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace voxmate
{

enum class RequestStatus { Complete = 0, Failed = 1, Pending = 2, Interrupted = 3, InProgress = 4 };

/// The handle returned by Show, Hide, Play and Speak. It lives as long as anyone holds it.
class AgentRequest
{
public:
    virtual ~AgentRequest() = default;
    virtual RequestStatus Status() const = 0;
};
using AgentRequestPtr = std::shared_ptr<AgentRequest>;

/// Bits and fields of the balloon's 32-bit style.
inline constexpr std::uint32_t BalloonOn = 1;
inline constexpr std::uint32_t BalloonSizeToText = 2;
inline constexpr std::uint32_t BalloonAutoHide = 4;
inline constexpr std::uint32_t BalloonAutoPace = 8;
inline constexpr std::uint32_t BalloonCharactersMask = 0x00FF0000;
inline constexpr std::uint32_t BalloonLinesMask = 0xFF000000;

class AgentBalloon
{
public:
    virtual ~AgentBalloon() = default;
    virtual std::uint32_t Style() const = 0;
    virtual void SetStyle(std::uint32_t style) = 0;
    virtual std::string FontName() const = 0;
    virtual void SetFontName(const std::string& name) = 0;
    /// Size in points.
    virtual int FontSize() const = 0;
    virtual void SetFontSize(int points) = 0;
};

class AgentCommands
{
public:
    virtual ~AgentCommands() = default;
    /// Adds one command to the character's right-click menu; an ampersand in the caption marks its access key.
    virtual void Add(const std::string& name, const std::string& caption, const std::string& voice, bool enabled,
                     bool visible) = 0;
};

/// Where a character stands on the screen, in device-independent pixels.
struct CharacterPlace {
    Rect Window;
    Rect Figure; ///< the part of it that the character covers in its neutral pose
    bool operator==(const CharacterPlace&) const = default;
};

/// How a character comes to another place.
enum class Going { Walk, AtOnce };

class AgentCharacter
{
public:
    virtual ~AgentCharacter() = default;

    virtual AgentRequestPtr Show(bool fast) = 0;
    virtual AgentRequestPtr Hide(bool fast) = 0;
    virtual AgentRequestPtr Play(const std::string& animation) = 0;
    /// Speaks text with output tags. With a path in `url` it plays that wave file instead, and the mouth follows it.
    virtual AgentRequestPtr Speak(std::string text, std::string url) = 0;
    virtual void Stop(const AgentRequestPtr& request) = 0;
    /// `types` is a comma-separated list of "Move", "Play", "Speak", "Visibility", "Get"; empty means all. Called from
    /// a handler of Hidden, it stops only requests made before that hiding was requested (by Hide or in the menu);
    /// requests made while the character was still leaving are carried out.
    virtual void StopAll(const std::string& types) = 0;

    virtual AgentBalloon& Balloon() = 0;
    virtual AgentCommands& Commands() = 0;

    /// Size on the screen in device-independent pixels; setting it scales the character.
    virtual int Width() const = 0;
    virtual int Height() const = 0;
    virtual void SetWidth(int width) = 0;
    virtual void SetHeight(int height) = 0;
    virtual int OriginalWidth() const = 0;
    virtual int OriginalHeight() const = 0;
    /// Mode identifier of the voice, in braces.
    virtual std::string TTSModeID() const = 0;
    virtual void SetTTSModeID(const std::string& id) = 0;
    virtual std::vector<std::string> AnimationNames() const = 0;
    virtual bool Visible() const = 0;

    /// Where the character stands or is walking to, and where it stands when it has not been asked to stand aside.
    virtual CharacterPlace Place() = 0;
    virtual CharacterPlace Home() = 0;
    /// Goes so that the upper left corner of its window comes to `window`. This is no request: it delays and cuts none.
    /// A character that walks and has nothing to do plays an animation of the states MovingLeft, MovingRight, MovingUp
    /// or MovingDown; one that speaks or plays something goes on with that. While it is hidden or appears it is there
    /// at once. A press of the mouse stops it until the release; dragging it makes its new place the home. False: it is
    /// being hidden or held by the user; ask again later.
    virtual bool StandAside(Point window, Going how) = 0;
    /// Walks home, in the same way. False: it is being hidden, held by the user or on its way; ask again later.
    virtual bool StandAtHome() = 0;
    /// The balloon on show as it would stand with the window's upper left corner at `window`; nothing without one.
    virtual std::optional<Rect> BalloonAt(Point window) = 0;
};

/// How much a character moves while it has nothing to do: it plays and breathes; it plays and breathes slowly; it
/// plays now and then and stands still between; nothing moves at all.
enum class IdleLife { Full, Slow, PlaysOnly, None };

/// The answers of AudioOutput.Status.
enum class AudioStatus {
    Available = 0,
    NoSupport = 1,
    CannotOpen = 2,
    UserSpeaking = 3,
    CharacterSpeaking = 4,
    Waiting = 5,
    Unknown = 6
};

/// Why a character was shown or hidden.
enum class VisibilityCause { UserHid = 1, UserShowed = 2, ProgramHid = 3, ProgramShowed = 4 };

class AgentControl
{
public:
    virtual ~AgentControl() = default;

    /// Loads a character file under a name. Raises a run-time error that names the file when it cannot be read.
    virtual void Load(const std::string& name, const std::string& path) = 0;
    virtual void Unload(const std::string& name) = 0;
    /// The loaded character of that name. Raises a run-time error when there is none.
    virtual AgentCharacter& Characters(const std::string& name) = 0;
    virtual AudioStatus AudioOutputStatus() = 0;
    virtual void SetSoundEffectsOn(bool on) = 0;
    /// Full at first. Concerns all characters, those loaded later too. A character that moves again after None first
    /// plays an animation of the state Waking, if it has any.
    virtual void SetIdleLife(IdleLife life) = 0;

    // Events. Buttons: 1 left, 2 right; shift: 1 shift, 2 control, 4 alt; x and y in pixels within the character.
    std::function<void(const std::string& character, int button, int shift, int x, int y)> Click;
    std::function<void(const std::string& character, int button, int shift, int x, int y)> DblClick;
    std::function<void(const std::string& character, int button, int shift, int x, int y)> DragStart;
    std::function<void(const std::string& character, int button, int shift, int x, int y)> DragComplete;
    std::function<void(const std::string& character, VisibilityCause cause)> Shown;
    std::function<void(const std::string& character, VisibilityCause cause)> Hidden;
    /// Files were dropped on a character or its balloon: their paths, or the address of what is on another computer.
    std::function<void(const std::vector<std::string>& files)> FilesDropped;
    /// A command of the right-click menu was chosen; `name` is the command's name.
    std::function<void(const std::string& name)> Command;
    std::function<void(const AgentRequestPtr& request)> RequestStart;
    std::function<void(const AgentRequestPtr& request)> RequestComplete;
    std::function<void(int number)> Bookmark;
    /// The voice begins a word of a Speak. Words are counted from 0 over the text that the balloon shows
    /// (base/Words.h).
    std::function<void(const AgentRequestPtr& request, int word)> Word;
    /// Some pictures of a loaded character are damaged; it goes on with the others. Raised once per load. `message` is
    /// one sentence that names the file and the first fault.
    std::function<void(const std::string& character, const std::string& message)> Damaged;
};

} // namespace voxmate
