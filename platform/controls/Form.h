// A form: owns its controls as members, says how they are arranged, and is turned into a window by the front end.
#pragma once

#include "platform/controls/Control.h"
#include "platform/controls/Layout.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

class Form;

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
    Layout Arrangement;
    StatusBar* Status = nullptr; ///< shown at the foot, outside the arrangement
    std::vector<Menu*> MenuBar;  ///< the menus on the menu bar, in order

    /// Shows the form; the first time its Form_Load runs before its window is made.
    void Show();
    void Hide();
    /// Destroys the window. The form can be shown again, which loads it anew.
    void Unload();
    bool IsShown() const { return shown_; }
    void Activate();
    void PopupMenu(Menu& menu, Control* at = nullptr);

    const std::vector<Control*>& Controls() const { return controls_; }
    /// The control of that name, or nullptr.
    Control* Find(const std::string& name) const;

    /// The user asks to close the window: runs Form_QueryUnload and, when it was not cancelled, Unload.
    void UserClose();

protected:
    virtual void Form_Load() {}
    /// Set `cancel` to keep the window.
    virtual void Form_QueryUnload(bool& /*cancel*/) {}

private:
    friend class Control;
    friend class Menu;
    FormHost& host_;
    std::vector<Control*> controls_;
    std::unique_ptr<FormPeer> peer_;
    bool loaded_ = false;
    bool shown_ = false;
};

} // namespace voxmate
