// How much larger the desktop's letters are than usual. Whatever has a size of its own grows with them.
#pragma once

#include <QtGlobal>

namespace voxmate::qt
{

/// The desktop's font in relation to one of 10 points, for which all sizes were chosen; at least 1.
qreal FontScale();

/// A size in device-independent pixels, as large as the desktop's font wants it.
int Scaled(int size);

} // namespace voxmate::qt
