#include "extras/ExtrasMenu.h"

namespace voxmate
{

ExtrasMenu::ExtrasMenu(Menu& menu) : menu_(menu)
{
    menu_.Click = [this] { Opened(); };
}

ExtrasMenu::ExtrasMenu(Form& form) : ExtrasMenu(form.AddMenu("mnuExtras", "E&xtras")) {}

ExtrasMenu::ExtrasMenu(ExtrasMenu& parent, const std::string& name, const std::string& caption)
    : ExtrasMenu(parent.Load(name, caption))
{
    // A screen reader may read the items before the menu is opened.
    parent.WhenOpened([this] { Opened(); });
}

void ExtrasMenu::Opened() const
{
    for (const Event& act : opened_)
        act();
}

Menu& ExtrasMenu::Load(const std::string& name, const std::string& caption)
{
    if (std::exchange(ruled_, false) && !menu_.Items().empty())
        menu_.Load("mnuExtrasRule", "-");
    return menu_.Load(name, caption);
}

Menu& ExtrasMenu::Add(const std::string& name, const std::string& caption, Event click)
{
    Menu& item = Load(name, caption);
    item.Click = std::move(click);
    return item;
}

Menu& ExtrasMenu::AddSwitch(const std::string& name, const std::string& caption, std::function<bool()> isOn,
                            std::function<void(bool on)> turn)
{
    Menu& item = Add(name, caption, {});
    item.Checkable = true;
    const Event show = [&item, isOn = std::move(isOn)] { item.Checked = isOn(); };
    // The other state than the one on show: that is what the user means, even if it has changed meanwhile.
    item.Click = [&item, show, turn = std::move(turn)] {
        turn(!item.Checked);
        show();
    };
    WhenOpened(show);
    return item;
}

} // namespace voxmate
