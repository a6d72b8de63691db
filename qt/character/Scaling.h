// Scales a frame whose transparency is a single colour.
#pragma once

#include "base/Geometry.h"

#include <QImage>

#include <stop_token>

namespace voxmate::qt
{

/// The bitmap in `size` pixels, premultiplied. In its own size every pixel stays as it is. Shrinking averages pixels.
/// Enlarging interpolates colours by cubics and turns the outline, in the bitmap steps of whole pixels, into a smooth
/// curve with soft edges. May run on any thread. After a stop request the result is incomplete and must not be used.
QImage Scaled(const Bitmap& bitmap, QSize size, const std::stop_token& stop = {});

} // namespace voxmate::qt
