// Tabs for pages of controls, of which one is on top. The arrangement says what is on each page, see Tabbed.
#pragma once

#include "controls/Control.h"

#include <string>
#include <utility>
#include <vector>

namespace voxmate
{

class TabStrip : public Control
{
public:
    TabStrip(Form* form, std::string name, std::vector<std::string> captions)
        : Control(form, std::move(name)), captions_(std::move(captions))
    {
    }
    /// The access keys of captions that mark none, in small letters, one for each tab; empty: none.
    std::string AccessKeys;
    /// Captions of the tabs, in order; an ampersand marks a tab's access key.
    const std::vector<std::string>& Captions() const { return captions_; }
    Prop<int> Tab{*this, Property::ListIndex, 0}; ///< the page on top, counted from 0

    void UserSelect(int tab) { Tab.Store(tab); }

private:
    std::vector<std::string> captions_;
};

} // namespace voxmate
