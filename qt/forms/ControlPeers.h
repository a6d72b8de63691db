// The toolkit's side of a form's controls: a widget, a timer or a menu for each.
#pragma once

#include "controls/Control.h"
#include "qt/widgets/IconSet.h"

#include <QAction>
#include <QMenu>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <vector>

namespace voxmate
{
class ListView;
class MonthView;
} // namespace voxmate

namespace voxmate::qt
{

/// A peer that is a widget. It registers itself with its control; the form takes it off.
class WidgetPeer : public Peer
{
public:
    virtual QWidget* Widget() const = 0;
    void SetFocus() override { Widget()->setFocus(Qt::OtherFocusReason); }
};

/// Makes the widget of a control, as a child of `parent`, and connects the two; nullptr for a control that is none
/// (a timer, a menu).
std::unique_ptr<WidgetPeer> CreateWidgetPeer(Control& control, const IconSet& icons, QWidget* parent);

// The larger ones of them.
std::unique_ptr<WidgetPeer> CreateTextBoxPeer(TextBox& box, QWidget* parent);
std::unique_ptr<WidgetPeer> CreateListViewPeer(ListView& list, const IconSet& icons, QWidget* parent);
std::unique_ptr<WidgetPeer> CreateMonthViewPeer(MonthView& month, QWidget* parent);

/// The font a control asks for, on top of `base`; a family that is not installed is left out. On top of a font without
/// any property of its own the desktop's is followed in all that is not asked for.
QFont ToQFont(const FontSpec& font, const QFont& base);

/// Makes the clock of a timer and starts it if it is enabled.
std::unique_ptr<Peer> CreateTimerPeer(Timer& timer);

/// A menu or a menu item, with all that is below it.
class MenuPeer : public Peer
{
public:
    /// `parent` owns the menu's window and lives as long as the form's.
    MenuPeer(Menu& menu, QWidget* parent);
    ~MenuPeer() override;

    void Update(Property property) override;
    QAction* Action() const { return action_; }
    /// The menu itself; nullptr for an item without items of its own.
    QMenu* Submenu() const { return submenu_; }

private:
    void UpdateItems();

    Menu& menu_;
    QWidget* parent_;
    QPointer<QMenu> submenu_;
    QPointer<QAction> action_;
    std::vector<std::unique_ptr<MenuPeer>> items_;
};

} // namespace voxmate::qt
