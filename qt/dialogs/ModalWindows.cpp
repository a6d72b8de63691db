#include "qt/dialogs/ModalWindows.h"

#include "qt/character/ShapedWindow.h"
#include "qt/dialogs/Placement.h"

#include <QDialog>
#include <QEvent>
#include <QLayout>
#include <QResizeEvent>

#include <algorithm>
#include <vector>

namespace voxmate::qt
{

namespace
{

/// Belongs to its dialog and is deleted with it.
class Companion : public QObject
{
public:
    explicit Companion(QDialog& dialog) : QObject(&dialog), dialog_(dialog) { dialog.installEventFilter(this); }
    ~Companion() override { Leave(); }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == &dialog_ && event->type() == QEvent::Show)
            Enter();
        else if (watched == &dialog_ && event->type() == QEvent::Hide)
            Leave();
        else if (watched == &dialog_ && event->type() == QEvent::Resize && dialog_.isVisible() &&
                 NeedsMore(static_cast<const QResizeEvent*>(event)->oldSize()))
            Centre(dialog_, dialog_.parentWidget());
        return false;
    }

private:
    /// Whether the dialog has grown because its content did, and not by the user's hand: then it is just as large as
    /// its content needs.
    bool NeedsMore(QSize before) const
    {
        const QSize least = dialog_.layout() ? dialog_.layout()->totalMinimumSize() : QSize();
        return (dialog_.width() > before.width() && dialog_.width() == least.width()) ||
               (dialog_.height() > before.height() && dialog_.height() == least.height());
    }
    void Enter()
    {
        if (std::find(shown.begin(), shown.end(), this) == shown.end())
            shown.push_back(this);
        Centre(dialog_, dialog_.parentWidget());
        ShapedWindow::LiveBeside(dialog_.windowHandle());
    }
    void Leave()
    {
        if (std::erase(shown, this) > 0)
            ShapedWindow::LiveBeside(shown.empty() ? nullptr : shown.back()->dialog_.windowHandle());
    }

    /// The companions of the visible dialogs, the latest last.
    static inline std::vector<Companion*> shown;

    QDialog& dialog_;
};

} // namespace

void LetCharacterLiveBeside(QDialog& dialog)
{
    new Companion(dialog);
}

} // namespace voxmate::qt
