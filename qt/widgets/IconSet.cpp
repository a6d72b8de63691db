#include "qt/widgets/IconSet.h"

#include <QFile>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace voxmate::qt
{

QPixmap IconSet::Pixmap(const QString& name, int size, qreal ratio, const QColor& ink) const
{
    const int pixels = qRound(size * ratio);
    const QString key = QStringLiteral("voxmate/%1/%2/%3/%4").arg(name).arg(pixels).arg(ratio).arg(ink.rgba());
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        QFile file(folder_ + u'/' + name + QStringLiteral(".svg"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        QSvgRenderer renderer(file.readAll().replace("currentColor", ink.name().toLatin1()));
        if (!renderer.isValid())
            return {};
        pixmap = QPixmap(pixels, pixels);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        renderer.render(&painter);
        painter.end();
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
