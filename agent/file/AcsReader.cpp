// Reads a character file's structure into memory. Nothing in the file is trusted: every place, count and number is
// checked against what is really there before it is used or memory is allocated for it.
#include "agent/file/AcsCompression.h"
#include "agent/file/AcsFile.h"
#include "agent/file/AcsLimits.h"
#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace voxmate::agent
{

namespace
{

/// A name from the file as a message shows it: in quotes, on one line, and no longer than is needed to recognise it.
std::string Quoted(const std::string& name)
{
    constexpr std::size_t longest = 60; // the longest of the standard animation set has 21 characters
    std::string shown = "\"";
    std::size_t count = 0;
    for (const char32_t c : DecodeUtf8(Left(name, longest + 1))) {
        if (++count > longest) {
            AppendUtf8(shown, U'…');
            break;
        }
        // Control characters, line and paragraph separators, and characters that change the direction of the text
        // become blanks.
        const bool plain =
            c >= 0x20 && (c < 0x7F || c > 0x9F) && (c < 0x2028 || c > 0x202E) && (c < 0x2066 || c > 0x2069);
        AppendUtf8(shown, plain ? c : U' ');
    }
    return shown + "\"";
}

} // namespace

class AcsReader
{
public:
    AcsReader(AcsFile& file, std::span<const std::uint8_t> bytes) : file_(file), bytes_(bytes) {}
    void Read();

private:
    struct Locator {
        std::uint32_t offset = 0;
        std::uint32_t size = 0;
        bool Empty() const { return offset == 0 && size == 0; }
    };

    // Reads through one section of the file; fails when more is asked for than the section holds.
    class Cursor
    {
    public:
        Cursor(const AcsReader& reader, Locator where, std::string section)
            : reader_(reader), at_(where.offset), end_(std::size_t{where.offset} + where.size),
              section_(std::move(section))
        {
            if (end_ > reader.bytes_.size())
                Fail("lies outside the file");
        }
        [[noreturn]] void Fail(const std::string& what) const { reader_.Fail(section_ + " " + what); }
        std::size_t Position() const { return at_; }
        std::size_t Left() const { return end_ - at_; }
        std::uint8_t U8() { return *Take(1); }
        bool Bool() { return U8() != 0; }
        std::uint16_t U16()
        {
            const std::uint8_t* p = Take(2);
            return static_cast<std::uint16_t>(p[0] | p[1] << 8);
        }
        std::int16_t I16() { return static_cast<std::int16_t>(U16()); }
        std::uint32_t U32()
        {
            const std::uint8_t* p = Take(4);
            return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 |
                   std::uint32_t{p[3]} << 24;
        }
        std::int32_t I32() { return static_cast<std::int32_t>(U32()); }
        // The operands of one expression are evaluated in no fixed order, so each value is read in a statement of its
        // own.
        Locator Place()
        {
            Locator place;
            place.offset = U32();
            place.size = U32();
            return place;
        }
        Colour Colour3()
        {
            const std::uint8_t* p = Take(4);
            return {p[2], p[1], p[0]};
        }
        Guid Id()
        {
            Guid id{};
            std::copy_n(Take(id.size()), id.size(), id.begin());
            return id;
        }
        std::string String()
        {
            const std::uint32_t units = U32();
            if (units == 0)
                return {};
            if (units >= Left() / 2)
                Fail("holds a text of " + std::to_string(units) + " characters, longer than itself");
            std::u16string text;
            text.reserve(units);
            for (std::uint32_t i = 0; i < units; ++i)
                text.push_back(static_cast<char16_t>(U16()));
            U16(); // the closing zero
            return Utf16ToUtf8(text);
        }
        std::vector<std::uint8_t> Block()
        {
            const std::uint32_t size = U32();
            const std::uint8_t* p = Take(size);
            return {p, p + size};
        }
        // Returns `count`; fails when so many items of at least `least` bytes each cannot fit into the rest of the
        // section.
        std::uint32_t Checked(std::uint32_t count, std::size_t least, const char* items) const
        {
            if (count > Left() / least)
                Fail("claims " + std::to_string(count) + " " + items + ", more than it holds");
            return count;
        }
        // The number of entries in one of the file's three lists; each entry takes at least 12 bytes.
        std::uint32_t Entries(const char* items)
        {
            const std::uint32_t count = Checked(U32(), 12, items);
            if (count > MaxEntries)
                Fail("holds " + std::to_string(count) + " " + items + ", more than " + std::to_string(MaxEntries));
            return count;
        }
        const std::uint8_t* Take(std::size_t count)
        {
            if (count > Left())
                Fail("is cut off");
            const std::uint8_t* p = reader_.bytes_.data() + at_;
            at_ += count;
            return p;
        }

    private:
        const AcsReader& reader_;
        std::size_t at_;
        std::size_t end_;
        std::string section_;
    };

    [[noreturn]] void Fail(const std::string& what) const;
    void ReadCharacter(Locator where);
    void ReadNames(Locator where);
    void ReadVoice(Cursor& in);
    void ReadBalloon(Cursor& in);
    void ReadPalette(Cursor& in);
    void ReadStates(Cursor& in);
    void ReadImages(Locator where);
    void ReadImage(Locator where, StoredImage& image, const std::string& section);
    void ReadSounds(Locator where);
    void ReadAnimations(Locator where);
    void ReadAnimation(Locator where, Animation& animation);
    void ReadFrame(Cursor& in, Frame& frame);
    void ReadOverlays(Cursor& in, Frame& frame);
    void CheckFrames(const Animation& animation) const;

    AcsFile& file_;
    const std::span<const std::uint8_t> bytes_;
    std::uint64_t animationBytes_ = 0;
};

void AcsReader::Fail(const std::string& what) const
{
    throw AcsError(file_.path, what);
}

void AcsReader::Read()
{
    const std::size_t size = bytes_.size();
    if (size > MaxFileSize)
        Fail("it is larger than " + std::to_string(MaxFileSize >> 20) + " MB");
    if (size < HeaderSize)
        Fail("it is too short for a character file");
    Cursor in(*this, {0, HeaderSize}, "the header");
    if (in.U32() != Signature)
        Fail("it is not a character file of version 2");
    const Locator character = in.Place();
    const Locator animations = in.Place();
    const Locator images = in.Place();
    const Locator sounds = in.Place();
    ReadCharacter(character);
    ReadImages(images);
    ReadSounds(sounds);
    ReadAnimations(animations);
}

void AcsReader::ReadCharacter(Locator where)
{
    if (where.Empty())
        Fail("it describes no character");
    Cursor in(*this, where, "the character's description");
    file_.minorVersion = in.U16();
    file_.majorVersion = in.U16();
    if (file_.majorVersion != 2)
        Fail("it is a character file of version " + std::to_string(file_.majorVersion) + ", not of version 2");
    const Locator names = in.Place();
    file_.guid = in.Id();
    file_.width = in.U16();
    file_.height = in.U16();
    if (file_.width == 0 || file_.height == 0 || std::uint64_t{file_.width} * file_.height > MaxPixels)
        in.Fail("claims frames of " + std::to_string(file_.width) + " by " + std::to_string(file_.height) + " pixels");
    file_.transparentIndex = in.U8();
    file_.flags = in.U32();
    file_.animationSetMajor = in.U16();
    file_.animationSetMinor = in.U16();
    if (file_.flags & FlagVoice)
        ReadVoice(in);
    if (file_.flags & FlagBalloon)
        ReadBalloon(in);
    ReadPalette(in);
    if (in.Bool()) {
        auto& [mask, colour] = file_.trayIcon.emplace();
        mask = in.Block();
        colour = in.Block();
    }
    ReadStates(in);
    ReadNames(names);
}

void AcsReader::ReadNames(Locator where)
{
    if (where.Empty())
        return;
    Cursor in(*this, where, "the list of the character's names");
    const std::uint32_t count = in.Checked(in.U16(), 14, "languages");
    file_.names.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        LocalName& name = file_.names.emplace_back();
        name.language = in.U16();
        name.name = in.String();
        name.description = in.String();
        name.extra = in.String();
    }
}

void AcsReader::ReadVoice(Cursor& in)
{
    VoiceInfo& voice = file_.voice.emplace();
    voice.engine = in.Id();
    voice.mode = in.Id();
    voice.speed = in.U32();
    voice.pitch = in.U16();
    voice.hasDetails = in.Bool();
    if (!voice.hasDetails)
        return;
    voice.language = in.U16();
    voice.dialect = in.String();
    voice.gender = in.U16();
    voice.age = in.U16();
    voice.style = in.String();
}

void AcsReader::ReadBalloon(Cursor& in)
{
    BalloonInfo& balloon = file_.balloon.emplace();
    balloon.lines = in.U8();
    balloon.charactersPerLine = in.U8();
    balloon.text = in.Colour3();
    balloon.background = in.Colour3();
    balloon.border = in.Colour3();
    balloon.fontName = in.String();
    balloon.fontHeight = in.I32();
    balloon.fontWeight = in.I32();
    balloon.italic = in.Bool();
    balloon.unused = in.U8();
}

void AcsReader::ReadPalette(Cursor& in)
{
    const std::uint32_t count = in.U32();
    if (count > 256)
        in.Fail("claims a palette of " + std::to_string(count) + " colours, more than 256");
    in.Checked(count, 4, "colours");
    file_.palette.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i)
        file_.palette.push_back(in.Colour3());
}

void AcsReader::ReadStates(Cursor& in)
{
    const std::uint32_t count = in.Checked(in.U16(), 6, "states");
    file_.states.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        auto& [name, animations] = file_.states.emplace_back();
        name = in.String();
        const std::uint32_t members = in.Checked(in.U16(), 4, "animations of a state");
        animations.reserve(members);
        for (std::uint32_t k = 0; k < members; ++k)
            animations.push_back(in.String());
    }
}

void AcsReader::ReadImages(Locator where)
{
    if (where.Empty())
        return;
    Cursor in(*this, where, "the image list");
    const std::uint32_t count = in.Entries("images");
    file_.images_.resize(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const Locator image = in.Place();
        in.U32(); // the checksum: makers of files compute it differently, so it proves nothing
        if (!image.Empty())
            ReadImage(image, file_.images_[i], "image " + std::to_string(i));
    }
}

void AcsReader::ReadImage(Locator where, StoredImage& image, const std::string& section)
{
    Cursor in(*this, where, section);
    in.U8();
    image.width = in.U16();
    image.height = in.U16();
    image.compressed = in.Bool();
    image.size = in.U32();
    image.offset = static_cast<std::uint32_t>(in.Position());
    in.Take(image.size);

    const auto fullSize = static_cast<std::uint64_t>(RowSize(image.width)) * image.height;
    const bool fits = image.compressed ? fullSize <= LargestUnpackedSize(image.size) : fullSize == image.size;
    if (!fits)
        in.Fail("claims " + std::to_string(image.width) + " by " + std::to_string(image.height) +
                " pixels, which is not what it holds");
    if (fullSize > MaxPixels)
        in.Fail("is of " + std::to_string(image.width) + " by " + std::to_string(image.height) + " pixels, more than " +
                std::to_string(MaxPixels >> 20) + " million");

    const std::uint32_t packedRegion = in.U32();
    const std::uint32_t fullRegion = in.U32();
    in.Take(packedRegion != 0 ? packedRegion : fullRegion);
}

void AcsReader::ReadSounds(Locator where)
{
    if (where.Empty())
        return;
    Cursor in(*this, where, "the sound list");
    const std::uint32_t count = in.Entries("sounds");
    file_.sounds_.resize(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const Locator sound = in.Place();
        in.U32();
        Cursor(*this, sound, "sound " + std::to_string(i)).Take(sound.size);
        file_.sounds_[i] = {sound.offset, sound.size};
    }
}

void AcsReader::ReadAnimations(Locator where)
{
    if (where.Empty())
        return;
    Cursor in(*this, where, "the animation list");
    const std::uint32_t count = in.Entries("animations");
    file_.animations.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        Animation& animation = file_.animations.emplace_back();
        animation.name = in.String();
        const Locator place = in.Place();
        if (!place.Empty())
            ReadAnimation(place, animation);
    }
}

void AcsReader::ReadAnimation(Locator where, Animation& animation)
{
    Cursor in(*this, where, "the animation " + Quoted(animation.name));
    const std::size_t start = in.Position();
    // Animations are found by the name in the list. If the animation itself has the same name in another case, that
    // spelling is the one to show.
    if (std::string own = in.String(); EqualNoCase(own, animation.name))
        animation.name = std::move(own);
    const std::uint8_t transition = in.U8();
    if (transition > 2)
        in.Fail("has transition type " + std::to_string(transition) + ", which does not exist");
    animation.transition = static_cast<Transition>(transition);
    animation.returnAnimation = in.String();
    const std::uint32_t count = in.Checked(in.U16(), 10, "frames");
    animation.frames.resize(count);
    for (Frame& frame : animation.frames)
        ReadFrame(in, frame);
    CheckFrames(animation);

    // Without this limit, animations that share their bytes could take any amount of memory.
    animationBytes_ += in.Position() - start;
    if (animationBytes_ > bytes_.size() + SharedAnimationBytes)
        Fail("its animations overlap one another too often");
}

void AcsReader::ReadFrame(Cursor& in, Frame& frame)
{
    const std::uint32_t images = in.Checked(in.U16(), 8, "images in a frame");
    frame.images.resize(images);
    std::uint64_t pixels = 0;
    for (FrameImage& image : frame.images) {
        image.image = in.U32();
        image.x = in.I16();
        image.y = in.I16();
        if (image.image >= file_.images_.size())
            in.Fail("shows image " + std::to_string(image.image) + ", which does not exist");
        pixels += std::uint64_t{file_.images_[image.image].width} * file_.images_[image.image].height;
    }
    if (pixels > MaxPixels)
        in.Fail("has a frame of too many images to draw");
    if (const std::uint16_t sound = in.U16(); sound != 0xFFFF) {
        if (sound >= file_.sounds_.size())
            in.Fail("plays sound " + std::to_string(sound) + ", which does not exist");
        frame.sound = sound;
    }
    frame.duration = in.U16();
    frame.exitFrame = in.I16();
    const std::uint32_t branches = in.Checked(in.U8(), 4, "branches in a frame");
    frame.branches.resize(branches);
    std::uint32_t percent = 0;
    for (Branch& branch : frame.branches) {
        branch.frame = in.U16();
        branch.percent = in.U16();
        percent += branch.percent;
    }
    if (percent > 100)
        in.Fail("has a frame whose branches add up to " + std::to_string(percent) + " percent");
    ReadOverlays(in, frame);
}

void AcsReader::ReadOverlays(Cursor& in, Frame& frame)
{
    const std::uint32_t count = in.Checked(in.U8(), 14, "mouths in a frame");
    frame.overlays.resize(count);
    for (Overlay& overlay : frame.overlays) {
        overlay.mouth = in.U8();
        if (overlay.mouth >= MouthCount)
            in.Fail("has mouth " + std::to_string(overlay.mouth) + ", which does not exist");
        overlay.replaceFront = in.Bool();
        overlay.image = in.U16();
        if (overlay.image >= file_.images_.size())
            in.Fail("shows image " + std::to_string(overlay.image) + ", which does not exist");
        in.U8();
        const bool hasRegion = in.Bool();
        overlay.x = in.I16();
        overlay.y = in.I16();
        overlay.width = in.U16();
        overlay.height = in.U16();
        if (hasRegion)
            overlay.region = in.Block();
    }
}

void AcsReader::CheckFrames(const Animation& animation) const
{
    const std::size_t count = animation.frames.size();
    const auto check = [&](std::size_t from, std::int32_t to, const char* how) {
        if (to >= 0 && static_cast<std::size_t>(to) >= count)
            Fail("frame " + std::to_string(from) + " of the animation " + Quoted(animation.name) + " " + how +
                 " frame " + std::to_string(to) + ", which does not exist");
    };
    for (std::size_t i = 0; i < count; ++i) {
        check(i, animation.frames[i].exitFrame, "exits to");
        for (const Branch& branch : animation.frames[i].branches)
            check(i, branch.frame, "branches to");
    }
}

std::shared_ptr<const AcsFile> AcsFile::Parse(std::span<const std::uint8_t> bytes, const std::string& name,
                                              std::unique_ptr<const AcsSource> source)
{
    auto file = std::make_shared<AcsFile>();
    file->path = name;
    file->source_ = std::move(source);
    AcsReader(*file, bytes).Read();
    return file;
}

} // namespace voxmate::agent
