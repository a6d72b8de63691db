// A character's source: the contents of its folder's character.json, checked and with all names resolved.
#pragma once

#include "agent/file/AcsFile.h"

#include <QByteArray>
#include <QHash>
#include <QPointF>
#include <QString>

#include <array>
#include <optional>
#include <stdexcept>
#include <vector>

namespace voxmate::characters
{

/// A source that cannot be built; the message names the file and the place in it.
class SourceError : public std::runtime_error
{
public:
    explicit SourceError(const QString& message) : std::runtime_error(message.toStdString()) {}
};

/// What a key can set for a part: offsets in pixels of the frame, angles in degrees clockwise, scale factors.
enum Property { MoveX, MoveY, Rotate, ScaleX, ScaleY };
inline constexpr std::size_t PropertyCount = 5;

struct PartState {
    std::array<double, PropertyCount> values{0, 0, 0, 1, 1};
    int variant = -1; ///< index into the part's variants; -1: nothing is drawn
    bool operator==(const PartState&) const = default;
};

/// The state of every part, in the order of Source::parts.
using Pose = std::vector<PartState>;

struct Variant {
    QString name;
    QString drawing; ///< identifier of a group of the drawing; empty for a part that only groups others
};

struct Part {
    QString name;
    int parent = -1; ///< index of another part, earlier or later in the list; -1: the frame itself
    QPointF pivot;
    bool mirrored = false; ///< drawn and moved as its reflection about the frame's middle
    std::vector<Variant> variants;
    PartState rest;
    bool OnlyHolds() const { return variants.size() == 1 && variants[0].drawing.isEmpty(); }
};

/// How a value moves from the previous key to this one.
enum class Ease { Linear, In, Out, InOut, Back, Anticipate, Bounce, Spring, Hold };

struct Setting {
    int part = 0;
    std::array<std::optional<double>, PropertyCount> values;
    std::optional<int> variant;
    Ease ease = Ease::InOut;
};

struct Key {
    int at = 0; ///< 1/100 s from the start
    std::vector<Setting> settings;
};

/// At the time `from`, playing continues at the time `to` in `percent` of the cases.
struct SourceBranch {
    int from = 0;
    int to = 0;
    int percent = 100;
};

struct SourceSound {
    int at = 0;
    int sound = 0; ///< index into Source::sounds
};

/// In which frames of an animation the character can speak: in none, in the one it ends in, or in all.
enum class Speaks { Nowhere, AtTheEnd, Throughout };

/// How far a sway takes a part from where its keys have it, and how much later than the others (1/100 s).
struct SwayingPart {
    int part = 0;
    std::array<double, PropertyCount> amounts{};
    int late = 0;
};

/// A movement to and fro, such as breathing.
struct Sway {
    int period = 0; ///< 1/100 s
    std::vector<SwayingPart> parts;
};

/// A part that a blink changes, with its variants. It blinks only where the animation has it open.
struct Lid {
    int part = 0;
    int open = -1;
    int half = -1;
    int shut = -1;
};

struct SourceAnimation {
    QString name;
    agent::Transition transition = agent::Transition::ExitBranches;
    QString returnAnimation;
    Pose start;
    std::vector<Key> keys;
    int step = 6;   ///< 1/100 s a frame
    int length = 0; ///< 1/100 s
    int hold = -1;  ///< 1/100 s where it ends; the rest is only the way back to the rest pose; -1: at its length
    Speaks speaks = Speaks::Nowhere; ///< which frames have the mouths' overlays
    int closedMouth = -1;            ///< the variant shown as the closed mouth; -1: the character's
    std::vector<Sway> sways;         ///< from one step after its start until it ends
    std::vector<Lid> lids;
    std::vector<int> blinks; ///< 1/100 s at which lids begin to close; multiples of the step
    std::vector<SourceBranch> branches;
    std::vector<SourceSound> sounds;
};

struct Source {
    QString folder;
    QString drawingFile;
    agent::Guid guid{};
    std::uint32_t flags = 0;
    std::vector<agent::LocalName> names;
    std::optional<agent::VoiceInfo> voice;
    std::optional<agent::BalloonInfo> balloon;
    std::vector<Part> parts; ///< back to front
    int mouthPart = -1;
    std::array<int, agent::MouthCount> mouths{}; ///< for each mouth, the variant of the mouth part
    std::vector<std::pair<std::string, std::vector<std::string>>> states;
    std::vector<SourceAnimation> animations;
    std::vector<QByteArray> sounds;

    Pose RestPose() const;
};

/// Reads `folder`/character.json. Raises SourceError.
Source ReadSource(const QString& folder);

} // namespace voxmate::characters
