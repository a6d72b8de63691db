// The widgets that dialogs need beyond Qt's own. They draw with the palette alone, so that they follow light and dark
// themes.
#pragma once

#include <QLabel>
#include <QScrollArea>

namespace voxmate::qt
{

/// Plays a moving picture, over and over, in a square with rounded corners while it is seen.
class MovieLabel : public QLabel
{
public:
    /// `size` is the square's side in device-independent pixels; the picture is scaled to it.
    MovieLabel(const QString& path, int size, QWidget* parent);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

/// A page for a text: rounded, on the ground of a field. What does not fit scrolls, by the page keys, too.
class PaneArea : public QScrollArea
{
public:
    explicit PaneArea(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// One line in a font of any size: drawn no larger than the line allows.
class SampleLabel : public QLabel
{
public:
    explicit SampleLabel(QWidget* parent);
    /// `points` 0 is the desktop's own size, an empty family its own font.
    void ShowIn(const QString& family, double points);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString family_;
    double points_ = 0;
};

} // namespace voxmate::qt
