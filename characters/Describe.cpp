#include "Describe.h"

#include "speech/sound/WaveFile.h"

#include <array>
#include <cctype>
#include <cstdio>
#include <map>
#include <optional>
#include <utility>

namespace voxmate::characters
{

namespace
{

// Writes JSON with its members in the order in which they are given.
class Json
{
public:
    std::string Take() { return std::move(text_) + "\n"; }

    void Key(const char* name)
    {
        Next();
        Quote(name);
        text_ += ": ";
        afterKey_ = true;
    }
    void Text(const std::string& value)
    {
        Next();
        Quote(value);
    }
    void Number(std::int64_t value) { Raw(std::to_string(value)); }
    void YesNo(bool value) { Raw(value ? "true" : "false"); }
    void Null() { Raw("null"); }
    void Open(char bracket)
    {
        Next();
        text_ += bracket;
        ++depth_;
        first_ = true;
    }
    void Close(char bracket)
    {
        --depth_;
        if (!first_)
            NewLine();
        text_ += bracket;
        first_ = false;
    }
    void Text(const char* key, const std::string& value) { Key(key), Text(value); }
    void Number(const char* key, std::int64_t value) { Key(key), Number(value); }
    void YesNo(const char* key, bool value) { Key(key), YesNo(value); }
    void Open(const char* key, char bracket) { Key(key), Open(bracket); }

private:
    void Next()
    {
        if (afterKey_) {
            afterKey_ = false;
            return;
        }
        if (!first_)
            text_ += ',';
        first_ = false;
        if (depth_ > 0)
            NewLine();
    }
    void NewLine()
    {
        text_ += '\n';
        text_.append(2 * depth_, ' ');
    }
    void Raw(const std::string& value)
    {
        Next();
        text_ += value;
    }
    void Quote(const std::string& value)
    {
        text_ += '"';
        for (const char c : value) {
            if (c == '"' || c == '\\') {
                text_ += '\\';
                text_ += c;
            } else if (static_cast<unsigned char>(c) < 0x20) {
                std::array<char, 8> escape{};
                std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(c));
                text_ += escape.data();
            } else {
                text_ += c;
            }
        }
        text_ += '"';
    }

    std::string text_;
    std::size_t depth_ = 0;
    bool first_ = true;
    bool afterKey_ = false;
};

std::string Hex(std::uint32_t value, int digits)
{
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "0x%0*x", digits, value);
    return text.data();
}

std::string Rgb(const agent::Colour& colour)
{
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%02x%02x%02x", colour.red, colour.green, colour.blue);
    return text.data();
}

std::string SmallGuid(const agent::Guid& guid)
{
    std::string text = agent::GuidText(guid);
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

void Version(Json& json, const char* key, int major, int minor)
{
    json.Open(key, '{');
    json.Number("major", major);
    json.Number("minor", minor);
    json.Close('}');
}

void Names(Json& json, const agent::AcsFile& file)
{
    json.Open("names", '[');
    for (const agent::LocalName& name : file.names) {
        json.Open('{');
        json.Text("language", Hex(name.language, 4));
        json.Text("name", name.name);
        json.Text("description", name.description);
        json.Text("extra", name.extra);
        json.Close('}');
    }
    json.Close(']');
}

void Flags(Json& json, std::uint32_t flags)
{
    json.Open("flags", '{');
    json.Text("value", Hex(flags, 8));
    json.YesNo("voice", flags & agent::FlagVoice);
    json.YesNo("balloonDisabled", flags & agent::FlagBalloonDisabled);
    json.YesNo("balloon", flags & agent::FlagBalloon);
    json.YesNo("sizeToText", flags & agent::FlagSizeToText);
    json.YesNo("autoHideOff", flags & agent::FlagAutoHideOff);
    json.YesNo("autoPaceOff", flags & agent::FlagAutoPaceOff);
    json.YesNo("standardSet", flags & agent::FlagStandardSet);
    json.Close('}');
}

void Voice(Json& json, const std::optional<agent::VoiceInfo>& voice)
{
    json.Key("voice");
    if (!voice)
        return json.Null();
    json.Open('{');
    json.Text("engine", SmallGuid(voice->engine));
    json.Text("mode", SmallGuid(voice->mode));
    json.Number("speed", voice->speed);
    json.Number("pitch", voice->pitch);
    if (voice->hasDetails) {
        json.Text("language", Hex(voice->language, 4));
        json.Text("dialect", voice->dialect);
        json.Number("gender", voice->gender);
        json.Number("age", voice->age);
        json.Text("style", voice->style);
    }
    json.Close('}');
}

void Balloon(Json& json, const std::optional<agent::BalloonInfo>& balloon)
{
    json.Key("balloon");
    if (!balloon)
        return json.Null();
    json.Open('{');
    json.Number("lines", balloon->lines);
    json.Number("charactersPerLine", balloon->charactersPerLine);
    json.Text("text", Rgb(balloon->text));
    json.Text("background", Rgb(balloon->background));
    json.Text("border", Rgb(balloon->border));
    json.Text("font", balloon->fontName);
    json.Number("height", balloon->fontHeight);
    json.Number("weight", balloon->fontWeight);
    json.YesNo("italic", balloon->italic);
    json.Close('}');
}

void TrayIcon(Json& json, const agent::AcsFile& file)
{
    json.Key("trayIcon");
    if (!file.trayIcon)
        return json.Null();
    json.Open('{');
    json.Number("maskSize", static_cast<std::int64_t>(file.trayIcon->first.size()));
    json.Number("colourSize", static_cast<std::int64_t>(file.trayIcon->second.size()));
    json.Close('}');
}

void States(Json& json, const agent::AcsFile& file)
{
    json.Open("states", '[');
    for (const auto& [name, animations] : file.states) {
        json.Open('{');
        json.Text("name", name);
        json.Open("animations", '[');
        for (const std::string& animation : animations)
            json.Text(animation);
        json.Close(']');
        json.Close('}');
    }
    json.Close(']');
}

void OrNull(Json& json, const char* key, std::int64_t value, bool there)
{
    json.Key(key);
    there ? json.Number(value) : json.Null();
}

void Frame(Json& json, const agent::Frame& frame)
{
    constexpr std::array<const char*, agent::MouthCount> mouths{"closed", "wide1",  "wide2", "wide3",
                                                                "wide4",  "medium", "narrow"};
    json.Open('{');
    json.Open("images", '[');
    for (const agent::FrameImage& image : frame.images) {
        json.Open('{');
        json.Number("image", image.image);
        json.Number("x", image.x);
        json.Number("y", image.y);
        json.Close('}');
    }
    json.Close(']');
    OrNull(json, "sound", frame.sound, frame.sound >= 0);
    json.Number("duration", frame.duration);
    OrNull(json, "exitFrame", frame.exitFrame, frame.exitFrame >= 0);
    json.Open("branches", '[');
    for (const agent::Branch& branch : frame.branches) {
        json.Open('{');
        json.Number("frame", branch.frame);
        json.Number("percent", branch.percent);
        json.Close('}');
    }
    json.Close(']');
    json.Open("overlays", '[');
    for (const agent::Overlay& overlay : frame.overlays) {
        json.Open('{');
        json.Text("mouth", mouths.at(overlay.mouth));
        json.YesNo("replace", overlay.replaceFront);
        json.Number("image", overlay.image);
        json.Number("x", overlay.x);
        json.Number("y", overlay.y);
        json.Number("width", overlay.width);
        json.Number("height", overlay.height);
        OrNull(json, "region", overlay.region ? static_cast<std::int64_t>(overlay.region->size()) : 0,
               overlay.region.has_value());
        json.Close('}');
    }
    json.Close(']');
    json.Close('}');
}

void Animations(Json& json, const agent::AcsFile& file)
{
    constexpr std::array<const char*, 3> transitions{"return", "exit", "none"};
    json.Open("animations", '[');
    for (const agent::Animation& animation : file.animations) {
        json.Open('{');
        json.Text("name", animation.name);
        json.Text("transition", transitions.at(static_cast<std::size_t>(animation.transition)));
        json.Text("returnAnimation", animation.returnAnimation);
        json.Open("frames", '[');
        for (const agent::Frame& frame : animation.frames)
            Frame(json, frame);
        json.Close(']');
        json.Close('}');
    }
    json.Close(']');
}

void Images(Json& json, const agent::AcsFile& file)
{
    json.Open("images", '[');
    for (std::size_t i = 0; i < file.ImageCount(); ++i) {
        const agent::StoredImage& image = file.Stored(i);
        json.Open('{');
        json.Number("width", image.width);
        json.Number("height", image.height);
        json.YesNo("compressed", image.compressed);
        json.Number("storedSize", image.size);
        json.Close('}');
    }
    json.Close(']');
}

void Sounds(Json& json, const agent::AcsFile& file)
{
    // A file may name the same large sound ten thousand times.
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::optional<speech::WaveFormat>> described;
    json.Open("sounds", '[');
    for (std::size_t i = 0; i < file.SoundCount(); ++i) {
        json.Open('{');
        const agent::StoredSound& place = file.PlaceOfSound(i);
        json.Number("size", place.size);
        const auto [wave, isNew] = described.try_emplace({place.offset, place.size});
        if (isNew)
            wave->second = speech::DescribeWave(file.Sound(i));
        if (const auto& format = wave->second) {
            json.Number("channels", format->channels);
            json.Number("sampleRate", format->samplesPerSecond);
            if (format->bits != 0)
                json.Number("bits", format->bits);
            json.Number("frames", format->frames);
        }
        json.Close('}');
    }
    json.Close(']');
}

} // namespace

std::string Describe(const agent::AcsFile& file, std::uint64_t size)
{
    Json json;
    json.Open('{');
    json.Text("file", file.path);
    json.Number("size", static_cast<std::int64_t>(size));
    Version(json, "version", file.majorVersion, file.minorVersion);
    Version(json, "animationSet", file.animationSetMajor, file.animationSetMinor);
    json.Text("guid", SmallGuid(file.guid));
    Names(json, file);
    json.Number("width", file.width);
    json.Number("height", file.height);
    json.Number("transparentIndex", file.transparentIndex);
    Flags(json, file.flags);
    Voice(json, file.voice);
    Balloon(json, file.balloon);
    json.Open("palette", '[');
    for (const agent::Colour& colour : file.palette)
        json.Text(Rgb(colour));
    json.Close(']');
    TrayIcon(json, file);
    States(json, file);
    Animations(json, file);
    Images(json, file);
    Sounds(json, file);
    json.Close('}');
    return json.Take();
}

} // namespace voxmate::characters
