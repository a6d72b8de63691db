// A form: owns its controls as members, says how they are arranged, and is turned into a window by the front end.
#pragma once

#include "controls/Control.h"
#include "controls/Layout.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

class Form;

/// Names a form's window in the window system's calls; 0 names none.
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
    /// Shows a menu of the form as a pop-up at the pointer (or beside `at`) and returns when it has closed.
    virtual void PopupMenu(Menu& menu, Control* at) = 0;
};

/// Makes windows of forms.
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
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;

    const std::string Name;
    std::string Caption;
    BorderStyle Border = BorderStyle::FixedSingle;
    bool ShowActivated = true; ///< a window shown takes the keyboard; without, it leaves it where it is
    std::string FontName;      ///< of all its controls; a font that the desktop has not got changes nothing
    Layout Arrangement;
    StatusBar* Status = nullptr; ///< shown at the foot, outside the arrangement
    std::vector<Menu*> MenuBar;  ///< the menus on the menu bar, in order

    /// Runs Form_Load and makes the window, unless that has been done; shows nothing yet.
    void Load();
    /// Shows the form, loading it first.
    void Show();
    void Hide();
    /// Runs Form_Unload and destroys the window. The form can be shown again, which loads it anew.
    void Unload();
    bool IsLoaded() const { return loaded_; }
    /// The handle of the form's window; asking for it loads the form. It stays the same through the form's life.
    WindowHandle hWnd();
    /// The same, of a form that need not be loaded: for those who make its window.
    WindowHandle Handle() const { return handle_; }
    bool IsShown() const { return shown_; }
    void Activate();
    void PopupMenu(Menu& menu, Control* at = nullptr);

    const std::vector<Control*>& Controls() const { return controls_; }
    /// The control of that name, or nullptr.
    Control* Find(const std::string& name) const;

    /// The user asks to close the window: runs Form_QueryUnload and, when it was not cancelled, Unload.
    void UserClose();
    /// A message of an icon's came to the form as a mouse move; x is the message in twips. The pointer's own moves over
    /// the form are not told: in a window wide enough their columns would be taken for messages.
    void UserMouseMove(double x) { Form_MouseMove(x); }

protected:
    virtual void Form_Load() {}
    /// Set `cancel` to keep the window.
    virtual void Form_QueryUnload(bool& /*cancel*/) {}
    virtual void Form_MouseMove(double /*x*/) {}
    /// The window is about to go.
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
    std::unique_ptr<FormPeer> peer_;
    bool loaded_ = false;
    bool shown_ = false;
};

} // namespace voxmate
