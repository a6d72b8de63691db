#include "agent/file/AcsWriter.h"

#include "agent/file/AcsCompression.h"
#include "agent/file/AcsLimits.h"
#include "base/Text.h"

#include <algorithm>
#include <limits>
#include <span>
#include <stdexcept>

namespace voxmate::agent
{

namespace
{

template <typename To, typename From>
To Fit(From value, const char* what)
{
    if (!std::in_range<To>(value))
        throw std::length_error(std::string("Too many ") + what + " for a character file.");
    return static_cast<To>(value);
}

class Out
{
public:
    std::vector<std::uint8_t> bytes;

    void U8(std::uint8_t value) { bytes.push_back(value); }
    void Bool(bool value) { U8(value ? 1 : 0); }
    void U16(std::uint16_t value)
    {
        U8(static_cast<std::uint8_t>(value));
        U8(static_cast<std::uint8_t>(value >> 8));
    }
    void I16(std::int16_t value) { U16(static_cast<std::uint16_t>(value)); }
    void U32(std::uint32_t value)
    {
        U16(static_cast<std::uint16_t>(value));
        U16(static_cast<std::uint16_t>(value >> 16));
    }
    void I32(std::int32_t value) { U32(static_cast<std::uint32_t>(value)); }
    void Append(std::span<const std::uint8_t> more) { bytes.insert(bytes.end(), more.begin(), more.end()); }
    void Block(std::span<const std::uint8_t> block)
    {
        U32(Fit<std::uint32_t>(block.size(), "bytes"));
        Append(block);
    }
    void Colour4(Colour colour)
    {
        U8(colour.blue);
        U8(colour.green);
        U8(colour.red);
        U8(0);
    }
    void String(const std::string& text)
    {
        const std::u16string units = Utf8ToUtf16(text);
        U32(Fit<std::uint32_t>(units.size(), "letters"));
        if (units.empty())
            return;
        for (const char16_t unit : units)
            U16(unit);
        U16(0);
    }
    std::uint32_t Position() const { return Fit<std::uint32_t>(bytes.size(), "bytes"); }
    // Leaves room for a locator. Locate fills it in with the place of what was written from `start` to the present end.
    std::size_t ReserveLocator()
    {
        U32(0);
        U32(0);
        return bytes.size() - 8;
    }
    void Locate(std::size_t locator, std::uint32_t start)
    {
        const std::uint32_t size = Position() - start;
        for (std::size_t i = 0; i < 4; ++i) {
            bytes[locator + i] = static_cast<std::uint8_t>(start >> (8 * i));
            bytes[locator + 4 + i] = static_cast<std::uint8_t>(size >> (8 * i));
        }
    }
};

void WriteVoice(Out& out, const VoiceInfo& voice)
{
    out.Append(voice.engine);
    out.Append(voice.mode);
    out.U32(voice.speed);
    out.U16(voice.pitch);
    out.Bool(voice.hasDetails);
    if (!voice.hasDetails)
        return;
    out.U16(voice.language);
    out.String(voice.dialect);
    out.U16(voice.gender);
    out.U16(voice.age);
    out.String(voice.style);
}

void WriteBalloon(Out& out, const BalloonInfo& balloon)
{
    out.U8(balloon.lines);
    out.U8(balloon.charactersPerLine);
    out.Colour4(balloon.text);
    out.Colour4(balloon.background);
    out.Colour4(balloon.border);
    out.String(balloon.fontName);
    out.I32(balloon.fontHeight);
    out.I32(balloon.fontWeight);
    out.Bool(balloon.italic);
    out.U8(balloon.unused);
}

// Returns the position of the locator of the names.
std::size_t WriteCharacter(Out& out, const AcsDescription& d)
{
    out.U16(d.minorVersion);
    out.U16(d.majorVersion);
    const std::size_t names = out.ReserveLocator();
    out.Append(d.guid);
    out.U16(d.width);
    out.U16(d.height);
    out.U8(d.transparentIndex);
    std::uint32_t flags = d.flags & ~(FlagVoice | FlagBalloon);
    if (d.voice)
        flags |= FlagVoice;
    if (d.balloon)
        flags |= FlagBalloon;
    out.U32(flags);
    out.U16(d.animationSetMajor);
    out.U16(d.animationSetMinor);
    if (d.voice)
        WriteVoice(out, *d.voice);
    if (d.balloon)
        WriteBalloon(out, *d.balloon);
    out.U32(Fit<std::uint32_t>(d.palette.size(), "colours"));
    for (const Colour& colour : d.palette)
        out.Colour4(colour);
    out.Bool(d.trayIcon.has_value());
    if (d.trayIcon) {
        out.Block(d.trayIcon->first);
        out.Block(d.trayIcon->second);
    }
    out.U16(Fit<std::uint16_t>(d.states.size(), "states"));
    for (const auto& [name, animations] : d.states) {
        out.String(name);
        out.U16(Fit<std::uint16_t>(animations.size(), "animations in a state"));
        for (const std::string& animation : animations)
            out.String(animation);
    }
    return names;
}

void WriteNames(Out& out, const std::vector<LocalName>& names)
{
    out.U16(Fit<std::uint16_t>(names.size(), "languages"));
    for (const LocalName& name : names) {
        out.U16(name.language);
        out.String(name.name);
        out.String(name.description);
        out.String(name.extra);
    }
}

void WriteFrame(Out& out, const Frame& frame)
{
    out.U16(Fit<std::uint16_t>(frame.images.size(), "images in a frame"));
    for (const FrameImage& image : frame.images) {
        out.U32(image.image);
        out.I16(image.x);
        out.I16(image.y);
    }
    out.U16(frame.sound < 0 ? std::uint16_t{0xFFFF} : Fit<std::uint16_t>(frame.sound, "sounds"));
    out.U16(frame.duration);
    out.I16(frame.exitFrame);
    out.U8(Fit<std::uint8_t>(frame.branches.size(), "branches in a frame"));
    for (const Branch& branch : frame.branches) {
        out.U16(branch.frame);
        out.U16(branch.percent);
    }
    out.U8(Fit<std::uint8_t>(frame.overlays.size(), "mouths in a frame"));
    for (const Overlay& overlay : frame.overlays) {
        out.U8(overlay.mouth);
        out.Bool(overlay.replaceFront);
        out.U16(overlay.image);
        out.U8(0);
        out.Bool(overlay.region.has_value());
        out.I16(overlay.x);
        out.I16(overlay.y);
        out.U16(overlay.width);
        out.U16(overlay.height);
        if (overlay.region)
            out.Block(*overlay.region);
    }
}

void WriteAnimation(Out& out, const Animation& animation)
{
    out.String(animation.name);
    out.U8(static_cast<std::uint8_t>(animation.transition));
    out.String(animation.returnAnimation);
    out.U16(Fit<std::uint16_t>(animation.frames.size(), "frames in an animation"));
    for (const Frame& frame : animation.frames)
        WriteFrame(out, frame);
}

void WriteImage(Out& out, const IndexedImage& image, bool compress)
{
    if (image.pixels.size() != std::size_t{image.width} * image.height)
        throw std::length_error("An image of a character file does not hold width times height pixels.");
    const std::size_t rowSize = RowSize(image.width);
    std::vector<std::uint8_t> rows(rowSize * image.height);
    for (std::size_t y = 0; y < image.height; ++y)
        std::copy_n(image.pixels.begin() + static_cast<std::ptrdiff_t>(y * image.width), image.width,
                    rows.begin() + static_cast<std::ptrdiff_t>((image.height - 1u - y) * rowSize));
    bool packed = false;
    if (compress)
        if (std::vector<std::uint8_t> smaller = Compress(rows); smaller.size() < rows.size()) {
            rows = std::move(smaller);
            packed = true;
        }
    out.U8(0);
    out.U16(image.width);
    out.U16(image.height);
    out.Bool(packed);
    out.Block(rows);
    out.U32(0); // no region: the transparent colour already says what is not drawn
    out.U32(0);
}

} // namespace

std::vector<std::uint8_t> WriteAcs(const AcsDescription& d)
{
    Out out;
    out.U32(Signature);
    const std::size_t characterLocator = out.ReserveLocator();
    const std::size_t animationsLocator = out.ReserveLocator();
    const std::size_t imagesLocator = out.ReserveLocator();
    const std::size_t soundsLocator = out.ReserveLocator();

    // Writes something and fills its locator in.
    const auto place = [&out](std::size_t locator, const auto& write) {
        const std::uint32_t start = out.Position();
        write();
        out.Locate(locator, start);
    };
    std::size_t namesLocator = 0;
    place(characterLocator, [&] { namesLocator = WriteCharacter(out, d); });
    place(namesLocator, [&] { WriteNames(out, d.names); });

    // The lists come first, with their locators still open; what they point to follows.
    std::vector<std::size_t> animations;
    place(animationsLocator, [&] {
        out.U32(Fit<std::uint32_t>(d.animations.size(), "animations"));
        for (const Animation& animation : d.animations) {
            out.String(animation.name);
            animations.push_back(out.ReserveLocator());
        }
    });
    const auto list = [&](std::size_t count, std::size_t locator, const char* what) {
        std::vector<std::size_t> open;
        place(locator, [&] {
            out.U32(Fit<std::uint32_t>(count, what));
            for (std::size_t i = 0; i < count; ++i) {
                open.push_back(out.ReserveLocator());
                out.U32(0); // the checksum, which no reader may rely on
            }
        });
        return open;
    };
    const std::vector<std::size_t> images = list(d.images.size(), imagesLocator, "images");
    const std::vector<std::size_t> sounds = list(d.sounds.size(), soundsLocator, "sounds");

    for (std::size_t i = 0; i < animations.size(); ++i)
        place(animations[i], [&] { WriteAnimation(out, d.animations[i]); });
    for (std::size_t i = 0; i < images.size(); ++i)
        place(images[i], [&] { WriteImage(out, d.images[i], d.compress); });
    for (std::size_t i = 0; i < sounds.size(); ++i)
        place(sounds[i], [&] { out.Append(d.sounds[i]); });
    return std::move(out.bytes);
}

} // namespace voxmate::agent
