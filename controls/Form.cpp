#include "controls/Form.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace voxmate
{

Control::Control(Form* form, std::string name) : Name(std::move(name))
{
    if (form)
        form->controls_.push_back(this);
}

std::string MarkAccessKey(std::string caption, char key)
{
    if (key == 0 || caption.find('&') != std::string::npos)
        return caption;
    const std::array<char, 2> letters{key, static_cast<char>(key - 'a' + 'A')};
    const std::size_t at = caption.find_first_of(std::string_view(letters.data(), letters.size()));
    return at == std::string::npos ? caption : caption.insert(at, 1, '&');
}

Menu::Menu(Form* form, Menu* parent, std::string name, std::string caption)
    : Clickable(form, std::move(name), std::move(caption)), form_(form), parent_(parent)
{
    if (parent_)
        parent_->items_.push_back(this);
}

Menu& Menu::Load(const std::string& name, const std::string& caption)
{
    owned_.push_back(std::make_unique<Menu>(form_, this, name, caption));
    Changed(Property::Items);
    return *owned_.back();
}

void Menu::UnloadAll()
{
    if (owned_.empty())
        return;
    const auto isOwned = [this](const Control* control) {
        return std::any_of(owned_.begin(), owned_.end(), [control](const auto& item) { return item.get() == control; });
    };
    std::erase_if(items_, isOwned);
    if (form_)
        std::erase_if(form_->controls_, isOwned);
    // The peer is told before the items are destroyed, so that it can drop its entries while they still live.
    Changed(Property::Items);
    owned_.clear();
}

namespace
{

WindowHandle NextHandle()
{
    static WindowHandle last = 0;
    return ++last;
}

} // namespace

Form::Form(FormHost& host, std::string name) : Name(std::move(name)), host_(host), handle_(NextHandle()) {}

Form::~Form() = default;

Menu& Form::AddMenu(const std::string& name, const std::string& caption)
{
    added_.push_back(std::make_unique<Menu>(this, nullptr, name, caption));
    MenuBar.push_back(added_.back().get());
    return *added_.back();
}

WindowHandle Form::hWnd()
{
    Load();
    return handle_;
}

void Form::Load()
{
    if (!loaded_) {
        loaded_ = true;
        Form_Load();
    }
    if (!peer_)
        peer_ = host_.CreateFormPeer(*this);
}

void Form::Show()
{
    Load();
    shown_ = true;
    peer_->Show();
}

void Form::Hide()
{
    shown_ = false;
    if (peer_)
        peer_->Hide();
}

void Form::Unload()
{
    if (loaded_) {
        loaded_ = false;
        Form_Unload();
    }
    shown_ = false;
    if (peer_)
        peer_->Hide();
    for (Control* control : controls_)
        control->SetPeer(nullptr);
    peer_.reset();
}

void Form::Activate()
{
    if (peer_)
        peer_->Activate();
}

void Form::PopupMenu(Menu& menu, Control* at)
{
    if (peer_)
        peer_->PopupMenu(menu, at);
}

Control* Form::Find(const std::string& name) const
{
    const auto found = std::find_if(controls_.begin(), controls_.end(),
                                    [&name](const Control* control) { return control->Name == name; });
    return found == controls_.end() ? nullptr : *found;
}

void Form::UserClose()
{
    bool cancel = false;
    Form_QueryUnload(cancel);
    if (!cancel)
        Unload();
}

} // namespace voxmate
