// The toolkit's side of a form's controls: a widget, a timer or a menu for each.
#pragma once

#include "controls/Control.h"
#include "qt/widgets/FileDrops.h"
#include "qt/widgets/IconSet.h"

#include <QAction>
#include <QMenu>
#include <QPointer>
#include <QWidget>

#include <memory>
#include <vector>

namespace voxmate
{
class DocumentView;
class ListView;
class MonthView;
} // namespace voxmate

namespace voxmate::qt
{

/// A peer with a widget. It registers itself with its control; the form removes it again.
class WidgetPeer : public Peer
{
public:
    virtual QWidget* Widget() const = 0;
    void SetFocus() override { Widget()->setFocus(Qt::OtherFocusReason); }
    /// Gives files that are pasted into the widget to `take`, where it can hold text of several lines.
    virtual void TakeFiles(const FileDrops::Act& /*take*/) {}
};

/// Makes the widget of a control, as a child of `parent`, and connects the two. Returns nullptr for a control that has
/// no widget (a timer, a menu).
std::unique_ptr<WidgetPeer> CreateWidgetPeer(Control& control, const IconSet& icons, QWidget* parent);

// The larger peers, each in a source file of its own.
std::unique_ptr<WidgetPeer> CreateTextBoxPeer(TextBox& box, QWidget* parent);
std::unique_ptr<WidgetPeer> CreateDocumentViewPeer(DocumentView& view, QWidget* parent);
std::unique_ptr<WidgetPeer> CreateListViewPeer(ListView& list, const IconSet& icons, QWidget* parent);
std::unique_ptr<WidgetPeer> CreateMonthViewPeer(MonthView& month, QWidget* parent);

/// The font that a control asks for, based on `base`; a family that is not installed is ignored. If `base` has no
/// property set, the font follows the desktop's in everything the control does not ask for. A size is meant for the
/// usual font of a desktop and grows with it.
QFont ToQFont(const FontSpec& font, const QFont& base);

/// Makes the toolkit's timer for a control and starts it if the control is enabled.
std::unique_ptr<Peer> CreateTimerPeer(Timer& timer);

/// A menu or a menu item with all items below it.
class MenuPeer : public Peer
{
public:
    /// `parent` owns the menu's window and lives as long as the form's window.
    MenuPeer(Menu& menu, QWidget* parent);
    ~MenuPeer() override;

    void Update(Property property) override;
    QAction* Action() const { return action_; }
    /// The toolkit's menu; nullptr for an item without items of its own.
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
