// Widgets that a form's controls need beyond Qt's own. They take all colours from the palette, so they follow light and
// dark themes.
#pragma once

#include "controls/Control.h"
#include "qt/widgets/IconSet.h"

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>

#include <functional>

namespace voxmate::qt
{

/// A colour between two others; `share` is 0 for the first, 1 for the second.
QColor Mix(const QColor& first, const QColor& second, qreal share);

/// A button with text or with a picture. Space and Enter press it.
class Button : public QPushButton
{
public:
    /// `icons` must outlive a button with a picture. One that acts or halts is larger, is filled with
    /// a colour and has the icon whose name ends in "-filled".
    Button(const IconSet& icons, const QString& picture, CommandButton::Role role, QWidget* parent);

    /// Called when a mouse button is released over the button (1 left, 2 right), after any click. The keyboard's menu
    /// key counts as the right mouse button.
    std::function<void(int button)> OnMouseUp;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void TellMouseUp(int button);

    QColor Filling() const;

    const IconSet& icons_;
    const QString picture_;
    const CommandButton::Role role_;
};

/// A horizontal scroll bar for setting a value: a slim track between two arrows, filled up to the handle. It can have
/// the focus and shows so; the wheel moves it only then, so that scrolling past it changes nothing.
class ValueBar : public QScrollBar
{
public:
    explicit ValueBar(QWidget* parent);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

/// One sunken panel of a status bar. A text that does not fit ends in an ellipsis, and the tool tip shows all of it.
class StatusPanel : public QLabel
{
public:
    /// `chars` is its width in average characters; 0 takes what is left.
    StatusPanel(int chars, QWidget* parent);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    const int chars_;
};

/// A frame with its caption inside, above the content.
class GroupFrame : public QGroupBox
{
public:
    using QGroupBox::QGroupBox;

    /// Space between the frame's edge and its content, in device-independent pixels.
    static constexpr int Margin = 10;

    /// Sets the caption; the frame stays wide enough for it.
    void ShowTitle(const QString& title);

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// An icon of the program.
class Picture : public QWidget
{
public:
    /// `size` is the square's side in device-independent pixels, for the usual font; it grows with the desktop's.
    Picture(const IconSet& icons, const QString& name, int size, QWidget* parent);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const IconSet& icons_;
    const QString name_;
    const int size_;
};

} // namespace voxmate::qt
