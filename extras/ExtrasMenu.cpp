#include "extras/ExtrasMenu.h"

namespace voxmate
{

ExtrasMenu::ExtrasMenu(Form& form) : mnuExtras_(form.AddMenu("mnuExtras", "E&xtras"))
{
    mnuExtras_.Click = [this] {
        for (const Event& act : opened_)
            act();
    };
}

Menu& ExtrasMenu::Add(const std::string& name, const std::string& caption, Event click)
{
    if (std::exchange(ruled_, false) && !mnuExtras_.Items().empty())
        mnuExtras_.Load("mnuExtrasRule", "-");
    Menu& item = mnuExtras_.Load(name, caption);
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
