// The character file (.acs, version 2): its content in memory, and its reader. Every number in a file is untrusted.
#pragma once

#include "base/Geometry.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace voxmate::agent
{

/// A file that cannot be read as a character. The message names the file and says what is wrong with it.
class AcsError : public std::runtime_error
{
public:
    /// `what` is the fault, without a full stop.
    AcsError(const std::string& path, const std::string& what)
        : std::runtime_error("The character file \"" + path + "\" cannot be used: " + what + ".")
    {
    }
};

using Guid = std::array<std::uint8_t, 16>;

/// An identifier in its text form, in braces and capitals. Its first three fields are stored lowest byte first.
std::string GuidText(const Guid& guid);

enum CharacterFlag : std::uint32_t {
    FlagVoice = 1u << 5,
    FlagBalloonDisabled = 1u << 8,
    FlagBalloon = 1u << 9,
    FlagSizeToText = 1u << 16,
    FlagAutoHideOff = 1u << 17,
    FlagAutoPaceOff = 1u << 18,
    FlagStandardSet = 1u << 20
};

struct Colour {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
    bool operator==(const Colour&) const = default;
};

struct LocalName {
    std::uint16_t language = 0; ///< Windows language identifier, 0x0409 American English
    std::string name;
    std::string description;
    std::string extra;
};

struct VoiceInfo {
    Guid engine{};
    Guid mode{};
    std::uint32_t speed = 0;
    std::uint16_t pitch = 0;
    bool hasDetails = false;
    std::uint16_t language = 0;
    std::string dialect;
    std::uint16_t gender = 0;
    std::uint16_t age = 0;
    std::string style;
};

struct BalloonInfo {
    std::uint8_t lines = 0;
    std::uint8_t charactersPerLine = 0;
    Colour text;
    Colour background;
    Colour border;
    std::string fontName;
    std::int32_t fontHeight = 0;
    std::int32_t fontWeight = 0;
    bool italic = false;
    std::uint8_t unused = 0;
};

struct FrameImage {
    std::uint32_t image = 0;
    std::int16_t x = 0;
    std::int16_t y = 0;
    bool operator==(const FrameImage&) const = default;
};

struct Branch {
    std::uint16_t frame = 0;
    std::uint16_t percent = 0;
};

enum Mouth : std::uint8_t {
    MouthClosed = 0,
    MouthWide1 = 1,
    MouthWide2 = 2,
    MouthWide3 = 3,
    MouthWide4 = 4,
    MouthMedium = 5,
    MouthNarrow = 6
};
inline constexpr int MouthCount = 7;

struct Overlay {
    std::uint8_t mouth = MouthClosed;
    bool replaceFront = false; ///< drawn in place of the frame's front-most image, otherwise over it
    std::uint16_t image = 0;
    std::int16_t x = 0;
    std::int16_t y = 0;
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::optional<std::vector<std::uint8_t>> region; ///< as stored in the file
};

struct Frame {
    std::vector<FrameImage> images; ///< the first is the front-most
    std::int32_t sound = -1;        ///< -1: none
    std::uint16_t duration = 0;     ///< 1/100 s; 0: never drawn, only its branches are taken
    std::int16_t exitFrame = -1;    ///< negative: none
    std::vector<Branch> branches;
    std::vector<Overlay> overlays;
    bool HasMouths() const { return !overlays.empty(); }
    /// The overlay for a mouth; null when there is none.
    const Overlay* OverlayFor(int mouth) const;
};

enum class Transition : std::uint8_t { ReturnAnimation = 0, ExitBranches = 1, None = 2 };

struct Animation {
    std::string name;
    Transition transition = Transition::None;
    std::string returnAnimation;
    std::vector<Frame> frames;
    /// The first frame that is drawn; null when there is none.
    const Frame* FirstDrawn() const;
};

/// An image as stored in the file: palette indices bottom-up, rows padded to 4 bytes. It is decoded only on demand.
struct StoredImage {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    bool compressed = false;
    std::uint32_t offset = 0; ///< of the pixel bytes in the file
    std::uint32_t size = 0;   ///< in bytes, as stored
};

/// A decoded image.
struct IndexedImage {
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::vector<std::uint8_t> pixels; ///< rows top-down, not padded: `width * height` palette indices
};

/// What a character file says of its character, without images and sounds. The default versions are those of files we
/// write.
struct AcsContent {
    std::uint16_t minorVersion = 1;
    std::uint16_t majorVersion = 2;
    Guid guid{};
    std::uint16_t width = 0;
    std::uint16_t height = 0;
    std::uint8_t transparentIndex = 0;
    std::uint32_t flags = 0;
    std::uint16_t animationSetMajor = 2;
    std::uint16_t animationSetMinor = 0;
    std::vector<LocalName> names;
    std::optional<VoiceInfo> voice;
    std::optional<BalloonInfo> balloon;
    std::vector<Colour> palette;
    std::optional<std::pair<std::vector<std::uint8_t>, std::vector<std::uint8_t>>> trayIcon; ///< mask, colour image
    std::vector<std::pair<std::string, std::vector<std::string>>> states; ///< name, animations, in file order
    std::vector<Animation> animations;                                    ///< in file order
};

/// Where a character's bytes are. May be used on several threads at once.
class AcsSource
{
public:
    virtual ~AcsSource() = default;
    /// The bytes from `offset` on, `size` of them; none when they are no longer there.
    virtual std::vector<std::uint8_t> Read(std::uint32_t offset, std::uint32_t size) const = 0;
};

/// Where a sound lies in the file, in bytes. Several entries of the sound list may name the same place.
struct StoredSound {
    std::uint32_t offset = 0;
    std::uint32_t size = 0;
};

/// Where the images and sounds of a character are until they are needed. It has megabytes of them and shows a few at a
/// time.
enum class Keep {
    InMemory,
    /// The file is kept open. Only for files that nobody writes into, on a disk that answers: reading happens while the
    /// character moves. (A mapped file would besides end the program if somebody cut it short.)
    InFile
};

/// A whole character. Immutable once read. Images are decoded on demand.
class AcsFile : public AcsContent
{
public:
    /// Reads a file and checks its structure; raises AcsError, which names `path`, when anything in it is wrong. When
    /// another file takes its place afterwards, this object stays with the old one.
    static std::shared_ptr<const AcsFile> Open(const std::string& path, Keep keep = Keep::InMemory);
    /// The same for bytes in memory; `name` stands for the path in messages.
    static std::shared_ptr<const AcsFile> Parse(std::vector<std::uint8_t> bytes, const std::string& name);

    std::string path;
    std::size_t ImageCount() const { return images_.size(); }
    std::size_t SoundCount() const { return sounds_.size(); }
    /// How image `index` is stored in the file. The index must exist.
    const StoredImage& Stored(std::size_t index) const { return images_.at(index); }
    /// Where sound `index` is stored. The index must exist.
    const StoredSound& PlaceOfSound(std::size_t index) const { return sounds_.at(index); }
    /// Decodes one image; raises AcsError when its data does not decode to exactly its size or cannot be read.
    IndexedImage DecodeImage(std::size_t index) const;
    /// The bytes of one sound, a whole RIFF wave file; raises AcsError when there is no such sound or it cannot be
    /// read.
    std::vector<std::uint8_t> Sound(std::size_t index) const;

    /// Finds an animation, or a state's animations, by name without regard to case; nullptr when there is none.
    const Animation* FindAnimation(const std::string& name) const;
    const std::vector<std::string>* FindState(const std::string& name) const;

private:
    friend class AcsReader;
    /// Reads the character from `bytes`, which are all of `source`'s and are needed only during the call.
    static std::shared_ptr<const AcsFile> Parse(std::span<const std::uint8_t> bytes, const std::string& name,
                                                std::unique_ptr<const AcsSource> source);
    /// Raises AcsError when they cannot be read.
    std::vector<std::uint8_t> Bytes(std::uint32_t offset, std::uint32_t size) const;

    std::unique_ptr<const AcsSource> source_;
    std::vector<StoredImage> images_;
    std::vector<StoredSound> sounds_;
};

/// Composes a frame as it stands on the screen: a bitmap of the character's size, transparent where nothing is drawn.
/// `mouth`, 0 or more, adds the frame's overlay for that mouth. Raises AcsError when an image cannot be decoded.
Bitmap ComposeFrame(const AcsFile& file, const Frame& frame, int mouth);

} // namespace voxmate::agent
