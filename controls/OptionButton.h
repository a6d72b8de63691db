// Option buttons: in each group at most one is chosen.
#pragma once

#include "controls/Control.h"

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

class OptionGroup;

/// Value is true for the chosen button of the group. Choosing a button, by the user or from code, unsets the others and
/// raises the group's Click.
class OptionButton : public Captioned
{
public:
    OptionButton(Form* form, std::string name, std::string caption, OptionGroup& group)
        : Captioned(form, std::move(name), std::move(caption)), group_(group)
    {
    }
    Prop<bool> Value{*this, Property::Value, false};

    OptionGroup& Group() const { return group_; }
    void UserClick()
    {
        if (Enabled)
            Value = true;
    }

protected:
    void Changed(Property property) override;

private:
    OptionGroup& group_;
};

/// A control array of option buttons, counted from 0; button 1 of "optShape" is named "optShape(1)".
class OptionGroup
{
public:
    OptionGroup(Form* form, const std::string& name, std::initializer_list<const char*> captions) : Name(name)
    {
        for (const char* caption : captions)
            buttons_.push_back(std::make_unique<OptionButton>(form, name + "(" + std::to_string(buttons_.size()) + ")",
                                                              caption, *this));
    }
    OptionGroup(const OptionGroup&) = delete;
    OptionGroup& operator=(const OptionGroup&) = delete;

    const std::string Name;
    std::function<void(int index)> Click;

    OptionButton& operator()(int index) { return *buttons_.at(static_cast<std::size_t>(index)); }
    int Count() const { return static_cast<int>(buttons_.size()); }
    /// The index of the chosen button, -1 when none is chosen.
    int Selected() const
    {
        for (std::size_t i = 0; i < buttons_.size(); ++i) {
            if (buttons_[i]->Value)
                return static_cast<int>(i);
        }
        return -1;
    }
    /// Chooses a button; raises Click unless it was chosen already.
    void Select(int index) { (*this)(index).Value = true; }
    void Enable(bool enabled)
    {
        for (const auto& button : buttons_)
            button->Enabled = enabled;
    }

private:
    friend class OptionButton;
    std::vector<std::unique_ptr<OptionButton>> buttons_;

    void Chosen(const OptionButton& chosen)
    {
        int index = -1;
        for (std::size_t i = 0; i < buttons_.size(); ++i) {
            if (buttons_[i].get() == &chosen)
                index = static_cast<int>(i);
            else
                buttons_[i]->Value = false;
        }
        Raise(Click, index);
    }
};

inline void OptionButton::Changed(Property property)
{
    Control::Changed(property);
    if (property == Property::Value && Value)
        group_.Chosen(*this);
}

} // namespace voxmate
