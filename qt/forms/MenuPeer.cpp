#include "qt/forms/ControlPeers.h"
#include "qt/widgets/QtText.h"

#include <algorithm>

namespace voxmate::qt
{

namespace
{

// A keyboard has two Enter keys, which the toolkit tells apart.
QList<QKeySequence> KeysOf(const std::string& shortcut)
{
    const QString keys = ToQt(shortcut);
    QString other = keys;
    other.replace(QStringLiteral("Enter"), QStringLiteral("Return"));
    return other == keys ? QList<QKeySequence>{QKeySequence(keys)}
                         : QList<QKeySequence>{QKeySequence(keys), QKeySequence(other)};
}

} // namespace

MenuPeer::MenuPeer(Menu& menu, QWidget* parent) : menu_(menu), parent_(parent), action_(new QAction(parent))
{
    menu_.SetPeer(this);
    action_->setObjectName(ToQt(menu_.Name));
    action_->setSeparator(menu_.Caption.get() == "-");
    if (!menu_.Shortcut.empty())
        action_->setShortcuts(KeysOf(menu_.Shortcut));
    QObject::connect(action_, &QAction::triggered, action_, [this] {
        // Qt has toggled a checkable item, but only the program decides what is checked.
        Update(Property::Checked);
        menu_.UserClick();
    });
    for (const Property property : {Property::Caption, Property::Enabled, Property::Visible, Property::Checked})
        Update(property);
    UpdateItems();
}

MenuPeer::~MenuPeer()
{
    // The menu may be open, or this may run inside its own click, so its widgets are deleted later.
    if (action_) {
        action_->disconnect();
        action_->setVisible(false);
        action_->deleteLater();
    }
    if (submenu_) {
        submenu_->close();
        submenu_->deleteLater();
    }
}

void MenuPeer::Update(Property property)
{
    switch (property) {
    case Property::Caption:
        // A separator with a text would be shown as a heading.
        if (action_->isSeparator())
            break;
        action_->setText(ToQt(menu_.Caption));
        if (submenu_)
            submenu_->setAccessibleName(WithoutAccessKey(ToQt(menu_.Caption)));
        break;
    case Property::Enabled:
        action_->setEnabled(menu_.Enabled);
        break;
    case Property::Visible:
        action_->setVisible(menu_.Visible);
        break;
    case Property::Checked:
        // Any other item is checkable only while it is checked, so that room for a check mark is kept only where there
        // is one.
        action_->setCheckable(menu_.Checkable || menu_.Checked);
        action_->setChecked(menu_.Checked);
        break;
    case Property::Items:
        UpdateItems();
        break;
    default:
        break;
    }
}

void MenuPeer::UpdateItems()
{
    const std::vector<Menu*>& wanted = menu_.Items();
    std::erase_if(items_, [&wanted](const std::unique_ptr<MenuPeer>& item) {
        return std::find(wanted.begin(), wanted.end(), &item->menu_) == wanted.end();
    });
    if (wanted.empty())
        return;
    if (!submenu_) {
        submenu_ = new QMenu(parent_);
        submenu_->setObjectName(ToQt(menu_.Name));
        submenu_->setAccessibleName(WithoutAccessKey(ToQt(menu_.Caption)));
        action_->setMenu(submenu_);
        QObject::connect(submenu_, &QMenu::aboutToShow, action_, [this] { menu_.UserClick(); });
    }
    for (Menu* item : wanted) {
        const bool known = std::any_of(items_.begin(), items_.end(),
                                       [item](const std::unique_ptr<MenuPeer>& peer) { return &peer->menu_ == item; });
        if (!known) {
            items_.push_back(std::make_unique<MenuPeer>(*item, parent_));
            submenu_->addAction(items_.back()->Action());
        }
    }
}

} // namespace voxmate::qt
