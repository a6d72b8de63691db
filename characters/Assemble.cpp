#include "Assemble.h"

#include "FramePlan.h"
#include "Palette.h"

#include <QHash>

#include <algorithm>
#include <utility>

namespace voxmate::characters
{

namespace
{

using Indices = std::vector<std::uint8_t>;

struct Box {
    int left = 0;
    int top = 0;
    int right = 0; // one past
    int bottom = 0;
    int Area() const { return (right - left) * (bottom - top); }
};

// Stores every image once. A frame that differs little from an earlier one is stored as that one and a patch over it.
class ImageStore
{
public:
    ImageStore(int width, int height) : width_(width), height_(height) {}

    std::vector<agent::FrameImage> Place(const Indices& frame)
    {
        const QByteArray key = Key(frame);
        const auto known = frames_.find(key);
        if (known != frames_.end())
            return *known;
        const Box whole = Bounds(frame, nullptr);
        std::vector<agent::FrameImage> placed;
        if (whole.Area() > 0) {
            Box patch;
            if (const Base* base = BestBase(frame, whole, patch)) {
                placed = {Store(frame, base->frame.data(), patch), base->image};
            } else {
                placed = {Store(frame, nullptr, whole)};
                bases_.push_back({frame, placed[0]});
            }
        }
        frames_[key] = placed;
        return placed;
    }

    // Makes an overlay of what `frame` shows differently from `under`. Returns false if the overlay would have to make
    // a pixel transparent.
    bool Patch(const Indices& frame, const Indices& under, agent::FrameImage& image, Box& box)
    {
        if (!Covers(frame, under))
            return false;
        box = Bounds(frame, under.data());
        image = Store(frame, under.data(), box);
        return true;
    }

    std::vector<agent::IndexedImage> Take() { return std::move(images_); }

private:
    struct Base {
        Indices frame;
        agent::FrameImage image;
    };

    static QByteArray Key(const Indices& pixels)
    {
        return {reinterpret_cast<const char*>(pixels.data()), static_cast<qsizetype>(pixels.size())};
    }
    // The box of all pixels that differ from `under`, or, if that is null, of all drawn pixels; one pixel if there are
    // none.
    Box Bounds(const Indices& frame, const std::uint8_t* under) const
    {
        Box box{width_, height_, 0, 0};
        for (int y = 0; y < height_; ++y)
            for (int x = 0; x < width_; ++x) {
                const auto at =
                    static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
                if (frame[at] == (under != nullptr ? under[at] : TransparentIndex))
                    continue;
                box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1), y + 1};
            }
        if (box.right > 0)
            return box;
        return under != nullptr ? Box{0, 0, 1, 1} : Box{};
    }
    // Whether a patch can turn `under` into `frame`: no patch can make a drawn pixel transparent.
    static bool Covers(const Indices& frame, const Indices& under)
    {
        for (std::size_t i = 0; i < frame.size(); ++i)
            if (frame[i] == TransparentIndex && under[i] != TransparentIndex)
                return false;
        return true;
    }
    const Base* BestBase(const Indices& frame, const Box& whole, Box& patch) const
    {
        const Base* best = nullptr;
        int least = whole.Area() / 2;
        for (const Base& base : bases_) {
            if (!Covers(frame, base.frame))
                continue;
            if (const Box box = Bounds(frame, base.frame.data()); box.Area() < least) {
                least = box.Area();
                patch = box;
                best = &base;
            }
        }
        return best;
    }
    agent::FrameImage Store(const Indices& frame, const std::uint8_t* under, const Box& box)
    {
        agent::IndexedImage image{
            static_cast<std::uint16_t>(box.right - box.left), static_cast<std::uint16_t>(box.bottom - box.top), {}};
        for (int y = box.top; y < box.bottom; ++y)
            for (int x = box.left; x < box.right; ++x) {
                const auto at =
                    static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x);
                image.pixels.push_back(under != nullptr && under[at] == frame[at] ? TransparentIndex : frame[at]);
            }
        const std::pair<int, QByteArray> key(image.width, Key(image.pixels));
        auto known = numbers_.find(key);
        if (known == numbers_.end()) {
            known = numbers_.insert(key, static_cast<std::uint32_t>(images_.size()));
            images_.push_back(std::move(image));
        }
        return {*known, static_cast<std::int16_t>(box.left), static_cast<std::int16_t>(box.top)};
    }

    int width_;
    int height_;
    std::vector<agent::IndexedImage> images_;
    QHash<std::pair<int, QByteArray>, std::uint32_t> numbers_; // by width and pixels
    QHash<QByteArray, std::vector<agent::FrameImage>> frames_;
    std::vector<Base> bases_;
};

// Renders each pose once.
class Pictures
{
public:
    explicit Pictures(const Drawing& drawing) : drawing_(drawing) {}

    QImage Of(const Pose& pose)
    {
        QByteArray key;
        for (const PartState& part : pose) {
            key.append(reinterpret_cast<const char*>(part.values.data()), sizeof part.values);
            key.append(reinterpret_cast<const char*>(&part.variant), sizeof part.variant);
        }
        auto found = known_.find(key);
        if (found == known_.end())
            found = known_.insert(key, drawing_.Render(pose));
        return *found;
    }
    const QHash<QByteArray, QImage>& All() const { return known_; }

private:
    const Drawing& drawing_;
    QHash<QByteArray, QImage> known_;
};

class Assembler
{
public:
    Assembler(const Source& source, const Drawing& drawing)
        : source_(source), drawing_(drawing), frame_(drawing.Frame()), pictures_(drawing),
          images_(frame_.width(), frame_.height())
    {
    }

    agent::AcsDescription Run(double& error)
    {
        const Painter painter{[this](const Pose& pose) { return pictures_.Of(pose); },
                              [this](const Pose& a, const Pose& b) { return drawing_.Distance(a, b); }};
        std::vector<std::vector<PlannedFrame>> plans;
        for (const SourceAnimation& animation : source_.animations) {
            plans.push_back(PlanFrames(animation, painter));
            for (const PlannedFrame& frame : plans.back())
                if (frame.speaks)
                    for (int mouth = 0; mouth < agent::MouthCount; ++mouth)
                        pictures_.Of(Speaking(animation, frame.pose, mouth));
        }
        for (const QImage& picture : pictures_.All())
            palette_.Count(picture);
        palette_.Choose();

        agent::AcsDescription d;
        d.guid = source_.guid;
        d.width = static_cast<std::uint16_t>(frame_.width());
        d.height = static_cast<std::uint16_t>(frame_.height());
        d.transparentIndex = TransparentIndex;
        d.flags = source_.flags;
        d.names = source_.names;
        d.voice = source_.voice;
        d.balloon = source_.balloon;
        d.palette = palette_.Colours();
        d.states = source_.states;
        images_.Place(palette_.Indices(pictures_.Of(source_.RestPose())));
        for (std::size_t i = 0; i < plans.size(); ++i) {
            const SourceAnimation& from = source_.animations[i];
            agent::Animation& animation = d.animations.emplace_back();
            animation.name = from.name.toStdString();
            animation.transition = from.transition;
            animation.returnAnimation = from.returnAnimation.toStdString();
            for (const PlannedFrame& frame : plans[i])
                animation.frames.push_back(Written(frame, from));
        }
        d.images = images_.Take();
        for (const QByteArray& sound : source_.sounds)
            d.sounds.emplace_back(sound.begin(), sound.end());
        error = palette_.MeanError();
        return d;
    }

private:
    Pose Speaking(const SourceAnimation& animation, Pose pose, int mouth) const
    {
        const bool own = mouth == agent::MouthClosed && animation.closedMouth >= 0;
        pose[static_cast<std::size_t>(source_.mouthPart)].variant =
            own ? animation.closedMouth : source_.mouths[static_cast<std::size_t>(mouth)];
        return pose;
    }

    agent::Frame Written(const PlannedFrame& planned, const SourceAnimation& animation)
    {
        agent::Frame frame;
        if (planned.duration == 0)
            return frame;
        const Indices picture = palette_.Indices(planned.picture);
        frame.images = images_.Place(picture);
        frame.sound = planned.sound;
        frame.duration = static_cast<std::uint16_t>(planned.duration);
        frame.exitFrame = static_cast<std::int16_t>(planned.exit);
        frame.branches = planned.branches;
        for (int mouth = 0; planned.speaks && mouth < agent::MouthCount; ++mouth) {
            const Indices spoken = palette_.Indices(pictures_.Of(Speaking(animation, planned.pose, mouth)));
            agent::FrameImage image;
            Box box;
            if (!images_.Patch(spoken, picture, image, box) || image.image > 0xFFFF)
                throw SourceError("animations." + animation.name +
                                  ": a mouth does not cover the one it is shown over; draw it within the face");
            frame.overlays.push_back({static_cast<std::uint8_t>(mouth),
                                      false,
                                      static_cast<std::uint16_t>(image.image),
                                      image.x,
                                      image.y,
                                      static_cast<std::uint16_t>(box.right - box.left),
                                      static_cast<std::uint16_t>(box.bottom - box.top),
                                      {}});
        }
        return frame;
    }

    const Source& source_;
    const Drawing& drawing_;
    QRect frame_;
    Pictures pictures_;
    Palette palette_;
    ImageStore images_;
};

} // namespace

agent::AcsDescription Assemble(const Source& source, const Drawing& drawing, double& error)
{
    return Assembler(source, drawing).Run(error);
}

} // namespace voxmate::characters
