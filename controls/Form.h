// A form owns its controls as members and says how they are arranged; the front end turns it into a window.
#pragma once

#include "controls/Control.h"
#include "controls/Layout.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace voxmate
{

class Form;

/// Identifies a form's window in calls to the window system; 0 means no window.
using WindowHandle = std::uint32_t;

/// The toolkit's side of a form: a window with a peer for each control. Made by FormHost when the form is first shown.
class FormPeer
{
public:
    virtual ~FormPeer() = default;
    virtual void Show() = 0;
    virtual void Hide() = 0;
    virtual void Update(Property property) = 0;
    /// Brings the window to the foreground.
    virtual void Activate() = 0;
    /// Shows a menu of the form as a pop-up at the pointer (or beside `at`); returns when it has closed.
    virtual void PopupMenu(Menu& menu, Control* at) = 0;
};

/// Makes windows for forms.
class FormHost
{
public:
    virtual ~FormHost() = default;
    virtual std::unique_ptr<FormPeer> CreateFormPeer(Form& form) = 0;
};

enum class BorderStyle { Splash, FixedSingle, Sizable };

class Form
{
public:
    /// `name` is the form's own name ("frmMain").
    Form(FormHost& host, std::string name);
    virtual ~Form();

    const std::string Name;
    std::string Caption;
    BorderStyle Border = BorderStyle::FixedSingle;
    bool ShowActivated = true; ///< takes the keyboard when it is shown; else the keyboard stays where it is
    std::string FontName;      ///< for all its controls; a font that the desktop does not have changes nothing
    Layout Arrangement;
    StatusBar* Status = nullptr;   ///< shown at the foot, outside the arrangement
    std::vector<Menu*> MenuBar;    ///< the menus on the menu bar, in order
    Control* FirstFocus = nullptr; ///< where the keyboard begins; null: at the default button or the first control

    /// Adds a menu behind those on the menu bar; the form owns it. Only before the form is loaded.
    Menu& AddMenu(const std::string& name, const std::string& caption);

    /// Runs Form_Load and makes the window, unless that has been done already. Does not show it yet.
    void Load();
    /// Shows the form; loads it first if need be.
    void Show();
    void Hide();
    /// Runs Form_Unload and destroys the window. Showing the form again loads it anew.
    void Unload();
    bool IsLoaded() const { return loaded_; }
    /// The handle of the form's window; loads the form. The handle stays the same as long as the form lives.
    WindowHandle hWnd();
    /// The same handle without loading the form: for code that makes the form's window.
    WindowHandle Handle() const { return handle_; }
    /// The size and place of the form's window, in the front end's own words. What stands here when the form is first
    /// shown is where it comes up, as far as there is a screen. While GeometryChanged is set, the front end notes here
    /// how the window changes, and raises it.
    std::string Geometry;
    Event GeometryChanged;
    /// Files were dropped on the window, or pasted into one of its fields of several lines: their paths, or the address
    /// of what is on another computer. Without a handler a drop is refused, and a field takes the names as text. To be
    /// set before the form is loaded.
    std::function<void(const std::vector<std::string>& files)> FilesDropped;
    bool IsShown() const { return shown_; }
    void Activate();
    void PopupMenu(Menu& menu, Control* at = nullptr);

    const std::vector<Control*>& Controls() const { return controls_; }
    /// The control of that name, or nullptr.
    Control* Find(const std::string& name) const;

    /// The user asks to close the window: runs Form_QueryUnload and, unless that cancels, Unload.
    void UserClose();
    /// Delivers an icon's message as a mouse move; x is the message in twips. The pointer's own moves over the form are
    /// not delivered: in a wide enough window their x positions would be mistaken for messages.
    void UserMouseMove(double x) { Form_MouseMove(x); }
    /// The window was moved or resized, by the user or by the window manager.
    void UserGeometry(std::string geometry)
    {
        Geometry = std::move(geometry);
        Raise(GeometryChanged);
    }

protected:
    virtual void Form_Load() {}
    /// Set `cancel` to keep the window.
    virtual void Form_QueryUnload(bool& /*cancel*/) {}
    virtual void Form_MouseMove(double /*x*/) {}
    /// The window is about to be destroyed.
    virtual void Form_Unload() {}
    /// A property of the form was set: tells its window.
    void Changed(Property property)
    {
        if (peer_)
            peer_->Update(property);
    }

private:
    friend class Control;
    friend class Menu;
    FormHost& host_;
    const WindowHandle handle_;
    std::vector<Control*> controls_;
    std::vector<std::unique_ptr<Menu>> added_;
    std::unique_ptr<FormPeer> peer_;
    bool loaded_ = false;
    bool shown_ = false;
};

} // namespace voxmate
