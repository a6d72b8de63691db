// For builds without the toolkit's part for vectors.
#include "qt/widgets/IconDrawing.h"

namespace voxmate::qt
{

namespace
{

/// The picture with lines in this ink: of that size if there is one, otherwise of the next larger one.
QImage Picture(const QString& path, const char* ink, int pixels)
{
    constexpr int largest = 128;
    for (const int size : {16, 24, 32, 48, 64, largest}) {
        if (size < pixels && size != largest)
            continue;
        QImage image(QStringLiteral("%1-%2-%3.png").arg(path, QLatin1String(ink)).arg(size));
        if (!image.isNull() && size != pixels)
            image = image.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    }
    return {};
}

} // namespace

// How much of a pixel is drawn in the ink is what it gains from black to white.
QImage DrawIcon(const QString& path, int pixels, const QColor& ink)
{
    QImage image = Picture(path, "black", pixels);
    const QImage white = Picture(path, "white", pixels);
    if (image.isNull() || white.size() != image.size())
        return {};
    constexpr int full = 255;
    const auto mixed = [](int black, int light, int amount) { return black + (light - black) * amount / full; };
    for (int y = 0; y < image.height(); ++y) {
        auto* pixel = reinterpret_cast<QRgb*>(image.scanLine(y));
        const auto* light = reinterpret_cast<const QRgb*>(white.constScanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            pixel[x] = qRgba(mixed(qRed(pixel[x]), qRed(light[x]), ink.red()),
                             mixed(qGreen(pixel[x]), qGreen(light[x]), ink.green()),
                             mixed(qBlue(pixel[x]), qBlue(light[x]), ink.blue()), qAlpha(pixel[x]));
        }
    }
    return image;
}

} // namespace voxmate::qt
