#include "qt/dialogs/MessageBox.h"

#include "platform/WindowSystem.h"
#include "qt/dialogs/ModalWindows.h"
#include "qt/dialogs/Placement.h"
#include "qt/forms/FormWindow.h"
#include "qt/widgets/FontScale.h"
#include "qt/widgets/IconSet.h"
#include "qt/widgets/QtText.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QStyle>

#include <algorithm>
#include <utility>

namespace voxmate::qt
{

namespace
{

// Device-independent pixels.
constexpr int IconSize = 40;
constexpr int RightMargin = 4; // added to the margin that the box has on both sides

// Size of the window manager's frame where no other window's is known: a high title bar and two borders.
constexpr QSize UnknownFrame(8, 40);
// Widest that a box with a scrolling text becomes to fit its lines; longer lines are hard to read.
constexpr int WidestBox = 1000;
// Space between a text and its scroll bar.
constexpr int BarGap = 8;

/// A message box that is centred on its owner. If it is higher than the screen its text scrolls.
class ProgramBox : public QMessageBox
{
public:
    explicit ProgramBox(QWidget* over) : QMessageBox(over) { LetCharacterLiveBeside(*this); }

    /// Shows the program's own icon `name`, if there is one, in the theme's colours.
    void SetOwnIcon(const IconSet& icons, const QString& name)
    {
        icons_ = &icons;
        iconName_ = name;
        DrawIcon();
    }

protected:
    void showEvent(QShowEvent* event) override
    {
        // A message box knows its size only when it is shown.
        QMessageBox::showEvent(event);
        FitScreen();
        Centre(*this, parentWidget());
        // Centred, a box as high as the screen would have its frame reach beyond the screen's edge.
        if (scroll_ && !parentWidget())
            move(x(), screen()->availableGeometry().top());
    }

    void changeEvent(QEvent* event) override
    {
        QMessageBox::changeEvent(event);
        if (event->type() == QEvent::PaletteChange)
            DrawIcon();
    }

    bool event(QEvent* event) override
    {
        // A message box would compute its size from its label, which no longer counts once the text scrolls.
        if (scroll_ && event->type() == QEvent::LayoutRequest)
            return QWidget::event(event); // NOLINT(bugprone-parent-virtual-call)
        return QMessageBox::event(event);
    }

private:
    /// Puts the text of a box that is higher than the screen into a scroll area, wide enough that only the height is
    /// cut. Must be called after the box has computed its own size.
    void FitScreen()
    {
        auto* label = findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
        auto* grid = qobject_cast<QGridLayout*>(layout());
        if (scroll_ || !label || !grid)
            return;
        const QWidget* over = parentWidget();
        const QSize frame = over ? over->frameGeometry().size() - over->size() : UnknownFrame;
        const QSize room = (over ? over : this)->screen()->availableGeometry().size() - frame;
        if (height() <= room.height())
            return;

        grid->activate();
        const QSize around = size() - label->size();
        const int bar = style()->pixelMetric(QStyle::PM_ScrollBarExtent);
        label->setContentsMargins(0, 0, BarGap, 0);
        label->setWordWrap(false);
        const int wanted = std::min(around.width() + label->sizeHint().width() + bar, std::max(WidestBox, width()));
        const int boxWidth = std::min(std::max(wanted, width()), room.width());
        const int textWidth = boxWidth - around.width() - bar;
        label->setWordWrap(true);

        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        grid->getItemPosition(grid->indexOf(label), &row, &column, &rows, &columns);
        grid->removeWidget(label);
        scroll_ = new QScrollArea(this);
        scroll_->setObjectName(QStringLiteral("MsgBoxText"));
        scroll_->setFrameShape(QFrame::NoFrame);
        scroll_->setFocusPolicy(Qt::NoFocus);
        scroll_->setWidget(label);
        label->resize(textWidth, label->heightForWidth(textWidth));
        const int textHeight =
            std::min(label->height(), std::max(label->fontMetrics().lineSpacing(), room.height() - around.height()));
        scroll_->setFixedSize(textWidth + bar, textHeight);
        scroll_->verticalScrollBar()->setSingleStep(label->fontMetrics().lineSpacing());
        grid->addWidget(scroll_, row, column, rows, columns);
        setFixedSize(boxWidth, around.height() + textHeight);
        grid->activate();
        // The buttons keep the focus and do not use these keys, which scroll the text.
        for (const auto& [key, action] : {std::pair{Qt::Key_Up, QAbstractSlider::SliderSingleStepSub},
                                          std::pair{Qt::Key_Down, QAbstractSlider::SliderSingleStepAdd},
                                          std::pair{Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub},
                                          std::pair{Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd},
                                          std::pair{Qt::Key_Home, QAbstractSlider::SliderToMinimum},
                                          std::pair{Qt::Key_End, QAbstractSlider::SliderToMaximum}})
            connect(new QShortcut(key, this), &QShortcut::activated, scroll_->verticalScrollBar(),
                    [bar = scroll_->verticalScrollBar(), action = action] { bar->triggerAction(action); });
    }

    void DrawIcon()
    {
        const QPixmap pixmap = icons_ ? icons_->Pixmap(iconName_, Scaled(IconSize), devicePixelRatioF(),
                                                       palette().color(QPalette::WindowText))
                                      : QPixmap();
        if (!pixmap.isNull())
            setIconPixmap(pixmap);
    }

    const IconSet* icons_ = nullptr;
    QString iconName_;
    QScrollArea* scroll_ = nullptr; ///< scroll area of the text; null while the text fits
};

/// Name of the program's own picture for a style's icon; empty if there is none.
QString IconName(int icon)
{
    switch (icon) {
    case vbCritical:
        return QStringLiteral("critical");
    case vbQuestion:
        return QStringLiteral("question");
    case vbExclamation:
        return QStringLiteral("exclamation");
    case vbInformation:
        return QStringLiteral("information");
    default:
        return {};
    }
}

} // namespace

int ShowMessageBox(QWidget* over, const IconSet* icons, const std::string& text, int style, const std::string& title)
{
    // Buttons, icon and default button are separate bit fields of the style.
    const int buttons = style & 0x0F;
    const bool cancel = buttons == vbYesNoCancel;
    const bool yesNo = buttons == vbYesNo || cancel;
    const int icon = style & 0xF0;
    const bool second = (style & 0xF00) == vbDefaultButton2;

    // On the heap, because the owner may be destroyed while the box is up and then deletes it.
    const QPointer<ProgramBox> box = new ProgramBox(over && over->isVisible() && !over->isMinimized() ? over : nullptr);
    box->setObjectName(QStringLiteral("MsgBox"));
    box->setWindowTitle(ToQt(title));
    box->setTextFormat(Qt::PlainText);
    box->setText(ToQt(text).replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
    box->setIcon(icon == vbCritical      ? QMessageBox::Critical
                 : icon == vbQuestion    ? QMessageBox::Question
                 : icon == vbExclamation ? QMessageBox::Warning
                 : icon == vbInformation ? QMessageBox::Information
                                         : QMessageBox::NoIcon);
    if (const QString own = IconName(icon); icons && !own.isEmpty()) {
        box->SetOwnIcon(*icons, own);
        // Centres a single line beside its icon and makes the right margin as wide as the one left of the icon.
        if (auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
            label->setMinimumHeight(Scaled(IconSize));
            QMargins margins = label->contentsMargins();
            margins.setRight(RightMargin);
            label->setContentsMargins(margins);
        }
        // Screen readers say the icon's name.
        if (auto* label = box->findChild<QLabel*>(QStringLiteral("qt_msgboxex_icon_label")))
            label->setAccessibleName(own.at(0).toUpper() + own.mid(1));
    }
    if (auto* row = box->findChild<QDialogButtonBox*>())
        row->setAccessibleName(QStringLiteral("Buttons"));
    box->setStandardButtons(cancel  ? QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel
                            : yesNo ? QMessageBox::Yes | QMessageBox::No
                                    : QMessageBox::Ok);
    for (QAbstractButton* button : box->buttons())
        button->setIcon({});
    box->setDefaultButton(!yesNo ? QMessageBox::Ok : second ? QMessageBox::No : QMessageBox::Yes);
    box->setEscapeButton(cancel ? QMessageBox::Cancel : yesNo ? QMessageBox::No : QMessageBox::Ok);
    box->setWindowModality(Qt::ApplicationModal);
    if (SplashWindow::AnyShown())
        box->setWindowFlag(Qt::WindowStaysOnTopHint);

    const int pressed = box->exec();
    delete box;
    if (pressed == QMessageBox::Yes)
        return vbYes;
    // Whatever is neither Yes nor No counts as Escape, even a box that was deleted with its owner.
    return cancel && pressed != QMessageBox::No ? vbCancel : yesNo ? vbNo : vbOK;
}

} // namespace voxmate::qt
