#include "qt/system/QtApplication.h"

#include "platform/WindowSystem.h"
#include "qt/dialogs/MessageBox.h"
#include "qt/widgets/ReadableStyle.h"

#include <QKeyEvent>
#include <QPixmapCache>
#include <QThread>
#include <QWidget>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <utility>

namespace voxmate::qt
{

namespace
{

constexpr int PixmapCacheKilobytes = 1024;
/// From a window's going to AtRest. What goes meanwhile does not put it off, because somebody who works quickly has
/// menus, lists and dialogs coming and going all the time.
constexpr std::chrono::seconds Rest{3};

constexpr const char* PlatformVariable = "QT_QPA_PLATFORM";
/// X11 first, Wayland if the X server does not answer.
constexpr const char* PreferX11 = "xcb;wayland";

/// In place of the toolkit's list of plug-ins, when it finds no screen: it would then end the program by a crash.
void TellWhyNotStarted(QtMsgType type, const QMessageLogContext& /*context*/, const QString& text)
{
    std::cerr << text.toStdString() << '\n';
    if (type != QtFatalMsg)
        return;
    std::cerr << "voxmate: no screen could be opened. In a Wayland session without an X server, Qt's part for Wayland "
                 "must be installed (Debian: qt6-wayland).\n";
    std::_Exit(EXIT_FAILURE);
}

} // namespace

PlatformChoice::PlatformChoice()
    : made_(qEnvironmentVariableIsSet("WAYLAND_DISPLAY") && qEnvironmentVariableIsSet("DISPLAY") &&
            !qEnvironmentVariableIsSet(PlatformVariable))
{
    if (made_)
        qputenv(PlatformVariable, PreferX11);
    qInstallMessageHandler(TellWhyNotStarted);
}

PlatformChoice::~PlatformChoice()
{
    qInstallMessageHandler(nullptr);
    if (made_)
        qunsetenv(PlatformVariable);
}

QtApplication::QtApplication(int& argc, char** argv)
    : QApplication(argc, argv), EndProgram([] { std::_Exit(EXIT_FAILURE); })
{
    setApplicationName(QStringLiteral("Voxmate"));
    // The name of the desktop entry in packaging/desktop, by which panels tell whose windows these are, and that on the
    // session's bus.
    setDesktopFileName(QStringLiteral("org.voxmate.Voxmate"));
    // The program goes on while it is hidden in the tray; it ends only by its own exit.
    setQuitOnLastWindowClosed(false);
    UseReadableStyle();
    // Each open dialog leaves the pictures of its icons in this cache, under keys that nobody asks for again. The
    // toolkit would let them grow to 10 MB, not counting the keys.
    QPixmapCache::setCacheLimit(PixmapCacheKilobytes);
    rest_.setSingleShot(true);
    rest_.setInterval(Rest);
    rest_.callOnTimeout(this, [this] {
        QPixmapCache::clear();
        cells_.DeleteDead();
        if (AtRest)
            AtRest();
    });
    connect(this, &QGuiApplication::commitDataRequest, this, [this] {
        if (SaveRequested)
            SaveRequested();
    });
}

void QtApplication::Post(std::function<void()> act)
{
    QMetaObject::invokeMethod(this, std::move(act), Qt::QueuedConnection);
}

bool QtApplication::event(QEvent* event)
{
    // The toolkit would close all windows, and one of them may hide in the tray instead of closing.
    if (event->type() == QEvent::Quit && EndRequested) {
        EndRequested();
        return true;
    }
    return QApplication::event(event);
}

bool QtApplication::notify(QObject* receiver, QEvent* event)
{
    if (event->type() == QEvent::Hide && receiver->isWidgetType() && static_cast<QWidget*>(receiver)->isWindow() &&
        !rest_.isActive())
        rest_.start();
    caret_.Saw(event->type());
    try {
        if (IsForEscape(receiver, event))
            return true;
        return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
        Report(AsRuntimeError(error));
    }
    return true;
}

// The key arrives at the window first, which would pass it on to the control with the keyboard.
bool QtApplication::IsForEscape(QObject* receiver, QEvent* event)
{
    if (event->type() != QEvent::KeyPress || !receiver->isWindowType() || !EscapePressed || activePopupWidget())
        return false;
    const auto* key = static_cast<const QKeyEvent*>(event);
    return key->key() == Qt::Key_Escape && key->modifiers() == Qt::NoModifier && !key->isAutoRepeat() &&
           EscapePressed();
}

void QtApplication::Report(const RuntimeError& error)
{
    if (QThread::currentThread() != thread()) {
        QMetaObject::invokeMethod(
            this, [this, error] { Report(error); }, Qt::QueuedConnection);
        return;
    }
    // While the box is up timers go on and may fail too. Only the first error is shown.
    if (std::exchange(reporting_, true))
        return;
    ShowMessageBox(activeWindow(), Icons,
                   "Run-time error '" + std::to_string(error.Number) + "':\n\n" + error.Description, vbCritical,
                   "Voxmate");
    EndProgram();
}

} // namespace voxmate::qt
