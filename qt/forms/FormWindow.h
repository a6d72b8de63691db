// The windows of forms: an ordinary one with menu bar and status bar, and the splash.
#pragma once

#include "controls/Form.h"

#include <QMainWindow>

#include <functional>

class QPushButton;

namespace voxmate::qt
{

/// An ordinary window. The user's request to close it goes to `OnClose`; the window never closes itself.
class FormWindow : public QMainWindow
{
public:
    explicit FormWindow(BorderStyle border);

    /// Draws the button that Enter presses as the default button. While another button has the focus that one is drawn
    /// so instead, because Enter then presses it.
    void SetDefaultButton(QPushButton* button);

    std::function<void()> OnClose;
    /// Enter was pressed and no control used it.
    std::function<void()> OnEnter;
    /// Escape was pressed and no control used it.
    std::function<void()> OnEscape;
    /// The shown window has another place, size, state (maximised) or screen than before.
    std::function<void()> OnGeometry;

protected:
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void TellGeometry();
};

/// A frameless card above all other windows. Its corners are translucent with a compositor, otherwise cut out.
class SplashWindow : public QWidget
{
public:
    SplashWindow();

    /// Space between the card's edge and the window's, in device-independent pixels.
    static constexpr int ShadowMargin = 14;

    /// Whether a splash is on the screen.
    static bool AnyShown();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Quieten();
    void UpdateShape();
    QRectF Card() const;
};

} // namespace voxmate::qt
