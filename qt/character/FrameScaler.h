// Scales a character's pictures for its window: small ones at once, large ones on a thread of their own. Scaled
// pictures are cached.
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

    /// `ready` is called from the event loop when a large picture has been scaled.
    explicit FrameScaler(std::function<void()> ready);
    /// Uses the caller's scaling function, which may run on any thread.
    FrameScaler(std::function<void()> ready, Scale scale);

    /// A picture scaled to `size` pixels, with its shape (see Shaped). Null while it is being scaled, and also while
    /// another one is: only one is scaled at a time, and the caller asks again when `ready` is called.
    const ShapedImage* Get(const agent::Picture& picture, QSize size, bool cutOut);
    /// Whether a large picture is being scaled.
    bool Busy() const { return work_ != nullptr; }

    /// The largest picture, in pixels, that is scaled at once; that takes some 25 ms.
    static constexpr std::int64_t LargestAtOnce = std::int64_t{1} << 20;
    /// The cache's limit in bytes; the last picture is kept even if it is larger. The limit holds some 40 pictures of a
    /// figure of 160 by 170 pixels at twice its size. Pictures in their own size are not cached, because making them
    /// costs next to nothing.
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
    std::list<Entry> entries_; ///< most recently used first
    std::int64_t used_ = 0;
    std::unique_ptr<agent::StageWork> work_;
};

} // namespace voxmate::qt
