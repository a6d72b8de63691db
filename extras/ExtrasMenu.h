// The menu Extras: the door to what the program can do beyond its original windows.
#pragma once

#include "controls/Form.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace voxmate
{

/// A menu behind those of a form, or within another one. Units add their items in the order in which they are made.
class ExtrasMenu
{
public:
    /// `form` must not have been loaded yet.
    explicit ExtrasMenu(Form& form);
    /// A menu at the present end of another, which must outlive it.
    ExtrasMenu(ExtrasMenu& parent, const std::string& name, const std::string& caption);
    ExtrasMenu(const ExtrasMenu&) = delete;
    ExtrasMenu& operator=(const ExtrasMenu&) = delete;

    /// Adds an item. An ampersand in the caption marks its access key, which no other item of this menu may have.
    Menu& Add(const std::string& name, const std::string& caption, Event click);
    /// Adds an item with a check mark. `isOn` is asked each time the menu opens and after each click; a click hands the
    /// other state to `turn`.
    Menu& AddSwitch(const std::string& name, const std::string& caption, std::function<bool()> isOn,
                    std::function<void(bool on)> turn);
    /// Begins another group: draws a rule before the next item, unless that is the first one.
    void BeginGroup() { ruled_ = true; }
    /// Runs each time the menu, or the one that it is in, is about to open, for items that are enabled only at times.
    void WhenOpened(Event act) { opened_.push_back(std::move(act)); }

private:
    Menu& menu_;
    std::vector<Event> opened_;
    bool ruled_ = false;

    explicit ExtrasMenu(Menu& menu);
    Menu& Load(const std::string& name, const std::string& caption);
    void Opened() const;
};

} // namespace voxmate
