// Fuzzes the character file: reading, decoding, composing and playing. Any input may be refused with AcsError, which
// names the file. What is not refused can be used throughout, and reads the same when it is written again.
#include "fuzz.h"

#include "agent/body/Animator.h"
#include "agent/file/AcsWriter.h"
#include "base/Text.h"
#include "tests/fakes/FakeStage.h"

#include <algorithm>
#include <string>
#include <vector>

using namespace voxmate;
using namespace voxmate::agent;
using voxmate::fuzz::InTime;
using voxmate::fuzz::Require;

namespace
{

// A valid file may hold so much that drawing all of it takes minutes. So of each input only so many pixels are drawn
// and so many animations played; each drawing and each playing has its own time limit.
constexpr std::size_t MostPixels = std::size_t{1} << 21;
constexpr std::size_t MostAnimations = 8;

void CheckRefusal(const AcsError& error)
{
    const std::string message = error.what();
    Require(message.starts_with("The character file \"fuzz.acs\" cannot be used: ") && message.ends_with('.'),
            "a refusal names the file and is one sentence");
    const std::u32string letters = DecodeUtf8(message);
    Require(IsValidUtf8(message) && letters.size() <= 250, "a refusal is a short text");
    for (const char32_t c : letters)
        Require(c >= 0x20 && (c < 0x7F || c > 0x9F) && c != 0x2028 && c != 0x2029, "a refusal is a single line");
}

void CheckStructure(const AcsFile& file)
{
    Require(file.width > 0 && file.height > 0, "a frame has a size");
    Require(file.palette.size() <= 256, "a palette has 256 colours at most");
    for (std::size_t i = 0; i < file.animations.size(); i += 1 + file.animations.size() / 20)
        Require(file.FindAnimation(file.animations[i].name) != nullptr, "an animation is found by its name");
    for (const Animation& animation : file.animations) {
        for (const Frame& frame : animation.frames) {
            Require(frame.sound < static_cast<std::int64_t>(file.SoundCount()), "a frame's sound exists");
            for (const FrameImage& image : frame.images)
                Require(image.image < file.ImageCount(), "a frame's image exists");
            int percent = 0;
            for (const Branch& branch : frame.branches) {
                Require(branch.frame < animation.frames.size(), "a branch leads to a frame");
                percent += branch.percent;
            }
            Require(percent <= 100, "branches have no more than all chances");
            Require(frame.exitFrame < static_cast<std::int64_t>(animation.frames.size()), "an exit leads to a frame");
            for (const Overlay& overlay : frame.overlays) {
                Require(overlay.image < file.ImageCount(), "a mouth's image exists");
                Require(overlay.mouth < MouthCount, "a mouth is one of seven");
            }
        }
    }
}

void Draw(const AcsFile& file)
{
    std::size_t drawn = 0;
    for (const Animation& animation : file.animations) {
        for (const Frame& frame : animation.frames) {
            for (int mouth = -1; mouth < MouthCount && drawn < MostPixels; ++mouth) {
                if (mouth >= 0 && !frame.HasMouths())
                    break;
                const InTime inTime("a frame is drawn");
                drawn += std::size_t{file.width} * file.height + 1000 * (1 + frame.images.size());
                try {
                    const Bitmap bitmap = ComposeFrame(file, frame, mouth);
                    Require(bitmap.width == file.width && bitmap.height == file.height &&
                                bitmap.pixels.size() == std::size_t{file.width} * file.height,
                            "a frame has the character's size");
                    for (const std::uint32_t pixel : bitmap.pixels)
                        Require(pixel == 0 || pixel >> 24 == 0xFF, "a pixel is there or is not");
                } catch (const AcsError& error) {
                    CheckRefusal(error);
                }
            }
            if (drawn >= MostPixels)
                return;
        }
    }
}

// Decodes all images; returns false when one cannot be decoded or there are too many pixels. `images` gets those
// decoded until then.
bool DecodeAll(const AcsFile& file, std::vector<IndexedImage>& images)
{
    std::size_t decoded = 0;
    for (std::size_t i = 0; i < file.ImageCount(); ++i) {
        if (decoded >= MostPixels)
            return false;
        const InTime inTime("an image is decoded");
        try {
            IndexedImage image = file.DecodeImage(i);
            Require(image.pixels.size() == std::size_t{image.width} * image.height, "an image has exactly its size");
            decoded += image.pixels.size() + 100;
            images.push_back(std::move(image));
        } catch (const AcsError& error) {
            CheckRefusal(error);
            return false;
        }
    }
    return true;
}

void Play(const AcsFile& file, std::uint32_t chance)
{
    for (std::size_t i = 0; i < file.animations.size() && i < MostAnimations; ++i) {
        const InTime inTime("an animation is played and left");
        fakes::FakeStage stage;
        stage.random = [&chance](int bound) {
            chance = chance * 1664525u + 1013904223u; // the constants of Numerical Recipes
            return static_cast<int>((chance >> 8) % static_cast<std::uint32_t>(bound));
        };
        Animator animator(stage, file, [](const Frame& frame) {
            Require(frame.duration > 0, "only frames of some duration are drawn");
        });
        animator.Play(file.animations[i], {});
        stage.Run(200);
        bool gone = false;
        animator.Leave(nullptr, [&gone] { gone = true; });
        stage.Run(Animator::LongestWayOut);
        Require(gone, "every animation can be left in time");
    }
}

void CompareWhole(const AcsFile& a, const AcsFile& b)
{
    const auto sameFrame = [](const Frame& x, const Frame& y) {
        const auto image = [](const FrameImage& p, const FrameImage& q) {
            return p.image == q.image && p.x == q.x && p.y == q.y;
        };
        const auto branch = [](const Branch& p, const Branch& q) {
            return p.frame == q.frame && p.percent == q.percent;
        };
        const auto overlay = [](const Overlay& p, const Overlay& q) {
            return p.mouth == q.mouth && p.replaceFront == q.replaceFront && p.image == q.image && p.x == q.x &&
                   p.y == q.y && p.width == q.width && p.height == q.height && p.region == q.region;
        };
        return std::ranges::equal(x.images, y.images, image) && x.sound == y.sound && x.duration == y.duration &&
               x.exitFrame == y.exitFrame && std::ranges::equal(x.branches, y.branches, branch) &&
               std::ranges::equal(x.overlays, y.overlays, overlay);
    };
    const auto sameAnimation = [&](const Animation& x, const Animation& y) {
        return x.name == y.name && x.transition == y.transition && x.returnAnimation == y.returnAnimation &&
               std::ranges::equal(x.frames, y.frames, sameFrame);
    };
    const auto sameName = [](const LocalName& x, const LocalName& y) {
        return x.language == y.language && x.name == y.name && x.description == y.description && x.extra == y.extra;
    };
    Require(std::ranges::equal(a.animations, b.animations, sameAnimation), "animations read as they were written");
    Require(std::ranges::equal(a.names, b.names, sameName), "names read as they were written");
    Require(a.width == b.width && a.height == b.height && a.guid == b.guid && a.flags == b.flags &&
                a.transparentIndex == b.transparentIndex && a.palette == b.palette && a.states == b.states &&
                a.trayIcon == b.trayIcon,
            "a character reads as it was written");
    Require(a.voice.has_value() == b.voice.has_value() && a.balloon.has_value() == b.balloon.has_value(),
            "voice and balloon are there when they were");
    if (a.voice)
        Require(a.voice->engine == b.voice->engine && a.voice->mode == b.voice->mode &&
                    a.voice->speed == b.voice->speed && a.voice->pitch == b.voice->pitch &&
                    a.voice->language == b.voice->language && a.voice->dialect == b.voice->dialect &&
                    a.voice->gender == b.voice->gender && a.voice->age == b.voice->age &&
                    a.voice->style == b.voice->style,
                "a voice reads as it was written");
    if (a.balloon)
        Require(a.balloon->lines == b.balloon->lines && a.balloon->charactersPerLine == b.balloon->charactersPerLine &&
                    a.balloon->text == b.balloon->text && a.balloon->background == b.balloon->background &&
                    a.balloon->border == b.balloon->border && a.balloon->fontName == b.balloon->fontName &&
                    a.balloon->fontHeight == b.balloon->fontHeight && a.balloon->fontWeight == b.balloon->fontWeight &&
                    a.balloon->italic == b.balloon->italic,
                "a balloon reads as it was written");
}

void WriteAndReadAgain(const AcsFile& file, std::size_t size)
{
    AcsDescription again;
    static_cast<AcsContent&>(again) = file;
    if (!DecodeAll(file, again.images))
        return;
    // Parts of a file may share their bytes. Written apart, they may take more than a file can hold.
    std::size_t soundBytes = 0;
    for (std::size_t i = 0; i < file.SoundCount(); ++i) {
        const auto sound = file.Sound(i);
        soundBytes += sound.size();
        if (soundBytes > MostPixels)
            return;
        again.sounds.emplace_back(sound.begin(), sound.end());
    }
    again.compress = size % 2 == 0 && again.images.size() < 20;
    for (const IndexedImage& image : again.images)
        again.compress = again.compress && image.pixels.size() < 10000;
    const auto copy = AcsFile::Parse(WriteAcs(again), "fuzz.acs");
    CompareWhole(file, *copy);
    Require(copy->ImageCount() == file.ImageCount() && copy->SoundCount() == file.SoundCount(),
            "no image and no sound is lost");
    for (std::size_t i = 0; i < again.images.size(); ++i)
        Require(copy->DecodeImage(i).pixels == again.images[i].pixels, "an image reads as it was written");
    for (std::size_t i = 0; i < again.sounds.size(); ++i)
        Require(std::ranges::equal(copy->Sound(i), again.sounds[i]), "a sound reads as it was written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::shared_ptr<const AcsFile> file;
    try {
        const InTime inTime("a file is read");
        file = AcsFile::Parse(std::vector<std::uint8_t>(data, data + size), "fuzz.acs");
    } catch (const AcsError& error) {
        CheckRefusal(error);
        return 0;
    }
    CheckStructure(*file);
    Draw(*file);
    Play(*file, data[size / 2]);
    WriteAndReadAgain(*file, size);
    return 0;
}
