// Scales a character's pictures for its window: small ones at once, large ones on a thread of their own, each once
// while it is remembered.
#pragma once

#include "agent/Stage.h"
#include "qt/character/ShapedWindow.h"

#include <QImage>
#include <QSize>

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <stop_token>
#include <vector>

namespace voxmate::qt
{

class FrameScaler
{
public:
    using Scale = std::function<QImage(const Bitmap& bitmap, QSize size, const std::stop_token& stop)>;

    /// `ready` is called from the event loop when a large picture has been made.
    explicit FrameScaler(std::function<void()> ready);
    /// With a scaling of the caller's own, which may run on any thread.
    FrameScaler(std::function<void()> ready, Scale scale);

    /// A picture in `size` pixels, shaped (see Shaped). Null when it is being made, or will be asked for again because
    /// another is: one at a time.
    const ShapedImage* Get(const agent::Picture& picture, QSize size, bool cutOut);
    /// A large picture is being made.
    bool Busy() const { return work_ != nullptr; }

    /// Pixels of the largest picture that is scaled at once, which takes some 25 ms.
    static constexpr std::int64_t LargestAtOnce = std::int64_t{1} << 20;
    /// Bytes of scaled pictures that are remembered besides the last: some 40 of a figure of 160 by 170 pixels at twice
    /// its size. Those in their own size are made anew, which costs next to nothing.
    static constexpr std::int64_t MemoryBound = std::int64_t{16} << 20;
    std::int64_t MemoryUsed() const { return used_; }

private:
    struct Entry {
        std::vector<std::int32_t> key;
        QSize size;
        bool cutOut = false;
        bool scaled = false;
        ShapedImage image;
    };

    const ShapedImage* Remember(Entry entry);

    std::function<void()> ready_;
    Scale scale_;
    std::list<Entry> entries_; ///< the last used in front
    std::int64_t used_ = 0;
    std::unique_ptr<agent::StageWork> work_;
};

} // namespace voxmate::qt
