// Draws frames into the character's window. It draws only when the picture changes, and composes each picture once
// while it is remembered.
#pragma once

#include "agent/Stage.h"

#include <compare>
#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace voxmate::agent
{

class Painter
{
public:
    /// Both references outlive the painter.
    Painter(const AcsFile& file, CharacterWindow& window);
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    /// Shows a frame with mouth `mouth`; without a mouth when that is negative or the frame does not have it. A mouth
    /// whose image cannot be decoded is left out; a frame with such an image leaves the picture as it was. While the
    /// window is busy nothing is composed: the last frame asked for is kept and shown when the window is ready, so
    /// `frame` must live until then.
    void Show(const Frame& frame, int mouth, Size size);
    /// Whether nothing has been shown yet.
    bool Empty() const { return !shown_.bitmap && !waiting_; }

    /// Forgets all composed pictures but the one on show, for when an animation is over. Composing one that is needed
    /// again takes far less time than a frame lasts (bench/character_file).
    void Forget();

    /// The images that cannot be decoded, by number. Nobody need try to decode them.
    void LeaveOut(std::vector<bool> damaged) { damaged_ = std::move(damaged); }
    /// Whether a frame, without a mouth, has images and none of them is left out.
    bool IsSound(const Frame& frame) const { return !frame.images.empty() && !ShowsDamaged(KeyOf(frame, -1)); }

    /// The rectangle around all that is drawn of a frame, in the character's own pixels; empty when nothing is drawn.
    Rect Outline(const Frame& frame);

    /// Bytes of composed pictures that are remembered, besides the one on show: some 60 frames of 180 by 180 pixels.
    static constexpr std::size_t MemoryBound = 8u << 20;
    std::size_t MemoryUsed() const { return used_; }

private:
    /// What a picture is made of. Frames made of the same images are the same picture.
    using Key = std::vector<std::int32_t>;
    struct Wanted {
        const Frame* frame;
        int mouth;
        Size size;
    };

    static Key KeyOf(const Frame& frame, int mouth);
    bool ShowsDamaged(const Key& key) const;
    bool Draw(const Frame& frame, int mouth, Size size);
    std::shared_ptr<const Bitmap> Compose(const Frame& frame, int mouth, const Key& key);
    Rect Measure(const Frame& frame, const Key& key);

    const AcsFile& file_;
    CharacterWindow& window_;
    Picture shown_;
    Size shownSize_;
    std::optional<Wanted> waiting_; ///< shown when the window is ready
    std::map<Key, Rect> outlines_;
    std::vector<bool> damaged_;   ///< images that cannot be decoded, by number; empty while not known yet
    std::list<Picture> pictures_; ///< most recently used first
    std::map<Key, std::list<Picture>::iterator> index_;
    std::size_t used_ = 0; ///< bytes
};

} // namespace voxmate::agent
