// The windows that forms become: an ordinary one with menu bar and status bar, and the splash.
#pragma once

#include "controls/Form.h"

#include <QMainWindow>

#include <functional>

class QPushButton;

namespace voxmate::qt
{

/// An ordinary window. The user's wish to close it goes to `OnClose`; it never closes by itself.
class FormWindow : public QMainWindow
{
public:
    explicit FormWindow(BorderStyle border);

    /// The button that Enter presses where nothing else takes it looks so. While another button has the keyboard that
    /// one does, because Enter presses it.
    void SetDefaultButton(QPushButton* button);

    std::function<void()> OnClose;
    /// Enter was pressed where nothing else takes it.
    std::function<void()> OnEnter;
    /// Escape, likewise.
    std::function<void()> OnEscape;

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

/// A card without a frame, above all other windows. Its corners are translucent with a compositor, else cut out.
class SplashWindow : public QWidget
{
public:
    SplashWindow();

    /// Room between the card's edge and the window's.
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
