// A frame of one-colour transparency in another size.
#pragma once

#include "base/Geometry.h"

#include <QImage>

#include <stop_token>

namespace voxmate::qt
{

/// The bitmap, premultiplied, in `size` pixels. In its own size it is as it is, to the pixel. Smaller, pixels are
/// averaged. Larger, colours are interpolated by cubics and the outline, steps of whole pixels in the bitmap, becomes a
/// smooth curve with soft edges.
/// May run on any thread; what it is asked to stop is of no use.
QImage Scaled(const Bitmap& bitmap, QSize size, const std::stop_token& stop = {});

} // namespace voxmate::qt
