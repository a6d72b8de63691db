// Widgets that dialogs need beyond Qt's own. They take all colours from the palette, so they follow light and dark
// themes.
#pragma once

#include <QLabel>
#include <QScrollArea>

namespace voxmate::qt
{

/// Plays an animated picture in a loop, in a square with rounded corners, while it is visible.
class MovieLabel : public QLabel
{
public:
    /// `size` is the square's side in device-independent pixels, for the usual font; it grows with the desktop's. The
    /// picture is scaled to it.
    /// In a dark theme the picture is that of `darkPath`.
    MovieLabel(const QString& path, const QString& darkPath, int size, QWidget* parent);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const QString path_;
    const QString darkPath_;
    const int size_;

    void Choose();
};

/// A page for a text, with rounded corners and a field's background. A text that does not fit scrolls, also by the page
/// keys.
class PaneArea : public QScrollArea
{
public:
    explicit PaneArea(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// One line in a font of any size, drawn no larger than the line's height allows.
class SampleLabel : public QLabel
{
public:
    explicit SampleLabel(QWidget* parent);
    /// 0 `points` means the desktop's size, an empty family its font.
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
