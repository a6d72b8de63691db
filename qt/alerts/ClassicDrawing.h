// The classic drawing calls (gradients, lines, rounded rectangles) done on an image, pixel for pixel. Coordinates are
// device-independent. An image's devicePixelRatio says how many image pixels one of them takes; at a higher ratio the
// same drawing comes out finer, not blurred.
#pragma once

#include "platform/WindowCalls.h"

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>
#include <QRegion>
#include <QSize>

#include <span>

namespace voxmate::qt
{

/// Fills triangles; each channel is interpolated linearly between the three vertices, at every pixel's upper left
/// corner. `image` has 32 bits a pixel. If the mesh names a vertex that does not exist, nothing is drawn and the result
/// is false.
bool FillTriangles(QImage& image, std::span<const TriVertex> vertices, std::span<const GradientTriangle> mesh);

/// Fills rectangles, without their right and bottom edges. Each row has one colour, between that of the upper vertex
/// and that of the lower one. If the mesh names a vertex that does not exist, nothing is drawn and the result is false.
bool FillRectsDown(QImage& image, std::span<const TriVertex> vertices, std::span<const GradientRect> mesh);

/// Draws a line one pixel wide; its end point is not drawn.
void DrawLine(QImage& image, QPoint from, QPoint to, QColor colour);

/// Draws the outline, one pixel wide, of a rectangle whose corners are quarters of an ellipse of size `ellipse`.
void DrawRoundRect(QImage& image, QRect rect, QSize ellipse, QColor colour);

/// The filled rounded rectangle: the device pixels whose centres lie in it.
QRegion RoundRectRegion(QRect rect, QSize ellipse, qreal ratio);

} // namespace voxmate::qt
