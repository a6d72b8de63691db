// What forms are made of: controls as plain state and events. While a form is shown, each of its controls has a peer,
// the toolkit's widget. Setting a property tells the peer. The user's action comes back through the control's User...
// method, which stores the value and raises the event. A test needs no peer.
#pragma once

#include "base/Geometry.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace voxmate
{

class Control;
class Form;
class Menu;

/// Names a property whose changes are told to a peer.
enum class Property {
    Caption,
    Enabled,
    Visible,
    ToolTipText,
    AccessibleDescription,
    Text,
    Value,
    Items,
    ListIndex,
    Checked,
    Interval,
    Panels,
    Default,
    Font,
    BackColor,
    Locked,
    Selection,
    Place
};

/// Colours of the desktop's theme, given as system-colour values (olectl.h): a button's face, and a field's background.
inline constexpr std::uint32_t vbButtonFace = 0x8000000F;
inline constexpr std::uint32_t vbWindowBackground = 0x80000005;

/// A font. A field that is empty or 0 means the desktop's own.
struct FontSpec {
    std::string Name;
    double Size = 0; ///< points
    bool Bold = false;
    bool operator==(const FontSpec&) const = default;
};

/// The toolkit's side of a control.
class Peer
{
public:
    virtual ~Peer() = default;
    /// The property has a new value: shows it. Must not raise the control's events.
    virtual void Update(Property property) = 0;
    virtual void SetFocus() {}
};

/// A property of a control. It reads like a value; setting it to a new value tells the control.
template <class T>
class Prop
{
public:
    Prop(Control& owner, Property id, T initial = T{}) : owner_(owner), id_(id), value_(std::move(initial)) {}
    Prop(const Prop&) = delete;
    Prop& operator=(const Prop&) = delete;

    operator const T&() const { return value_; }
    const T& get() const { return value_; }
    inline Prop& operator=(T value);
    /// Sets the value without telling the control: for the control itself, when the user has changed the value.
    void Store(T value) { value_ = std::move(value); }

private:
    Control& owner_;
    Property id_;
    T value_;
};

class Control
{
public:
    /// A control belongs to the form that it is a member of and registers itself there, in the order of declaration.
    /// That is also the order in which the keyboard moves through the controls.
    Control(Form* form, std::string name);
    virtual ~Control() = default;
    Control(const Control&) = delete;
    Control& operator=(const Control&) = delete;

    const std::string Name;

    Prop<bool> Enabled{*this, Property::Enabled, true};
    Prop<bool> Visible{*this, Property::Visible, true};
    Prop<std::string> ToolTipText{*this, Property::ToolTipText};
    /// What a screen reader says where neither the caption nor the tool tip will do.
    std::string AccessibleName;
    /// What a screen reader says after the name, and at once when it changes while the control has the keyboard.
    Prop<std::string> AccessibleDescription{*this, Property::AccessibleDescription};

    void SetPeer(Peer* peer) { peer_ = peer; }
    Peer* GetPeer() const { return peer_; }
    void SetFocus()
    {
        if (peer_)
            peer_->SetFocus();
    }

protected:
    template <class T>
    friend class Prop;
    /// A property was set from code. Controls that raise an event then override this.
    virtual void Changed(Property property)
    {
        if (peer_)
            peer_->Update(property);
    }

private:
    Peer* peer_ = nullptr;
};

template <class T>
Prop<T>& Prop<T>::operator=(T value)
{
    if (!(value == value_)) {
        value_ = std::move(value);
        owner_.Changed(id_);
    }
    return *this;
}

using Event = std::function<void()>;

/// Runs a copy of the handler, because the handler may destroy the control that it belongs to.
template <class... Arguments>
void Raise(const std::function<void(Arguments...)>& event, std::type_identity_t<Arguments>... arguments)
{
    if (const auto handler = event)
        handler(arguments...);
}

/// The caption with an ampersand before the first `key`, a small letter, in either case; as it is where it has an
/// ampersand already, where that letter is not in it, and for 0.
std::string MarkAccessKey(std::string caption, char key);

class Captioned : public Control
{
public:
    Captioned(Form* form, std::string name, std::string caption = {})
        : Control(form, std::move(name)), Caption(*this, Property::Caption, std::move(caption))
    {
    }
    Prop<std::string> Caption; ///< an ampersand marks the access key
    /// The access key of a caption that marks none, in small letters; 0: none. Only before the form is loaded.
    char AccessKey = 0;

    std::string MarkedCaption() const { return MarkAccessKey(Caption, AccessKey); }
};

class Clickable : public Captioned
{
public:
    using Captioned::Captioned;
    Event Click;

    void UserClick()
    {
        if (Enabled)
            Raise(Click);
    }
};

/// The access key in its caption is that of `Buddy`.
class Label : public Clickable
{
public:
    using Clickable::Clickable;
    Prop<FontSpec> Font{*this, Property::Font};
    Control* Buddy = nullptr; ///< the control this label names
    bool Heading = false;     ///< shown large (a product's name)
    bool Wraps = false;       ///< breaks its text into lines where one has no room; keeps a line's room without a text
    /// Its place on a form that places its controls itself, in device-independent pixels.
    Prop<Rect> Place{*this, Property::Place};
};

/// A picture button has no caption.
class CommandButton : public Clickable
{
public:
    /// What a button with a picture does for its form: what the form is for, the end of that, or anything else. The
    /// first two are told from the others at a glance.
    enum class Role { Other, Act, Halt };

    using Clickable::Clickable;
    std::string Picture;  ///< name of the icon, without folder and extension
    std::string Shortcut; ///< keys that press it besides its access key, as "Ctrl+P"; empty: none
    Role Stands = Role::Other;
    bool IsDefault = false; ///< pressed by Enter
    bool IsCancel = false;  ///< pressed by Escape

    /// A mouse button was released over the control (1 left, 2 right).
    std::function<void(int button)> MouseUp;

    void UserMouseUp(int button)
    {
        if (Enabled)
            Raise(MouseUp, button);
    }
};

/// Value is 1 (checked) or 0. Click is raised when the user clicks it and when Value is set from code.
class CheckBox : public Captioned
{
public:
    using Captioned::Captioned;
    Prop<int> Value{*this, Property::Value, 0};
    Event Click;

    void UserClick(bool checked)
    {
        Value.Store(checked ? 1 : 0);
        Raise(Click);
    }

protected:
    void Changed(Property property) override
    {
        Control::Changed(property);
        if (property == Property::Value)
            Raise(Click);
    }
};

/// A drop-down list. Click is raised when the user chooses an entry, not when ListIndex is set from code.
class ComboBox : public Control
{
public:
    using Control::Control;
    const std::vector<std::string>& Items() const { return items_; }
    void AddItem(std::string item)
    {
        items_.push_back(std::move(item));
        Changed(Property::Items);
    }
    void Clear()
    {
        items_.clear();
        ListIndex = -1;
        Changed(Property::Items);
    }
    Prop<int> ListIndex{*this, Property::ListIndex, -1}; ///< 0-based; -1: nothing chosen
    Event Click;

    void UserSelect(int index)
    {
        ListIndex.Store(index);
        Raise(Click);
    }

private:
    std::vector<std::string> items_;
};

/// A horizontal scroll bar. Change is raised by every new value, whether the user (while dragging, too) or the code
/// sets it.
class HScrollBar : public Control
{
public:
    HScrollBar(Form* form, std::string name, int min, int max)
        : Control(form, std::move(name)), Min(min), Max(max), Value(*this, Property::Value, min)
    {
    }
    const int Min;
    const int Max;
    int SmallChange = 1;
    int LargeChange = 10;
    Prop<int> Value;
    Event Change;

    void UserScroll(int value)
    {
        if (value == Value)
            return;
        Value.Store(value);
        Raise(Change);
    }

protected:
    void Changed(Property property) override
    {
        Control::Changed(property);
        if (property == Property::Value)
            Raise(Change);
    }
};

/// An edit field. Change is raised when the user types and when Text is set from code; Edited only when the user types,
/// after Change.
class TextBox : public Control
{
public:
    using Control::Control;
    Prop<std::string> Text{*this, Property::Text};
    Prop<bool> Locked{*this, Property::Locked, false}; ///< read-only; its text can still be copied
    /// A system colour: vbButtonFace greys the field.
    Prop<std::uint32_t> BackColor{*this, Property::BackColor, vbWindowBackground};
    bool MultiLine = false;
    std::size_t MaxLength = 0; ///< most characters that the user can put in; 0: any number
    std::string PlaceholderText;
    /// Of one line: a text that is set from code while this has the keyboard is selected, so that typing replaces it.
    bool SelectsNewText = false;
    /// Items shown behind those of the field's own menu; they belong to a menu of the form. Of several lines only.
    std::vector<Menu*> MoreItems;
    /// What the user means of the text; of several lines only.
    enum class Excerpt {
        Selection, ///< what is selected; empty when nothing is
        FromCursor ///< from where the selection begins, or from the cursor, to the end
    };
    /// Gives an excerpt of the text as it is shown. Set by the front end while the form has a window.
    std::function<std::string(Excerpt)> GetExcerpt;
    Event Change;
    Event Edited;
    /// A key that makes a character was pressed (its code point; 8 Backspace, 13 Enter). A handler sets it to 0 to
    /// swallow the key. Pasted text raises no KeyPress.
    std::function<void(int& keyAscii)> KeyPress;

    /// Runs KeyPress. Returns false when the key was swallowed.
    bool UserKeyPress(int keyAscii)
    {
        Raise(KeyPress, keyAscii);
        return keyAscii != 0;
    }
    void UserEdit(std::string text)
    {
        Text.Store(std::move(text));
        const Event edited = Edited; // a handler may destroy this control
        Raise(Change);
        Raise(edited);
    }

protected:
    void Changed(Property property) override
    {
        Control::Changed(property);
        if (property == Property::Text)
            Raise(Change);
    }
};

/// A frame with a caption around other controls; the arrangement says which.
class Frame : public Captioned
{
public:
    using Captioned::Captioned;
};

/// A picture from the shared data, given by an icon's name.
class Image : public Control
{
public:
    Image(Form* form, std::string name, std::string picture, int size)
        : Control(form, std::move(name)), Picture(std::move(picture)), SizePx(size)
    {
    }
    std::string Picture;
    int SizePx; ///< width and height in device-independent pixels
};

/// A picture box that is never shown and receives a window's mouse messages. x is in twips (1/1440 inch).
class PictureBox : public Control
{
public:
    PictureBox(Form* form, std::string name, std::string picture)
        : Control(form, std::move(name)), Picture(std::move(picture))
    {
        Visible.Store(false);
    }
    std::string Picture;
    /// The menu for a right click on its icon, for notification areas that show an icon's menu themselves.
    Menu* IconMenu = nullptr;
    std::function<void(double x)> MouseMove;

    void UserMouseMove(double x) { Raise(MouseMove, x); }
};

/// A bar of text panels at the foot of a form; panels are counted from 1.
class StatusBar : public Control
{
public:
    struct Panel {
        std::string text;
        int minChars = 0; ///< width in average characters; 0: takes the width that is left
        std::string accessibleName;
    };
    StatusBar(Form* form, std::string name, std::vector<Panel> panels)
        : Control(form, std::move(name)), panels_(std::move(panels))
    {
    }
    const std::vector<Panel>& Panels() const { return panels_; }
    void SetPanel(std::size_t number, const std::string& text)
    {
        if (number < 1 || number > panels_.size() || panels_[number - 1].text == text)
            return;
        panels_[number - 1].text = text;
        Changed(Property::Panels);
    }

private:
    std::vector<Panel> panels_;
};

/// Ticks every `Interval` milliseconds while enabled (at most every 10 ms). A tick that comes while the timer's own
/// handler still runs is dropped; other timers go on.
class Timer : public Control
{
public:
    Timer(Form* form, std::string name, int interval, bool enabled)
        : Control(form, std::move(name)), Interval(*this, Property::Interval, interval)
    {
        Enabled.Store(enabled);
    }
    Prop<int> Interval;
    Event Tick;

    void Fire()
    {
        if (!Enabled || running_)
            return;
        struct Running {
            bool& flag;
            explicit Running(bool& f) : flag(f) { flag = true; }
            ~Running() { flag = false; }
        } running(running_);
        Raise(Tick);
    }

private:
    bool running_ = false;
};

/// A menu or a menu item. The caption "-" makes a rule. Items belong to their parent menu, top menus to their form. A
/// menu with items raises Click when it is about to open.
class Menu : public Clickable
{
public:
    Menu(Form* form, Menu* parent, std::string name, std::string caption);
    Prop<bool> Checked{*this, Property::Checked, false};
    bool Checkable = false; ///< keeps room for its check mark, and is told of as unchecked, while it is not checked
    /// The key that chooses the item while its form has the keyboard and no menu is open ("Ctrl+Enter", which means
    /// both Enter keys); empty: none.
    std::string Shortcut;

    const std::vector<Menu*>& Items() const { return items_; }
    Menu* Parent() const { return parent_; }
    /// A control array: Load adds an item named `name`, which this menu owns; UnloadAll removes all items so added.
    Menu& Load(const std::string& name, const std::string& caption);
    void UnloadAll();

private:
    Form* form_;
    Menu* parent_;
    std::vector<Menu*> items_;
    std::vector<std::unique_ptr<Menu>> owned_;
};

} // namespace voxmate
