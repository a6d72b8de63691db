// The drawing of a character, an SVG file whose top-level groups are the parts' variants, and its rendering in a pose.
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
    /// Reads the source's SVG file. Raises SourceError if it is invalid or lacks a group that a part names.
    explicit Drawing(const Source& source);

    /// The viewBox: the area of the drawing that a frame shows. One unit is one pixel.
    QRect Frame() const { return frame_; }

    /// Renders a pose in the size of a frame. Each pixel is either opaque or empty (0). Edges are smooth only within
    /// the figure: a pixel at its outline has the figure's own colour, not mixed with any background.
    QImage Render(const Pose& pose) const;

    /// How different two poses look, in pixels: the longest distance that a corner of any shown part moves between
    /// them. A part that changes its drawing counts for a quarter of its size.
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
    QTransform mirror_;                    ///< reflection about the frame's vertical middle line
    std::map<QString, QByteArray> groups_; ///< each a complete SVG document
    std::map<QString, std::unique_ptr<QSvgRenderer>> renderers_;
    std::vector<std::vector<QSvgRenderer*>> variants_; ///< by part and variant
    std::vector<QRectF> extents_;                      ///< by part: the bounding box of all its variants
};

} // namespace voxmate::characters
