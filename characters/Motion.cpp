#include "Motion.h"

#include "Liveliness.h"

#include <cmath>
#include <numbers>

namespace voxmate::characters
{

double Eased(Ease ease, double part)
{
    if (part >= 1)
        return 1;
    if (part <= 0)
        return 0;
    const double rest = 1 - part;
    constexpr double overshoot = 1.9; // goes some 12 percent beyond the end
    switch (ease) {
    case Ease::Linear:
        return part;
    case Ease::In:
        return part * part;
    case Ease::Out:
        return 1 - rest * rest;
    case Ease::InOut:
        return part * part * (3 - 2 * part);
    case Ease::Back:
        return 1 - rest * rest * ((overshoot + 1) * rest - overshoot);
    case Ease::Anticipate:
        return part * part * ((overshoot + 1) * part - overshoot);
    case Ease::Bounce: {
        // A falling ball that bounces twice, to a quarter and a sixteenth of the height.
        constexpr double fall = 4.0 / 11;
        if (part < fall)
            return part * part / (fall * fall);
        const double centre = part < 8.0 / 11 ? 6.0 / 11 : 10.0 / 11;
        const double height = part < 8.0 / 11 ? 0.25 : 1.0 / 16;
        const double width = part < 8.0 / 11 ? 2.0 / 11 : 1.0 / 11;
        const double x = (part - centre) / width;
        return std::min(1.0, 1 - height * (1 - x * x));
    }
    case Ease::Spring:
        return 1 - std::exp(-5 * part) * std::cos(3 * std::numbers::pi * part) * rest;
    case Ease::Hold:
        return 0;
    }
    return 1;
}

namespace
{

// Passes through the keys that set one value and computes it at `time`.
class Track
{
public:
    Track(double start, double time) : from_(start), value_(start), time_(time) {}

    void Pass(int at, double target, Ease ease)
    {
        if (at <= time_) {
            value_ = target;
        } else if (!ahead_) {
            ahead_ = true;
            const double span = at - fromTime_;
            value_ = from_ + (target - from_) * Eased(ease, (time_ - fromTime_) / span);
        }
        if (!ahead_) {
            from_ = target;
            fromTime_ = at;
        }
    }
    void Stay(int at) { Pass(at, from_, Ease::Hold); }
    double Value() const { return value_; }

private:
    double from_;
    double value_;
    double time_;
    double fromTime_ = 0;
    bool ahead_ = false;
};

// The setting that counts for a part: the last one in a key, so a part's own setting overrides that of a pose.
struct Effective {
    std::array<std::optional<double>, PropertyCount> values;
    std::array<Ease, PropertyCount> eases{};
    std::optional<int> variant;
    bool pins = false; // the key sets one of the part's values: values it does not mention keep theirs
};

Effective EffectOf(const Key& key, int part)
{
    Effective effect;
    for (const Setting& setting : key.settings) {
        if (setting.part != part)
            continue;
        bool values = false;
        for (std::size_t k = 0; k < PropertyCount; ++k)
            if (setting.values[k]) {
                effect.values[k] = setting.values[k];
                effect.eases[k] = setting.ease;
                values = true;
            }
        if (setting.variant)
            effect.variant = setting.variant;
        effect.pins = effect.pins || values || !setting.variant;
    }
    return effect;
}

} // namespace

Pose PoseAt(const SourceAnimation& animation, double time)
{
    Pose pose = animation.start;
    for (std::size_t i = 0; i < pose.size(); ++i) {
        std::vector<Track> tracks;
        for (const double value : pose[i].values)
            tracks.emplace_back(value, time);
        for (const Key& key : animation.keys) {
            const Effective effect = EffectOf(key, static_cast<int>(i));
            for (std::size_t k = 0; k < PropertyCount; ++k)
                if (effect.values[k])
                    tracks[k].Pass(key.at, *effect.values[k], effect.eases[k]);
                else if (effect.pins)
                    tracks[k].Stay(key.at);
            if (effect.variant && key.at <= time)
                pose[i].variant = *effect.variant;
        }
        for (std::size_t k = 0; k < PropertyCount; ++k)
            pose[i].values[k] = tracks[k].Value();
    }
    Enliven(animation, time, pose);
    return pose;
}

} // namespace voxmate::characters
