#include "qt/widgets/IconDrawing.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace voxmate::qt
{

QImage DrawIcon(const QString& path, int pixels, const QColor& ink)
{
    QFile file(path + QStringLiteral(".svg"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QSvgRenderer renderer(file.readAll().replace("currentColor", ink.name().toLatin1()));
    if (!renderer.isValid())
        return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

} // namespace voxmate::qt
