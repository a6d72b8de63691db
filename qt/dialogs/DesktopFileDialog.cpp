#include "qt/dialogs/DesktopFileDialog.h"

#include "qt/alerts/PlacedWindow.h"
#include "qt/character/ShapedWindow.h"
#include "qt/character/StageWindow.h"

#include <QApplication>
#include <QEvent>
#include <QEventLoop>
#include <QPointer>
#include <QWindow>

#include <algorithm>
#include <vector>

namespace voxmate::qt
{

namespace
{

/// Keeps mouse and keyboard from the windows that are open now, except the character, alerts and the tray's icon. A
/// modal dialog that nobody sees would do so, too, and would also take Escape away, which silences the program.
class Blocked : public QObject
{
public:
    Blocked()
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            const bool lives = dynamic_cast<ShapedWindow*>(window) || dynamic_cast<StageWindow*>(window) ||
                               dynamic_cast<PlacedWindow*>(window) || window->inherits("QSystemTrayIconSys");
            if (window->windowHandle() && !lives)
                windows_.emplace_back(window->windowHandle());
        }
        QCoreApplication::instance()->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ShortcutOverride:
        case QEvent::TouchBegin:
        case QEvent::DragEnter:
        case QEvent::Close:
            if (std::find(windows_.begin(), windows_.end(), watched) == windows_.end())
                return false;
            event->ignore();
            return true;
        default:
            return false;
        }
    }

private:
    std::vector<QPointer<QObject>> windows_;
};

} // namespace

std::optional<QString> AskDesktop(QWidget* over, const FileQuestion& question)
{
    const std::unique_ptr<DesktopFileDialog> desktops = DesktopFileDialog::Make();
    if (!desktops)
        return std::nullopt;
    std::optional<QString> answer;
    QEventLoop loop;
    QObject::connect(desktops.get(), &DesktopFileDialog::Answered, &loop, [&answer, &loop](const QString& path) {
        answer = path;
        loop.quit();
    });
    QObject::connect(desktops.get(), &DesktopFileDialog::Failed, &loop, &QEventLoop::quit);
    const QPointer<QWidget> owner = over;
    const bool seen = over && over->isVisible() && !over->isMinimized();
    if (seen)
        QObject::connect(over, &QObject::destroyed, &loop, &QEventLoop::quit);
    const Blocked blocked;
    desktops->Ask(question, seen ? over->windowHandle() : nullptr);
    loop.exec();
    if (over && !owner) // the window has gone, and the dialog goes with it
        return QString();
    return answer;
}

} // namespace voxmate::qt
