// The drawing of a character: an SVG file whose top-level groups are the parts' variants, and their rendering in a
// pose.
#pragma once

#include "Source.h"

#include <QImage>
#include <QRect>
#include <QSvgRenderer>
#include <QTransform>

#include <map>
#include <memory>

namespace voxmate::characters
{

class Drawing
{
public:
    /// Reads the source's SVG file; raises SourceError when it is not sound or a group that a part names is missing.
    explicit Drawing(const Source& source);

    /// The part of the drawing that a frame shows, its viewBox: one unit is one pixel.
    QRect Frame() const { return frame_; }

    /// A pose in the size of a frame: each pixel either opaque or nothing (0). Soft edges lie within the figure only: a
    /// pixel at its rim shows the figure's own colour, unmixed with any background.
    QImage Render(const Pose& pose) const;

    /// How far apart two poses look, in pixels: the longest way that a corner of any shown part goes from one to the
    /// other. A part that changes its drawing counts for a quarter of its size.
    double Distance(const Pose& a, const Pose& b) const;

private:
    void ReadFrame(const QString& viewBox);
    void ReadGroups(const QByteArray& svg);
    QRectF Extent(QSvgRenderer& renderer) const;
    QSvgRenderer& GroupNamed(const QString& id);
    QTransform World(const Pose& pose, std::size_t part) const;
    bool Shown(const Pose& pose, std::size_t part) const;

    const Source& source_;
    QRect frame_;
    QTransform mirror_;                    ///< a reflection at the frame's middle
    std::map<QString, QByteArray> groups_; ///< each as a whole SVG document
    std::map<QString, std::unique_ptr<QSvgRenderer>> renderers_;
    std::vector<std::vector<QSvgRenderer*>> variants_; ///< by part and variant
    std::vector<QRectF> extents_;                      ///< by part: where its variants are drawn, together
};

} // namespace voxmate::characters
