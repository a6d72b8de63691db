#include "qt/forms/ControlPeers.h"

#include "controls/DocumentView.h"
#include "controls/ListView.h"
#include "controls/MonthView.h"
#include "qt/forms/CommonPeer.h"
#include "qt/forms/DialogPeers.h"
#include "qt/widgets/FontScale.h"
#include "qt/widgets/QtText.h"
#include "qt/widgets/ReadableStyle.h"
#include "qt/widgets/Widgets.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QElapsedTimer>
#include <QFontDatabase>
#include <QListView>
#include <QPointer>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStatusBar>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>

namespace voxmate::qt
{

namespace
{

class LabelPeer : public Common<Label, QLabel>
{
public:
    LabelPeer(Label& label, QWidget* parent) : Common(label, new QLabel(parent))
    {
        widget_->setTextFormat(Qt::PlainText);
        widget_->setTextInteractionFlags(Qt::NoTextInteraction);
        if (control_.Wraps) {
            widget_->setWordWrap(true);
            QSizePolicy policy = widget_->sizePolicy();
            policy.setRetainSizeWhenHidden(true);
            widget_->setSizePolicy(policy);
        }
        if (control_.Heading) {
            widget_->setForegroundRole(QPalette::Text);
            ShowLarge();
        }
        if (control_.Font.get() != FontSpec{})
            Update(Property::Font);
        Update(Property::Caption);
        new FontChange(&context_, *widget_->window(), [this] {
            if (control_.Heading)
                ShowLarge();
            if (control_.Font.get() != FontSpec{})
                Update(Property::Font);
            KeepRoom();
        });
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Font)
            widget_->setFont(ToQFont(control_.Font, QFont()));
        if (property != Property::Caption)
            return;
        widget_->setText(ToQt(control_.MarkedCaption()));
        // Empty, it is none of a screen reader's business; its room stays.
        if (control_.Wraps)
            widget_->setVisible(control_.Visible && !control_.Caption.get().empty());
        KeepRoom();
    }

private:
    /// A label whose text changes keeps the width it once needed, so that nothing beside it moves.
    void KeepRoom()
    {
        if (!widget_->wordWrap())
            widget_->setMinimumWidth(std::max(widget_->minimumWidth(), widget_->sizeHint().width()));
    }

    void ShowLarge()
    {
        QFont font;
        font.setPointSizeF(QApplication::font(widget_).pointSizeF() * 2.2);
        font.setWeight(QFont::DemiBold);
        widget_->setFont(font);
    }
};

class ButtonPeer : public Common<CommandButton, Button>
{
public:
    ButtonPeer(CommandButton& button, const IconSet& icons, QWidget* parent)
        : Common(button, new Button(icons, ToQt(button.Picture), button.Stands, parent))
    {
        Update(Property::Caption);
        QObject::connect(widget_, &Button::clicked, &context_, [this] { control_.UserClick(); });
        widget_->OnMouseUp = [this](int button) { control_.UserMouseUp(button); };
        if (!button.Shortcut.empty())
            QObject::connect(new QShortcut(QKeySequence(ToQt(button.Shortcut)), widget_), &QShortcut::activated,
                             widget_, &Button::click);
    }
    ~ButtonPeer() override { widget_->OnMouseUp = nullptr; }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property != Property::Caption)
            return;
        if (control_.Picture.empty())
            widget_->setText(ToQt(control_.MarkedCaption()));
        else
            widget_->setShortcut(QKeySequence::mnemonic(ToQt(control_.MarkedCaption())));
    }
};

class CheckBoxPeer : public Common<CheckBox, QCheckBox>
{
public:
    CheckBoxPeer(CheckBox& box, QWidget* parent) : Common(box, new QCheckBox(parent))
    {
        Update(Property::Caption);
        Update(Property::Value);
        QObject::connect(widget_, &QCheckBox::clicked, &context_,
                         [this](bool checked) { control_.UserClick(checked); });
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Caption)
            widget_->setText(ToQt(control_.MarkedCaption()));
        else if (property == Property::Value)
            widget_->setChecked(control_.Value != 0);
    }
};

// Entries that an open list shows at once.
constexpr int VisibleItems = 12;
// A drop-down list is at least as wide as its longest entry, within these numbers of wide characters.
constexpr int FewestCharacters = 16;
constexpr int MostCharacters = 27;

/// A combo box that the wheel changes only while it has the focus, so that scrolling past it chooses nothing.
class QuietComboBox : public QComboBox
{
public:
    using QComboBox::QComboBox;

    // The toolkit goes on with the least width that it computed first, whatever entries come later.
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void wheelEvent(QWheelEvent* event) override
    {
        if (hasFocus())
            QComboBox::wheelEvent(event);
        else
            event->ignore();
    }
};

class ComboBoxPeer : public Common<ComboBox, QComboBox>
{
public:
    ComboBoxPeer(ComboBox& box, QWidget* parent) : Common(box, new QuietComboBox(parent))
    {
        widget_->setFocusPolicy(Qt::StrongFocus);
        // Long names are cut off in the field, but shown in full in the list.
        widget_->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        // Makes the list open below the field and scroll, instead of filling the screen with a hundred entries.
        // ReadableStyle says so by a style hint. Other styles need a style sheet, which has the drawback that it keeps
        // the colours the desktop had when it was set.
        if (!dynamic_cast<ReadableStyle*>(QApplication::style()))
            widget_->setStyleSheet(QStringLiteral("combobox-popup: 0"));
        widget_->setMaxVisibleItems(VisibleItems);
        widget_->view()->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        static_cast<QListView*>(widget_->view())->setSpacing(2);
        widget_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        Update(Property::Items);
        QObject::connect(widget_, &QComboBox::activated, &context_, [this](int index) { control_.UserSelect(index); });
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property != Property::Items && property != Property::ListIndex)
            return;
        const QSignalBlocker quiet(widget_);
        const std::vector<std::string>& items = control_.Items();
        if (property == Property::Items) {
            // The control's list only grows at its end or is emptied.
            if (items.size() < static_cast<std::size_t>(widget_->count()))
                widget_->clear();
            for (auto i = static_cast<std::size_t>(widget_->count()); i < items.size(); ++i)
                widget_->addItem(ToQt(items[i]));
            int longest = FewestCharacters;
            for (const std::string& item : items)
                longest = std::max(longest, static_cast<int>(ToQt(item).size()));
            widget_->setMinimumContentsLength(std::min(longest, MostCharacters));
        }
        widget_->setCurrentIndex(control_.ListIndex);
    }
};

class ScrollBarPeer : public Common<HScrollBar, ValueBar>
{
public:
    ScrollBarPeer(HScrollBar& bar, QWidget* parent) : Common(bar, new ValueBar(parent))
    {
        widget_->setRange(control_.Min, control_.Max);
        widget_->setSingleStep(control_.SmallChange);
        widget_->setPageStep(control_.LargeChange);
        Update(Property::Value);
        QObject::connect(widget_, &ValueBar::valueChanged, &context_,
                         [this](int value) { control_.UserScroll(value); });
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Value) {
            const QSignalBlocker quiet(widget_);
            widget_->setValue(control_.Value);
        }
    }
};

class FramePeer : public Common<Frame, GroupFrame>
{
public:
    FramePeer(Frame& frame, QWidget* parent) : Common(frame, new GroupFrame(parent)) { Update(Property::Caption); }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property == Property::Caption)
            widget_->ShowTitle(ToQt(control_.MarkedCaption()));
    }
};

class ImagePeer : public Common<Image, Picture>
{
public:
    ImagePeer(Image& image, const IconSet& icons, QWidget* parent)
        : Common(image, new Picture(icons, ToQt(image.Picture), image.SizePx, parent))
    {
    }
};

class StatusBarPeer : public Common<StatusBar, QStatusBar>
{
public:
    StatusBarPeer(StatusBar& bar, QWidget* parent) : Common(bar, new QStatusBar(parent))
    {
        int number = 0;
        for (const StatusBar::Panel& panel : control_.Panels()) {
            auto* label = new StatusPanel(panel.minChars, widget_);
            label->setObjectName(ToQt(control_.Name) + QString::number(++number));
            label->setAccessibleDescription(ToQt(panel.accessibleName));
            label->setAlignment((panel.minChars > 0 ? Qt::AlignHCenter : Qt::AlignLeft) | Qt::AlignVCenter);
            // Permanent, because a menu's temporary help text must not cover the panels.
            widget_->addPermanentWidget(label, panel.minChars > 0 ? 0 : 1);
            panels_.push_back(label);
        }
        Update(Property::Panels);
    }

    void Update(Property property) override
    {
        UpdateCommon(property);
        if (property != Property::Panels)
            return;
        for (std::size_t i = 0; i < panels_.size(); ++i) {
            const StatusBar::Panel& panel = control_.Panels()[i];
            const QString text = ToQt(panel.text);
            if (panels_[i]->text() == text && !text.isEmpty())
                continue;
            panels_[i]->setText(text);
            // A screen reader says the text; for an empty panel it says what the panel is for.
            panels_[i]->setAccessibleName(text.isEmpty() ? ToQt(panel.accessibleName) : text);
        }
    }

private:
    std::vector<StatusPanel*> panels_;
};

class TimerPeer : public Peer
{
public:
    explicit TimerPeer(Timer& timer) : control_(timer), clock_(new QTimer)
    {
        control_.SetPeer(this);
        clock_->setTimerType(Qt::PreciseTimer);
        QObject::connect(clock_, &QTimer::timeout, clock_, [this] { TimeOut(); });
        Start();
    }
    ~TimerPeer() override
    {
        // This may run inside the timer's own tick.
        clock_->stop();
        clock_->disconnect();
        clock_->deleteLater();
    }

    void Update(Property property) override
    {
        if (property == Property::Enabled || property == Property::Interval)
            Start();
    }

private:
    /// Granularity of the system's timers, in milliseconds.
    static constexpr int LeastInterval = 10;

    void Start()
    {
        // A timer without an interval does not tick.
        if (control_.Enabled && control_.Interval > 0) {
            ticks_ = 0;
            running_.start();
            clock_->start(std::max(control_.Interval.get(), LeastInterval));
        } else {
            clock_->stop();
        }
    }

    /// An interval below LeastInterval means as fast as possible: such a timer moves something and counts time by its
    /// ticks. Late ticks are therefore made up for, one extra at a time so that nothing jumps, and no more than those
    /// of the last second.
    void TimeOut()
    {
        if (control_.Interval >= LeastInterval) {
            control_.Fire();
            return;
        }
        constexpr qint64 MostBehind = 1000 / LeastInterval;
        constexpr qint64 Nanoseconds = qint64{LeastInterval} * 1'000'000;
        const qint64 due = (running_.nsecsElapsed() + Nanoseconds / 2) / Nanoseconds;
        ticks_ = std::max(ticks_, due - MostBehind);
        // A tick may destroy this peer or stop the timer.
        const QPointer<QTimer> clock(clock_);
        for (qint64 left = std::min<qint64>(due - ticks_, 2); left > 0 && clock && clock->isActive(); --left) {
            ++ticks_;
            control_.Fire();
        }
    }

    Timer& control_;
    QTimer* clock_;
    QElapsedTimer running_; ///< since the clock was started
    qint64 ticks_ = 0;      ///< since then
};

} // namespace

std::unique_ptr<WidgetPeer> CreateWidgetPeer(Control& control, const IconSet& icons, QWidget* parent)
{
    // First, because some of these controls derive from the kinds below.
    if (auto peer = CreateDialogPeer(control, icons, parent))
        return peer;
    if (auto* label = dynamic_cast<Label*>(&control))
        return std::make_unique<LabelPeer>(*label, parent);
    if (auto* button = dynamic_cast<CommandButton*>(&control))
        return std::make_unique<ButtonPeer>(*button, icons, parent);
    if (auto* box = dynamic_cast<CheckBox*>(&control))
        return std::make_unique<CheckBoxPeer>(*box, parent);
    if (auto* box = dynamic_cast<ComboBox*>(&control))
        return std::make_unique<ComboBoxPeer>(*box, parent);
    if (auto* bar = dynamic_cast<HScrollBar*>(&control))
        return std::make_unique<ScrollBarPeer>(*bar, parent);
    if (auto* box = dynamic_cast<TextBox*>(&control))
        return CreateTextBoxPeer(*box, parent);
    if (auto* view = dynamic_cast<DocumentView*>(&control))
        return CreateDocumentViewPeer(*view, parent);
    if (auto* list = dynamic_cast<ListView*>(&control))
        return CreateListViewPeer(*list, icons, parent);
    if (auto* month = dynamic_cast<MonthView*>(&control))
        return CreateMonthViewPeer(*month, parent);
    if (auto* frame = dynamic_cast<Frame*>(&control))
        return std::make_unique<FramePeer>(*frame, parent);
    if (auto* image = dynamic_cast<Image*>(&control))
        return std::make_unique<ImagePeer>(*image, icons, parent);
    if (auto* bar = dynamic_cast<StatusBar*>(&control))
        return std::make_unique<StatusBarPeer>(*bar, parent);
    return nullptr;
}

QFont ToQFont(const FontSpec& font, const QFont& base)
{
    QFont result = base;
    if (const QString family = ToQt(font.Name); QFontDatabase::hasFamily(family))
        result.setFamily(family);
    if (font.Size > 0)
        result.setPointSizeF(font.Size * FontScale());
    result.setBold(font.Bold);
    return result;
}

std::unique_ptr<Peer> CreateTimerPeer(Timer& timer)
{
    return std::make_unique<TimerPeer>(timer);
}

} // namespace voxmate::qt
