#include "Drawing.h"

#include <QFile>
#include <QPainter>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>

namespace voxmate::characters
{

namespace
{

// Each pixel is the mean of this many samples in each direction.
constexpr int Fineness = 4;

void CopyElement(QXmlStreamReader& in, QXmlStreamWriter& out)
{
    int depth = 0;
    do {
        out.writeCurrentToken(in);
        if (in.isStartElement())
            ++depth;
        else if (in.isEndElement())
            --depth;
        if (depth > 0)
            in.readNext();
    } while (depth > 0 && !in.hasError());
}

} // namespace

Drawing::Drawing(const Source& source) : source_(source)
{
    QFile file(source.drawingFile);
    if (!file.open(QIODevice::ReadOnly))
        throw SourceError(source.drawingFile + ": cannot be read: " + file.errorString());
    ReadGroups(file.readAll());
    for (const Part& part : source.parts) {
        std::vector<QSvgRenderer*> variants;
        for (const Variant& variant : part.variants)
            variants.push_back(variant.drawing.isEmpty() ? nullptr : &GroupNamed(variant.drawing));
        QRectF extent;
        for (QSvgRenderer* variant : variants)
            if (variant != nullptr)
                extent |= Extent(*variant);
        extents_.push_back(extent);
        variants_.push_back(std::move(variants));
    }
}

void Drawing::ReadFrame(const QString& viewBox)
{
    const QStringList numbers = viewBox.simplified().replace(',', ' ').split(' ', Qt::SkipEmptyParts);
    std::vector<int> values;
    for (const QString& number : numbers) {
        bool whole = false;
        values.push_back(number.toInt(&whole));
        if (!whole)
            values.clear();
    }
    if (values.size() != 4 || values[2] < 16 || values[3] < 16 || values[2] > 1024 || values[3] > 1024)
        throw SourceError(
            source_.drawingFile + ": viewBox=\"" + viewBox +
            "\": a frame is given by four whole numbers, left, top, width and height, the last two from 16 "
            "to 1024");
    frame_ = QRect(values[0], values[1], values[2], values[3]);
    mirror_ = QTransform(-1, 0, 0, 1, 2 * frame_.x() + frame_.width(), 0);
}

// Splits the file into one document for each top-level group, each with all shared definitions (gradients).
void Drawing::ReadGroups(const QByteArray& svg)
{
    QXmlStreamReader in(svg);
    in.setNamespaceProcessing(false);
    QByteArray start;
    QByteArray definitions;
    std::map<QString, QByteArray> bodies;
    if (in.readNextStartElement() && in.name() == QLatin1String("svg")) {
        QXmlStreamWriter root(&start);
        root.writeStartElement("svg");
        root.writeAttributes(in.attributes());
        root.writeCharacters(""); // closes the start tag
        ReadFrame(in.attributes().value("viewBox").toString());
    }
    while (!in.hasError() && in.readNextStartElement()) {
        const QString name = in.name().toString();
        const QString id = in.attributes().value("id").toString();
        QByteArray body;
        QXmlStreamWriter out(&body);
        CopyElement(in, out);
        if (name == "defs" || name == "linearGradient" || name == "radialGradient" || name == "style")
            definitions += body;
        else if (name == "g" && !id.isEmpty() && !bodies.emplace(id, body).second)
            throw SourceError(source_.drawingFile + ": there are two groups \"" + id + "\"");
    }
    if (in.hasError() || start.isEmpty())
        throw SourceError(QString("%1:%2:%3: %4")
                              .arg(source_.drawingFile)
                              .arg(in.lineNumber())
                              .arg(in.columnNumber())
                              .arg(in.hasError() ? in.errorString() : "this is not an SVG drawing"));
    for (const auto& [id, body] : bodies)
        groups_[id] = start + definitions + body + "</svg>";
}

QSvgRenderer& Drawing::GroupNamed(const QString& id)
{
    std::unique_ptr<QSvgRenderer>& renderer = renderers_[id];
    if (!renderer) {
        const auto group = groups_.find(id);
        if (group == groups_.end()) {
            QStringList known;
            for (const auto& [name, document] : groups_)
                known << name;
            throw SourceError(source_.drawingFile + ": there is no top-level group \"" + id + "\", only " +
                              known.join(", "));
        }
        renderer = std::make_unique<QSvgRenderer>();
        if (!renderer->load(group->second))
            throw SourceError(source_.drawingFile + ": the group \"" + id + "\" cannot be drawn");
    }
    return *renderer;
}

QRectF Drawing::Extent(QSvgRenderer& renderer) const
{
    QImage alone(frame_.size(), QImage::Format_ARGB32_Premultiplied);
    alone.fill(0);
    QPainter painter(&alone);
    renderer.render(&painter, QRectF(alone.rect()));
    painter.end();
    QRect box;
    for (int y = 0; y < alone.height(); ++y)
        for (int x = 0; x < alone.width(); ++x)
            if (qAlpha(alone.pixel(x, y)) != 0)
                box |= QRect(x, y, 1, 1);
    return QRectF(box).translated(frame_.topLeft());
}

double Drawing::Distance(const Pose& a, const Pose& b) const
{
    double longest = 0;
    for (std::size_t i = 0; i < source_.parts.size(); ++i) {
        const bool shownA = Shown(a, i);
        const bool shownB = Shown(b, i);
        if (!shownA && !shownB)
            continue;
        const QRectF& box = extents_[i];
        if (shownA != shownB || a[i].variant != b[i].variant)
            longest = std::max(longest, std::hypot(box.width(), box.height()) / 4);
        if (!shownA || !shownB)
            continue;
        QTransform toA = World(a, i);
        QTransform toB = World(b, i);
        if (source_.parts[i].mirrored) {
            toA = mirror_ * toA;
            toB = mirror_ * toB;
        }
        for (const QPointF& corner : {box.topLeft(), box.topRight(), box.bottomLeft(), box.bottomRight()}) {
            const QPointF way = toA.map(corner) - toB.map(corner);
            longest = std::max(longest, std::hypot(way.x(), way.y()));
        }
    }
    return longest;
}

QTransform Drawing::World(const Pose& pose, std::size_t index) const
{
    const Part& part = source_.parts[index];
    const auto& values = pose[index].values;
    QTransform local;
    local.translate(part.pivot.x() + values[MoveX], part.pivot.y() + values[MoveY]);
    local.rotate(values[Rotate]);
    local.scale(values[ScaleX], values[ScaleY]);
    local.translate(-part.pivot.x(), -part.pivot.y());
    if (part.mirrored)
        local = mirror_ * local * mirror_;
    return part.parent < 0 ? local : local * World(pose, static_cast<std::size_t>(part.parent));
}

// A part that only groups others hides all of them when it is hidden.
bool Drawing::Shown(const Pose& pose, std::size_t index) const
{
    if (source_.parts[index].OnlyHolds() || pose[index].variant < 0)
        return false;
    for (int at = source_.parts[index].parent; at >= 0; at = source_.parts[static_cast<std::size_t>(at)].parent)
        if (const auto i = static_cast<std::size_t>(at); source_.parts[i].OnlyHolds() && pose[i].variant < 0)
            return false;
    return true;
}

QImage Drawing::Render(const Pose& pose) const
{
    QImage fine(frame_.width() * Fineness, frame_.height() * Fineness, QImage::Format_ARGB32_Premultiplied);
    fine.fill(0);
    QPainter painter(&fine);
    painter.setRenderHint(QPainter::Antialiasing);
    const QTransform zoom =
        QTransform::fromTranslate(-frame_.x(), -frame_.y()) * QTransform::fromScale(Fineness, Fineness);
    for (std::size_t i = 0; i < source_.parts.size(); ++i) {
        if (!Shown(pose, i))
            continue;
        QTransform world = World(pose, i);
        if (source_.parts[i].mirrored)
            world = mirror_ * world;
        painter.setWorldTransform(world * zoom);
        variants_[i][static_cast<std::size_t>(pose[i].variant)]->render(&painter, QRectF(frame_));
    }
    painter.end();

    QImage out(frame_.size(), QImage::Format_ARGB32);
    constexpr unsigned samples = Fineness * Fineness;
    for (int y = 0; y < out.height(); ++y) {
        auto* target = reinterpret_cast<QRgb*>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            unsigned alpha = 0;
            unsigned red = 0;
            unsigned green = 0;
            unsigned blue = 0;
            for (int dy = 0; dy < Fineness; ++dy) {
                const auto* row =
                    reinterpret_cast<const QRgb*>(fine.constScanLine(y * Fineness + dy)) + qsizetype{x} * Fineness;
                for (int dx = 0; dx < Fineness; ++dx) {
                    alpha += static_cast<unsigned>(qAlpha(row[dx]));
                    red += static_cast<unsigned>(qRed(row[dx]));
                    green += static_cast<unsigned>(qGreen(row[dx]));
                    blue += static_cast<unsigned>(qBlue(row[dx]));
                }
            }
            // A pixel at least half covered belongs to the figure. Its colours are premultiplied; dividing by the
            // coverage gives the figure's own.
            const auto own = [alpha](unsigned sum) {
                return static_cast<int>(std::min(255u, (sum * 255 + alpha / 2) / alpha));
            };
            target[x] = alpha * 2 < 255 * samples ? 0 : qRgb(own(red), own(green), own(blue));
        }
    }
    return out;
}

} // namespace voxmate::characters
