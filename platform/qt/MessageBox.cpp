#include "platform/qt/MessageBox.h"

#include "platform/WindowSystem.h"
#include "platform/qt/FormWindow.h"
#include "platform/qt/IconSet.h"
#include "platform/qt/QtText.h"
#include "platform/qt/ShapedWindow.h"

#include <QAbstractButton>
#include <QMessageBox>
#include <QPointer>

#include <algorithm>
#include <vector>

namespace voxmate::qt
{

namespace
{

constexpr int IconSize = 40;

/// A message box in the middle of its owner; the character lives on beside it.
class ProgramBox : public QMessageBox
{
public:
    explicit ProgramBox(QWidget* over) : QMessageBox(over) {}
    ~ProgramBox() override { Leave(); }

    void setVisible(bool visible) override
    {
        if (!visible)
            Leave();
        QMessageBox::setVisible(visible);
    }

protected:
    void showEvent(QShowEvent* event) override
    {
        // A message box knows its size only when it is shown.
        QMessageBox::showEvent(event);
        Centre(*this, parentWidget());
        if (std::find(shown.begin(), shown.end(), this) == shown.end())
            shown.push_back(this);
        ShapedWindow::LiveBeside(windowHandle());
    }

private:
    void Leave()
    {
        if (std::erase(shown, this) > 0)
            ShapedWindow::LiveBeside(shown.empty() ? nullptr : shown.back()->windowHandle());
    }

    /// Those on the screen, the latest last.
    static inline std::vector<ProgramBox*> shown;
};

} // namespace

int ShowMessageBox(QWidget* over, const IconSet* icons, const std::string& text, int style, const std::string& title)
{
    // Button and icon are fields of their own within the style.
    const bool yesNo = (style & 0x0F) == vbYesNo;
    const int icon = style & 0xF0;

    // On the heap: while the box is up its owner may go, and takes it along.
    const QPointer<QMessageBox> box =
        new ProgramBox(over && over->isVisible() && !over->isMinimized() ? over : nullptr);
    box->setObjectName(QStringLiteral("MsgBox"));
    box->setWindowTitle(ToQt(title));
    box->setTextFormat(Qt::PlainText);
    box->setText(ToQt(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    box->setIcon(icon == vbCritical      ? QMessageBox::Critical
                 : icon == vbExclamation ? QMessageBox::Warning
                                         : QMessageBox::NoIcon);
    const QString own = icon == vbCritical ? QStringLiteral("critical") : QStringLiteral("exclamation");
    if (icons && icon != 0) {
        const QPixmap pixmap =
            icons->Pixmap(own, IconSize, box->devicePixelRatioF(), box->palette().color(QPalette::WindowText));
        if (!pixmap.isNull())
            box->setIconPixmap(pixmap);
    }
    box->setStandardButtons(yesNo ? QMessageBox::Yes | QMessageBox::No : QMessageBox::Ok);
    for (QAbstractButton* button : box->buttons())
        button->setIcon({});
    box->setDefaultButton(yesNo ? QMessageBox::Yes : QMessageBox::Ok);
    box->setEscapeButton(yesNo ? QMessageBox::No : QMessageBox::Ok);
    box->setWindowModality(Qt::ApplicationModal);
    if (SplashWindow::AnyShown())
        box->setWindowFlag(Qt::WindowStaysOnTopHint);

    const int pressed = box->exec();
    delete box;
    return pressed == QMessageBox::Yes ? vbYes : yesNo ? vbNo : vbOK;
}

} // namespace voxmate::qt
