#include "qt/widgets/FontScale.h"

#include <QApplication>
#include <QFont>
#include <QFontInfo>

#include <algorithm>

namespace voxmate::qt
{

qreal FontScale()
{
    constexpr qreal usual = 10; // points
    return std::max(1.0, QFontInfo(QApplication::font()).pointSizeF() / usual);
}

int Scaled(int size)
{
    return qRound(size * FontScale());
}

} // namespace voxmate::qt
