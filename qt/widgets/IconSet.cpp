#include "qt/widgets/IconSet.h"

#include "qt/widgets/IconDrawing.h"

#include <QPixmapCache>

namespace voxmate::qt
{

QPixmap IconSet::Pixmap(const QString& name, int size, qreal ratio, const QColor& ink) const
{
    const int pixels = qRound(size * ratio);
    const QString key = QStringLiteral("voxmate/%1/%2/%3/%4").arg(name).arg(pixels).arg(ratio).arg(ink.rgba());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        const QImage image = DrawIcon(folder_ + u'/' + name, pixels, ink);
        if (image.isNull())
            return {};
        pixmap = QPixmap::fromImage(image);
        // Before it is kept: setting it later would make another picture of it each time.
        pixmap.setDevicePixelRatio(ratio);
        QPixmapCache::insert(key, pixmap);
    }
    return pixmap;
}

QIcon IconSet::Icon(const QString& name) const
{
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64}) {
        const QPixmap pixmap = Pixmap(name, size, 1.0, Qt::black);
        if (!pixmap.isNull())
            icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace voxmate::qt
