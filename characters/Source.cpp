#include "Source.h"

#include "JsonPlace.h"
#include "Liveliness.h"

#include <QColor>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QMap>
#include <QUuid>

#include <algorithm>

namespace voxmate::characters
{

Pose Source::RestPose() const
{
    Pose pose;
    for (const Part& part : parts)
        pose.push_back(part.rest);
    return pose;
}

namespace
{

QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw SourceError(path + ": cannot be read: " + file.errorString());
    return file.readAll();
}

JsonPlace ReadJson(const QString& path)
{
    const QByteArray text = ReadAll(path);
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (document.isNull()) {
        // The offset is that of the first byte not read.
        const QByteArray before = text.left(std::max(0, error.offset - 1));
        const auto line = before.count('\n') + 1;
        const auto column = before.size() - before.lastIndexOf('\n');
        throw SourceError(QString("%1:%2:%3: %4").arg(path).arg(line).arg(column).arg(error.errorString()));
    }
    return {document.isObject() ? QJsonValue(document.object()) : QJsonValue(document.array()), path, {}};
}

std::uint16_t Language(const JsonPlace& at)
{
    bool good = false;
    const uint value = at.Text("0x0409").toUInt(&good, 0);
    if (!good || value > 0xFFFF)
        at.Fail("a language identifier such as \"0x0409\" is needed");
    return static_cast<std::uint16_t>(value);
}

agent::Colour ReadColour(const JsonPlace& at)
{
    const QColor colour(at.Text());
    if (!colour.isValid())
        at.Fail("a colour such as \"#20304A\" is needed");
    return {static_cast<std::uint8_t>(colour.red()), static_cast<std::uint8_t>(colour.green()),
            static_cast<std::uint8_t>(colour.blue())};
}

Ease ReadEase(const JsonPlace& at, Ease absent)
{
    static const QMap<QString, Ease> eases{
        {"linear", Ease::Linear}, {"in", Ease::In},         {"out", Ease::Out},
        {"inOut", Ease::InOut},   {"back", Ease::Back},     {"anticipate", Ease::Anticipate},
        {"bounce", Ease::Bounce}, {"spring", Ease::Spring}, {"hold", Ease::Hold}};
    if (!at.Exists())
        return absent;
    const auto found = eases.find(at.Text());
    if (found == eases.end())
        at.Fail("there is no easing \"" + at.Text() + "\", only " + eases.keys().join(", "));
    return *found;
}

// One name of a pose or a list of them.
std::vector<JsonPlace> Poses(const JsonPlace& at)
{
    if (at.IsString())
        return {at};
    if (!at.IsArray())
        at.Fail("the name of a pose or a list of such names is needed");
    return at.Items();
}

class Reader
{
public:
    explicit Reader(QString folder) : json_(ReadJson(folder + "/character.json"))
    {
        source_.folder = std::move(folder);
    }
    Source Read();

private:
    void ReadIdentity();
    void ReadNames();
    void ReadVoice();
    void ReadBalloon();
    void ReadParts();
    void ReadPart(const JsonPlace& at);
    void ReadMirrored(const JsonPlace& at, Part& part);
    void LinkParents();
    void ReadMouths();
    void ReadPoses();
    void ReadSways();
    void ReadBlink();
    void ReadAnimations();
    void AddLidded(const JsonPlace& at, const SourceAnimation& animation);
    SourceAnimation ReadAnimation(const JsonPlace& at, const QString& name);
    Key ReadKey(const JsonPlace& at, SourceAnimation& animation);
    void AddPose(const JsonPlace& at, Ease ease, std::vector<Setting>& settings);
    void ReadLiveliness(const JsonPlace& at, SourceAnimation& animation) const;
    Setting ReadSetting(const JsonPlace& at, int part, Ease ease) const;
    void ReadStates();
    void CheckReturns();

    int PartNamed(const JsonPlace& at, const QString& name) const;
    int VariantNamed(const JsonPlace& at, const Part& part, const QString& name) const;

    JsonPlace json_;
    Source source_;
    QMap<QString, std::vector<Setting>> poses_;
    QMap<QString, Sway> sways_;
    std::vector<Lid> lids_;
};

Source Reader::Read()
{
    json_.OnlyKeys({"names", "guid", "drawing", "standardSet", "step", "voice", "balloon", "parts", "mouths", "poses",
                    "sways", "blink", "animations", "states"});
    ReadIdentity();
    ReadNames();
    ReadVoice();
    ReadBalloon();
    ReadParts();
    ReadMouths();
    ReadPoses();
    ReadSways();
    ReadBlink();
    ReadAnimations();
    ReadStates();
    return std::move(source_);
}

void Reader::ReadIdentity()
{
    source_.drawingFile = source_.folder + "/" + json_["drawing"].Text();
    const QUuid guid(json_["guid"].Text());
    if (guid.isNull())
        json_["guid"].Fail("an identifier such as \"{1b4e28ba-2fa1-11d2-883f-0016d3cca427}\" is needed");
    // A stored GUID keeps its first three fields little-endian; QUuid gives them big-endian.
    const QByteArray bytes = guid.toRfc4122();
    constexpr std::array<int, 16> order{3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
    for (std::size_t i = 0; i < order.size(); ++i)
        source_.guid[i] = static_cast<std::uint8_t>(bytes[order[i]]);
    if (json_["standardSet"].YesNo(false))
        source_.flags |= agent::FlagStandardSet;
}

void Reader::ReadNames()
{
    for (const JsonPlace& at : json_["names"].Items()) {
        at.OnlyKeys({"language", "name", "description", "extra"});
        source_.names.push_back({Language(at["language"]), at["name"].Text().toStdString(),
                                 at["description"].Text({}).toStdString(), at["extra"].Text({}).toStdString()});
    }
    if (source_.names.empty())
        json_["names"].Fail("a character needs a name");
}

void Reader::ReadVoice()
{
    const JsonPlace at = json_["voice"];
    if (!at.Exists())
        return;
    at.OnlyKeys({"speed", "pitch", "language", "dialect", "gender", "age", "style"});
    agent::VoiceInfo& voice = source_.voice.emplace();
    voice.speed = static_cast<std::uint32_t>(at["speed"].Whole(0, 1000, 0));
    voice.pitch = static_cast<std::uint16_t>(at["pitch"].Whole(0, 1000, 0));
    voice.hasDetails = true;
    voice.language = Language(at["language"]);
    voice.dialect = at["dialect"].Text({}).toStdString();
    voice.gender = static_cast<std::uint16_t>(at["gender"].Whole(0, 2, 0));
    voice.age = static_cast<std::uint16_t>(at["age"].Whole(0, 200, 0));
    voice.style = at["style"].Text({}).toStdString();
}

void Reader::ReadBalloon()
{
    const JsonPlace at = json_["balloon"];
    if (!at.Exists())
        return;
    at.OnlyKeys({"lines", "charactersPerLine", "text", "background", "border", "font", "height", "weight", "italic"});
    agent::BalloonInfo& balloon = source_.balloon.emplace();
    balloon.lines = static_cast<std::uint8_t>(at["lines"].Whole(1, 128, 2));
    balloon.charactersPerLine = static_cast<std::uint8_t>(at["charactersPerLine"].Whole(8, 255, 32));
    balloon.text = ReadColour(at["text"]);
    balloon.background = ReadColour(at["background"]);
    balloon.border = ReadColour(at["border"]);
    balloon.fontName = at["font"].Text("Sans").toStdString();
    balloon.fontHeight = at["height"].Whole(-100, 100, -13);
    balloon.fontWeight = at["weight"].Whole(100, 900, 400);
    balloon.italic = at["italic"].YesNo(false);
    source_.flags |= agent::FlagSizeToText;
}

int Reader::PartNamed(const JsonPlace& at, const QString& name) const
{
    for (std::size_t i = 0; i < source_.parts.size(); ++i)
        if (source_.parts[i].name == name)
            return static_cast<int>(i);
    at.Fail("there is no part \"" + name + "\"");
}

int Reader::VariantNamed(const JsonPlace& at, const Part& part, const QString& name) const
{
    if (name == "none")
        return -1;
    QStringList known{"none"};
    for (std::size_t i = 0; i < part.variants.size(); ++i) {
        if (part.variants[i].name == name)
            return static_cast<int>(i);
        known << part.variants[i].name;
    }
    at.Fail("the part \"" + part.name + "\" has no variant \"" + name + "\", only " + known.join(", "));
}

void Reader::ReadParts()
{
    for (const JsonPlace& at : json_["parts"].Items())
        ReadPart(at);
    if (source_.parts.empty())
        json_["parts"].Fail("a character needs parts");
    LinkParents();
}

void Reader::ReadPart(const JsonPlace& at)
{
    at.OnlyKeys({"name", "parent", "pivot", "drawing", "variants", "show", "mirrorOf"});
    Part part;
    part.name = at["name"].Text();
    for (const Part& other : source_.parts)
        if (other.name == part.name)
            at["name"].Fail("there are two parts \"" + part.name + "\"");
    if (QStringList{"at", "ease", "pose", "sound", "comment"}.contains(part.name))
        at["name"].Fail("\"" + part.name + "\" means something else in a key; give the part another name");
    if (at["mirrorOf"].Exists()) {
        ReadMirrored(at, part);
    } else {
        if (at["pivot"].Exists())
            part.pivot = at["pivot"].Pair();
        if (at["drawing"].Exists())
            part.variants.push_back({"drawing", at["drawing"].Text()});
        if (const JsonPlace variants = at["variants"]; variants.Exists())
            for (const QString& name : variants.Keys())
                part.variants.push_back({name, variants[name].Text()});
        if (part.variants.empty())
            part.variants.push_back({"shown", {}});
        if (!at["variants"].Exists())
            part.rest.variant = 0;
    }
    if (at["show"].Exists())
        part.rest.variant = VariantNamed(at["show"], part, at["show"].Text());
    source_.parts.push_back(std::move(part));
}

void Reader::ReadMirrored(const JsonPlace& at, Part& part)
{
    const Part& model = source_.parts[static_cast<std::size_t>(PartNamed(at["mirrorOf"], at["mirrorOf"].Text()))];
    for (const char* key : {"pivot", "drawing", "variants"})
        if (at[key].Exists())
            at[key].Fail("a mirrored part takes this from the part it mirrors");
    part.pivot = model.pivot;
    part.variants = model.variants;
    part.rest.variant = model.rest.variant;
    part.mirrored = !model.mirrored;
}

void Reader::LinkParents()
{
    const auto items = json_["parts"].Items();
    for (std::size_t i = 0; i < items.size(); ++i)
        if (items[i]["parent"].Exists())
            source_.parts[i].parent = PartNamed(items[i]["parent"], items[i]["parent"].Text());
    for (std::size_t i = 0; i < items.size(); ++i) {
        std::size_t steps = 0;
        for (int at = source_.parts[i].parent; at >= 0; at = source_.parts[static_cast<std::size_t>(at)].parent)
            if (++steps > items.size())
                items[i]["parent"].Fail("this part is its own ancestor");
    }
}

void Reader::ReadMouths()
{
    const JsonPlace at = json_["mouths"];
    if (!at.Exists())
        return;
    const QStringList names{"closed", "wide1", "wide2", "wide3", "wide4", "medium", "narrow"};
    at.OnlyKeys(QStringList{"part"} + names);
    source_.mouthPart = PartNamed(at["part"], at["part"].Text());
    const Part& part = source_.parts[static_cast<std::size_t>(source_.mouthPart)];
    for (int i = 0; i < agent::MouthCount; ++i)
        source_.mouths[static_cast<std::size_t>(i)] = VariantNamed(at[names[i]], part, at[names[i]].Text());
}

Setting Reader::ReadSetting(const JsonPlace& at, int part, Ease ease) const
{
    at.OnlyKeys({"move", "rotate", "scale", "show", "ease"});
    Setting setting;
    setting.part = part;
    setting.ease = ReadEase(at["ease"], ease);
    if (at["move"].Exists()) {
        setting.values[MoveX] = at["move"].Pair().x();
        setting.values[MoveY] = at["move"].Pair().y();
    }
    if (at["rotate"].Exists())
        setting.values[Rotate] = at["rotate"].Number();
    if (const JsonPlace scale = at["scale"]; scale.Exists()) {
        const QPointF factors = scale.IsArray() ? scale.Pair() : QPointF(scale.Number(), scale.Number());
        setting.values[ScaleX] = factors.x();
        setting.values[ScaleY] = factors.y();
    }
    if (at["show"].Exists())
        setting.variant = VariantNamed(at["show"], source_.parts[static_cast<std::size_t>(part)], at["show"].Text());
    return setting;
}

void Reader::ReadPoses()
{
    std::vector<Setting> rest;
    for (std::size_t i = 0; i < source_.parts.size(); ++i) {
        Setting setting;
        setting.part = static_cast<int>(i);
        for (std::size_t k = 0; k < PropertyCount; ++k)
            setting.values[k] = source_.parts[i].rest.values[k];
        setting.variant = source_.parts[i].rest.variant;
        rest.push_back(setting);
    }
    const JsonPlace poses = json_["poses"];
    if (poses.Exists())
        for (const QString& name : poses.Keys()) {
            if (name == "rest")
                poses[name].Fail("the rest pose is how the parts are drawn; it cannot be changed here");
            if (name == "comment")
                continue;
            std::vector<Setting>& settings = poses_[name];
            for (const QString& part : poses[name].Keys())
                if (part != "comment")
                    settings.push_back(ReadSetting(poses[name][part], PartNamed(poses[name], part), Ease::InOut));
        }
    poses_["rest"] = std::move(rest);
}

void Reader::ReadSways()
{
    const JsonPlace sways = json_["sways"];
    if (!sways.Exists())
        return;
    for (const QString& name : sways.Keys()) {
        if (name == "comment")
            continue;
        const JsonPlace at = sways[name];
        Sway& sway = sways_[name];
        sway.period = at["period"].Whole(10, 30000);
        for (const QString& part : at.Keys()) {
            if (part == "comment" || part == "period")
                continue;
            at[part].OnlyKeys({"move", "rotate", "scale", "late"});
            SwayingPart& swaying = sway.parts.emplace_back();
            swaying.part = PartNamed(at, part);
            swaying.late = at[part]["late"].Whole(0, sway.period, 0);
            if (at[part]["move"].Exists()) {
                swaying.amounts[MoveX] = at[part]["move"].Pair().x();
                swaying.amounts[MoveY] = at[part]["move"].Pair().y();
            }
            if (at[part]["rotate"].Exists())
                swaying.amounts[Rotate] = at[part]["rotate"].Number();
            if (at[part]["scale"].Exists()) {
                swaying.amounts[ScaleX] = at[part]["scale"].Pair().x();
                swaying.amounts[ScaleY] = at[part]["scale"].Pair().y();
            }
        }
    }
}

void Reader::ReadBlink()
{
    const JsonPlace at = json_["blink"];
    if (!at.Exists())
        return;
    at.OnlyKeys({"half", "shut"});
    const auto shown = [this](const JsonPlace& pose) {
        std::vector<Setting> settings;
        AddPose(pose, Ease::Hold, settings);
        return settings;
    };
    for (const Setting& setting : shown(at["shut"]))
        if (setting.variant) {
            const int open = source_.parts[static_cast<std::size_t>(setting.part)].rest.variant;
            lids_.push_back({setting.part, open, *setting.variant, *setting.variant});
        }
    if (lids_.empty())
        at["shut"].Fail("this pose shows no variant of any part");
    if (at["half"].Exists())
        for (const Setting& setting : shown(at["half"]))
            for (Lid& lid : lids_)
                if (lid.part == setting.part && setting.variant)
                    lid.half = *setting.variant;
}

void Reader::AddPose(const JsonPlace& at, Ease ease, std::vector<Setting>& settings)
{
    const auto found = poses_.find(at.Text());
    if (found == poses_.end())
        at.Fail("there is no pose \"" + at.Text() + "\"");
    for (Setting setting : *found) {
        setting.ease = ease;
        settings.push_back(setting);
    }
}

Key Reader::ReadKey(const JsonPlace& at, SourceAnimation& animation)
{
    Key key;
    key.at = at["at"].Whole(0, 30000);
    const Ease ease = ReadEase(at["ease"], Ease::InOut);
    if (const JsonPlace pose = at["pose"]; pose.Exists()) {
        for (const JsonPlace& one : Poses(pose))
            AddPose(one, ease, key.settings);
    }
    if (at["sound"].Exists()) {
        const QByteArray sound = ReadAll(source_.folder + "/" + at["sound"].Text());
        if (!sound.startsWith("RIFF"))
            at["sound"].Fail("\"" + at["sound"].Text() + "\" is not a RIFF wave file");
        // A sound that several keys play is stored once.
        const auto known = std::find(source_.sounds.begin(), source_.sounds.end(), sound);
        animation.sounds.push_back({key.at, static_cast<int>(known - source_.sounds.begin())});
        if (known == source_.sounds.end())
            source_.sounds.push_back(sound);
    }
    for (const QString& name : at.Keys())
        if (!QStringList{"at", "ease", "pose", "sound", "comment"}.contains(name))
            key.settings.push_back(ReadSetting(at[name], PartNamed(at, name), ease));
    return key;
}

SourceAnimation Reader::ReadAnimation(const JsonPlace& at, const QString& name)
{
    at.OnlyKeys({"start", "keys", "length", "step", "hold", "speaks", "return", "branches", "closedMouth", "sway",
                 "blinks", "lids"});
    SourceAnimation animation;
    animation.name = name;
    animation.step = at["step"].Whole(2, 100, json_["step"].Whole(2, 100, 6));
    if (at["speaks"].IsString()) {
        if (at["speaks"].Text() != "throughout")
            at["speaks"].Fail("true, false or \"throughout\" is needed");
        animation.speaks = Speaks::Throughout;
    } else if (at["speaks"].YesNo(false)) {
        animation.speaks = Speaks::AtTheEnd;
    }
    if (animation.speaks != Speaks::Nowhere && source_.mouthPart < 0)
        at["speaks"].Fail("this character has no mouths");
    if (const JsonPlace closed = at["closedMouth"]; closed.Exists()) {
        if (animation.speaks == Speaks::Nowhere)
            closed.Fail("is for an animation that \"speaks\"");
        animation.closedMouth =
            VariantNamed(closed, source_.parts[static_cast<std::size_t>(source_.mouthPart)], closed.Text());
    }
    animation.start = source_.RestPose();
    if (const JsonPlace start = at["start"]; start.Exists()) {
        std::vector<Setting> settings;
        for (const JsonPlace& one : Poses(start))
            AddPose(one, Ease::Hold, settings);
        for (const Setting& setting : settings) {
            PartState& state = animation.start[static_cast<std::size_t>(setting.part)];
            for (std::size_t k = 0; k < PropertyCount; ++k)
                state.values[k] = setting.values[k].value_or(state.values[k]);
            state.variant = setting.variant.value_or(state.variant);
        }
    }
    for (const JsonPlace& key : at["keys"].Exists() ? at["keys"].Items() : std::vector<JsonPlace>()) {
        animation.keys.push_back(ReadKey(key, animation));
        if (animation.keys.size() > 1 && animation.keys.back().at < animation.keys[animation.keys.size() - 2].at)
            key["at"].Fail("keys stand in the order of their times");
    }
    const int last = animation.keys.empty() ? 0 : animation.keys.back().at;
    animation.length = at["length"].Whole(std::max(1, last), 30000, std::max(animation.step, last));
    // The time must be a frame's: only there can an animation hold or branch.
    const auto onFrame = [&animation](const JsonPlace& time, int value) {
        if (value % animation.step != 0 && value != animation.length)
            time.Fail(QString("a multiple of the step, %1, is needed").arg(animation.step));
        return value;
    };
    if (at["hold"].Exists())
        animation.hold = onFrame(at["hold"], at["hold"].Whole(2 * animation.step, animation.length));
    ReadLiveliness(at, animation);
    if (at["return"].Exists()) {
        animation.transition = agent::Transition::ReturnAnimation;
        animation.returnAnimation = at["return"].Text();
    }
    if (at["branches"].Exists())
        for (const JsonPlace& branch : at["branches"].Items()) {
            branch.OnlyKeys({"from", "to", "percent"});
            animation.branches.push_back({onFrame(branch["from"], branch["from"].Whole(1, animation.length)),
                                          onFrame(branch["to"], branch["to"].Whole(0, animation.length - 1)),
                                          branch["percent"].Whole(1, 100, 100)});
        }
    return animation;
}

void Reader::ReadLiveliness(const JsonPlace& at, SourceAnimation& animation) const
{
    if (const JsonPlace sway = at["sway"]; sway.Exists()) {
        for (const JsonPlace& name : sway.IsString() ? std::vector<JsonPlace>{sway} : sway.Items()) {
            const auto found = sways_.find(name.Text());
            if (found == sways_.end())
                name.Fail("there is no sway \"" + name.Text() + "\"");
            animation.sways.push_back(*found);
        }
    }
    if (const JsonPlace blinks = at["blinks"]; blinks.Exists()) {
        if (lids_.empty())
            blinks.Fail("\"blink\", beside \"poses\", must say what a blink looks like");
        animation.lids = lids_;
        animation.blinks = BlinkTimes(animation, blinks.Whole(1, 60));
    }
}

/// Adds the same animation with lids half and wholly shut. They open in the last frame, so that it too ends at rest.
void Reader::AddLidded(const JsonPlace& at, const SourceAnimation& animation)
{
    if (lids_.empty())
        at.Fail("\"blink\", beside \"poses\", must say what a blink looks like");
    SourceAnimation half = animation;
    SourceAnimation shut = animation;
    half.name += "HalfShut";
    shut.name += "Shut";
    Key open;
    open.at = animation.length;
    for (const Lid& lid : lids_) {
        Setting& setting = open.settings.emplace_back();
        setting.part = lid.part;
        setting.variant = lid.open;
        half.start[static_cast<std::size_t>(lid.part)].variant = lid.half;
        shut.start[static_cast<std::size_t>(lid.part)].variant = lid.shut;
    }
    half.keys.push_back(open);
    shut.keys.push_back(open);
    source_.animations.push_back(std::move(half));
    source_.animations.push_back(std::move(shut));
}

void Reader::ReadAnimations()
{
    const JsonPlace animations = json_["animations"];
    for (const QString& name : animations.Keys())
        if (name != "comment") {
            source_.animations.push_back(ReadAnimation(animations[name], name));
            if (animations[name]["lids"].YesNo(false))
                AddLidded(animations[name]["lids"], SourceAnimation(source_.animations.back()));
        }
    CheckReturns();
}

void Reader::CheckReturns()
{
    for (const SourceAnimation& animation : source_.animations)
        if (!animation.returnAnimation.isEmpty() &&
            std::none_of(source_.animations.begin(), source_.animations.end(),
                         [&](const SourceAnimation& other) { return other.name == animation.returnAnimation; }))
            json_["animations"][animation.name]["return"].Fail("there is no animation \"" + animation.returnAnimation +
                                                               "\"");
}

void Reader::ReadStates()
{
    const JsonPlace states = json_["states"];
    for (const QString& name : states.Keys()) {
        auto& [state, members] = source_.states.emplace_back();
        state = name.toStdString();
        for (const JsonPlace& member : states[name].Items()) {
            members.push_back(member.Text().toStdString());
            if (std::none_of(source_.animations.begin(), source_.animations.end(),
                             [&](const SourceAnimation& a) { return a.name == member.Text(); }))
                member.Fail("there is no animation \"" + member.Text() + "\"");
        }
    }
}

} // namespace

Source ReadSource(const QString& folder)
{
    return Reader(QDir::cleanPath(folder)).Read();
}

} // namespace voxmate::characters
