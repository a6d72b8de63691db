// The classic drawing calls on an image: gradients, lines and rounded rectangles, pixel for pixel. Coordinates are
// device-independent; an image's devicePixelRatio says how many of its pixels one of those has, and the same drawing
// then comes out finer, not blurred.
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

/// Fills triangles, each channel interpolated evenly between its three vertices at every pixel's upper left corner.
/// `image` is 32 bits a pixel. A mesh that names a vertex that is not there draws nothing and is answered false.
bool FillTriangles(QImage& image, std::span<const TriVertex> vertices, std::span<const GradientTriangle> mesh);

/// Fills rectangles, right and bottom edges not included, each row in one colour between those of the first vertex and
/// of the second. A mesh that names a vertex that is not there draws nothing and is answered false.
bool FillRectsDown(QImage& image, std::span<const TriVertex> vertices, std::span<const GradientRect> mesh);

/// A line one pixel wide; its end point is not drawn.
void DrawLine(QImage& image, QPoint from, QPoint to, QColor colour);

/// The outline, one pixel wide, of a rectangle whose corners are quarters of an ellipse of size `ellipse`.
void DrawRoundRect(QImage& image, QRect rect, QSize ellipse, QColor colour);

/// The rounded rectangle itself in device pixels: those whose centres lie in it.
QRegion RoundRectRegion(QRect rect, QSize ellipse, qreal ratio);

} // namespace voxmate::qt
