#include "qt/forms/QtFormPeer.h"

#include "controls/DocumentView.h"
#include "controls/OptionButton.h"
#include "controls/Pictures.h"
#include "qt/dialogs/Placement.h"
#include "qt/forms/CommonPeer.h"
#include "qt/forms/ContentArea.h"
#include "qt/forms/FormWindow.h"
#include "qt/system/Desktop.h"
#include "qt/widgets/FileDrops.h"
#include "qt/widgets/FontScale.h"
#include "qt/widgets/QtText.h"
#include "qt/widgets/Widgets.h"

#include <QCursor>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QStatusBar>
#include <QTabWidget>

#include <algorithm>
#include <cstddef>

namespace voxmate::qt
{

namespace
{

// Device-independent pixels.
constexpr int Spacing = 8;
constexpr int WindowMargin = 12;
constexpr int SplashMargin = 26;

} // namespace

QtFormPeer::QtFormPeer(Form& form, const IconSet& icons, QWidget* owner) : form_(form), icons_(icons), owner_(owner)
{
    if (form_.Border == BorderStyle::Splash) {
        window_ = MakeSplash();
    } else {
        FormWindow* window = MakeFormWindow();
        window_ = window;
        MakeMenus(window);
    }
    window_->setObjectName(ToQt(form_.Name));
    if (!form_.ShowActivated)
        window_->setAttribute(Qt::WA_ShowWithoutActivating);
    Update(Property::Caption);
    if (form_.FilesDropped)
        TakeFiles();
    ConnectLabels();
    SetTabOrder();
    // Timers last, because a tick must find the form complete.
    for (Control* control : form_.Controls()) {
        if (auto* timer = dynamic_cast<Timer*>(control))
            timers_.push_back(CreateTimerPeer(*timer));
    }
}

QtFormPeer::~QtFormPeer()
{
    // The form may be destroyed inside one of its window's own events, so the window is deleted later.
    drops_.clear();
    timers_.clear();
    menus_.clear();
    widgets_.clear();
    window_->hide();
    if (auto* window = dynamic_cast<FormWindow*>(window_)) {
        window->OnClose = nullptr;
        window->OnGeometry = nullptr;
        window->OnEnter = nullptr;
        window->OnEscape = nullptr;
    }
    window_->deleteLater();
}

// Fields take what is dropped on them before their window does.
void QtFormPeer::TakeFiles()
{
    const auto take = [this](const std::vector<std::string>& files) { Raise(form_.FilesDropped, files); };
    for (QWidget* each : window_->findChildren<QWidget*>())
        if (each->acceptDrops())
            drops_.push_back(std::make_unique<FileDrops>(*each, take));
    drops_.push_back(std::make_unique<FileDrops>(*window_, take));
    for (const auto& [control, peer] : widgets_)
        peer->TakeFiles(take);
}

FormWindow* QtFormPeer::MakeFormWindow()
{
    auto* window = new FormWindow(form_.Border);
    window_ = window;
    // A window that grows with the font stays on the screen. Set before the controls are made, so that they have taken
    // the font when this runs.
    new FontChange(&context_, *window, [this] {
        SettleSize();
        KeepOnScreen(*window_);
    });
    // Set before the controls are made, because they take it over.
    if (!form_.FontName.empty())
        window->setFont(ToQFont({form_.FontName}, QFont()));
    content_ = new QWidget(window);
    QLayout* layout = BuildAll();
    layout->setContentsMargins(WindowMargin, WindowMargin, WindowMargin,
                               form_.Status ? WindowMargin / 2 : WindowMargin);
    content_->setLayout(layout);
    window->setCentralWidget(new ContentArea(content_, window));
    if (form_.Status) {
        auto peer = CreateWidgetPeer(*form_.Status, icons_, window);
        auto* bar = static_cast<QStatusBar*>(peer->Widget());
        // The window's frame is there to resize it; a grip would push the panels out of line.
        bar->setSizeGripEnabled(false);
        // Aligned with the content; a status bar adds a little space of its own.
        bar->setContentsMargins(WindowMargin - 2, 0, WindowMargin, WindowMargin / 2);
        window->setStatusBar(bar);
        widgets_[form_.Status] = std::move(peer);
    }
    if (form_.Border == BorderStyle::FixedSingle)
        window->layout()->setSizeConstraint(QLayout::SetFixedSize);

    window->OnClose = [this] { form_.UserClose(); };
    if (form_.GeometryChanged)
        window->OnGeometry = [this] { form_.UserGeometry(window_->saveGeometry().toBase64().toStdString()); };
    for (Control* control : form_.Controls()) {
        auto* button = dynamic_cast<CommandButton*>(control);
        if (button && button->IsDefault) {
            window->OnEnter = [button] { button->UserClick(); };
            if (auto* widget = qobject_cast<QPushButton*>(WidgetOf(button)))
                window->SetDefaultButton(widget);
        }
        if (button && button->IsCancel)
            window->OnEscape = [button] { button->UserClick(); };
    }
    return window;
}

QWidget* QtFormPeer::MakeSplash()
{
    auto* window = new SplashWindow;
    window_ = content_ = window;
    QLayout* layout = BuildAll();
    const int margin = SplashWindow::ShadowMargin + SplashMargin;
    layout->setContentsMargins(margin, margin, margin, margin);
    window->setLayout(layout);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    return window;
}

QWidget* QtFormPeer::MakeItem(const Layout& item)
{
    auto peer = CreateWidgetPeer(*item.control, icons_, content_);
    if (!peer)
        return nullptr;
    QWidget* widget = peer->Widget();
    widgets_[item.control] = std::move(peer);
    // Room for a text grows with the text. A list has its columns' widths, and scrolls.
    const bool text = dynamic_cast<Label*>(item.control) || dynamic_cast<Pane*>(item.control) ||
                      dynamic_cast<DocumentView*>(item.control);
    const auto room = [text](int size) { return text ? Scaled(size) : size; };
    if (item.minWidth > 0)
        widget->setMinimumWidth(
            std::max({room(item.minWidth), widget->minimumWidth(), widget->minimumSizeHint().width()}));
    if (item.minHeight > 0)
        widget->setMinimumHeight(std::max(room(item.minHeight), widget->minimumHeight()));
    // A label with a given width and height wraps its text.
    if (auto* label = qobject_cast<QLabel*>(widget); label && item.minWidth > 0 && item.minHeight > 0) {
        label->setWordWrap(true);
        label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    }
    if (dynamic_cast<Frame*>(item.control) && !item.children.empty()) {
        QLayout* content = Build(item.children.front());
        content->setContentsMargins(GroupFrame::Margin, GroupFrame::Margin, GroupFrame::Margin, GroupFrame::Margin);
        auto* area = qobject_cast<QScrollArea*>(widget);
        (area ? area->widget() : widget)->setLayout(content);
    }
    if (auto* tabs = qobject_cast<QTabWidget*>(widget)) {
        const int pages = std::min(tabs->count(), static_cast<int>(item.children.size()));
        for (int i = 0; i < pages; ++i) {
            QLayout* page = Build(item.children[static_cast<std::size_t>(i)]);
            page->setContentsMargins(WindowMargin, WindowMargin, WindowMargin, WindowMargin);
            tabs->widget(i)->setLayout(page);
        }
    }
    return widget;
}

void QtFormPeer::Fill(QBoxLayout& layout, const Layout& arrangement)
{
    layout.setContentsMargins(0, 0, 0, 0);
    layout.setSpacing(arrangement.spacing >= 0 ? arrangement.spacing : Spacing);
    const bool row = arrangement.kind == Layout::Kind::Row;
    for (const Layout& child : arrangement.children) {
        switch (child.kind) {
        case Layout::Kind::Space: {
            const int least = row ? child.minWidth : child.minHeight;
            if (child.stretch > 0)
                layout.addStretch(child.stretch);
            if (least > 0)
                layout.addSpacing(least);
            break;
        }
        case Layout::Kind::Item:
            if (QWidget* widget = MakeItem(child)) {
                // A picture keeps its size and is centred.
                const bool picture = dynamic_cast<Image*>(child.control) != nullptr;
                layout.addWidget(widget, child.stretch, picture ? Qt::AlignCenter : Qt::Alignment());
            }
            break;
        default:
            if (child.minWidth > 0 || child.minHeight > 0) {
                // Only a widget, not a layout, can have a minimum size.
                auto* room = new QWidget(content_);
                room->setLayout(Build(child));
                room->setMinimumSize(child.minWidth, child.minHeight);
                layout.addWidget(room, child.stretch);
            } else {
                layout.addLayout(Build(child), child.stretch);
            }
            break;
        }
    }
}

QLayout* QtFormPeer::BuildAll()
{
    Layout all;
    all.kind = Layout::Kind::Column;
    all.children.push_back(form_.Arrangement);
    auto* column = new QVBoxLayout;
    Fill(*column, all);
    return column;
}

QLayout* QtFormPeer::Build(const Layout& arrangement)
{
    switch (arrangement.kind) {
    case Layout::Kind::Grid: {
        auto* grid = new QGridLayout;
        grid->setContentsMargins(0, 0, 0, 0);
        grid->setHorizontalSpacing(arrangement.spacing >= 0 ? arrangement.spacing : Spacing);
        grid->setVerticalSpacing(arrangement.spacing >= 0 ? arrangement.spacing : Spacing);
        const int columns = std::max(arrangement.columns, 1);
        for (std::size_t i = 0; i < arrangement.children.size(); ++i) {
            const Layout& cell = arrangement.children[i];
            const int row = static_cast<int>(i) / columns;
            const int column = static_cast<int>(i) % columns;
            // The grid must not be asked about a row or column before something is in it.
            const bool newColumn = column >= grid->columnCount();
            grid->setColumnStretch(column, std::max(newColumn ? 0 : grid->columnStretch(column), cell.stretch));
            if (cell.kind == Layout::Kind::Item) {
                if (QWidget* widget = MakeItem(cell))
                    grid->addWidget(widget, row, column);
            } else if (cell.kind != Layout::Kind::Space) {
                grid->addLayout(Build(cell), row, column);
            } else {
                grid->setColumnMinimumWidth(column, std::max(grid->columnMinimumWidth(column), cell.minWidth));
                const bool newRow = row >= grid->rowCount();
                grid->setRowMinimumHeight(row, std::max(newRow ? 0 : grid->rowMinimumHeight(row), cell.minHeight));
            }
        }
        return grid;
    }
    case Layout::Kind::Row: {
        auto* row = new QHBoxLayout;
        Fill(*row, arrangement);
        return row;
    }
    case Layout::Kind::Column: {
        auto* column = new QVBoxLayout;
        Fill(*column, arrangement);
        return column;
    }
    default: {
        // A single control, such as the content of a frame.
        Layout one;
        one.kind = Layout::Kind::Column;
        one.children.push_back(arrangement);
        auto* column = new QVBoxLayout;
        Fill(*column, one);
        return column;
    }
    }
}

void QtFormPeer::MakeMenus(FormWindow* window)
{
    for (Control* control : form_.Controls()) {
        auto* menu = dynamic_cast<Menu*>(control);
        if (menu && !menu->Parent())
            menus_[menu] = std::make_unique<MenuPeer>(*menu, window);
    }
    if (!form_.MenuBar.empty())
        window->menuBar()->setAccessibleName(QStringLiteral("Menus"));
    for (Menu* menu : form_.MenuBar) {
        if (menus_.contains(menu))
            window->menuBar()->addAction(menus_[menu]->Action());
    }
}

void QtFormPeer::ConnectLabels()
{
    for (const auto& [control, peer] : widgets_) {
        const auto* label = dynamic_cast<const Label*>(control);
        QWidget* buddy = label ? WidgetOf(label->Buddy) : nullptr;
        if (buddy)
            static_cast<QLabel*>(peer->Widget())->setBuddy(buddy);
    }
}

void QtFormPeer::SetTabOrder()
{
    QWidget* last = nullptr;
    QWidget* first = nullptr;
    QWidget* preset = nullptr;
    for (const Control* control : form_.Controls()) {
        QWidget* widget = WidgetOf(control);
        // An option button that is not chosen has no tab stop now, but may get one.
        if (!widget || !(widget->focusPolicy() & Qt::TabFocus || dynamic_cast<const OptionButton*>(control)))
            continue;
        if (last)
            QWidget::setTabOrder(last, widget);
        else
            first = widget;
        last = widget;
        if (const auto* button = dynamic_cast<const CommandButton*>(control); button && button->IsDefault)
            preset = widget;
    }
    // Without a word of the form's the focus begins at the first control. If that is a button, it begins at the default
    // button instead, because Enter presses the focused button.
    if (QWidget* wanted = WidgetOf(form_.FirstFocus))
        wanted->setFocus(Qt::OtherFocusReason);
    else if (first)
        (preset && qobject_cast<QPushButton*>(first) ? preset : first)->setFocus(Qt::OtherFocusReason);
}

QWidget* QtFormPeer::WidgetOf(const Control* control) const
{
    const auto found = widgets_.find(control);
    return found == widgets_.end() ? nullptr : found->second->Widget();
}

// The window's layout learns of changes inside the scrolling area from the event loop only.
void QtFormPeer::SettleSize()
{
    if (auto* window = qobject_cast<QMainWindow*>(window_))
        window->centralWidget()->updateGeometry();
    content_->layout()->activate();
    if (window_->layout())
        window_->layout()->activate();
}

void QtFormPeer::Place()
{
    placed_ = true;
    SettleSize();
    if (!form_.Geometry.empty() && window_->restoreGeometry(QByteArray::fromBase64(ToQt(form_.Geometry).toLatin1())))
        return;
    window_->adjustSize();
    // adjustSize() is limited to two thirds of the screen, and a resizable form may need more.
    if (const QScreen* screen = window_->screen(); screen && form_.Border == BorderStyle::Sizable)
        window_->resize(window_->sizeHint().boundedTo(screen->availableSize()));
    if (form_.ShowActivated)
        Centre(*window_, form_.Border == BorderStyle::Splash ? nullptr : owner_.data());
    else
        PlaceAmongOthers(*window_);
}

void QtFormPeer::Show()
{
    if (!placed_)
        Place();
    if (window_->isMinimized())
        window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    if (form_.Border != BorderStyle::Splash && form_.ShowActivated)
        window_->activateWindow();
}

void QtFormPeer::Hide()
{
    window_->hide();
}

void QtFormPeer::Update(Property property)
{
    if (property == Property::Caption)
        window_->setWindowTitle(ToQt(form_.Caption));
}

void QtFormPeer::Activate()
{
    window_->raise();
    window_->activateWindow();
    if (window_->windowHandle())
        BringToFront(*window_->windowHandle());
}

void QtFormPeer::PopupMenu(Menu& menu, Control* at)
{
    const Menu* top = &menu;
    while (top->Parent())
        top = top->Parent();
    if (!menus_.contains(top))
        return;
    auto* peer = static_cast<MenuPeer*>(menu.GetPeer());
    if (!peer)
        return;
    // An item without items of its own is shown as a menu with one entry.
    QMenu alone(window_);
    if (!peer->Submenu())
        alone.addAction(peer->Action());
    QMenu* popup = peer->Submenu() ? peer->Submenu() : &alone;
    if (popup->isEmpty())
        return;
    const QWidget* beside = WidgetOf(at);
    popup->exec(beside ? beside->mapToGlobal(QPoint(0, beside->height())) : QCursor::pos());
}

} // namespace voxmate::qt
