// Reads pieces of text: of the text box, what is selected or follows the cursor; of the other programs, what is
// selected or copied, by keys that the user can switch on.
#pragma once

#include "extras/ExtrasMenu.h"
#include "forms/frmMain.h"
#include "modules/Program.h"
#include "platform/GlobalKeys.h"
#include "platform/StateStore.h"

#include <string>
#include <vector>

namespace voxmate
{

class Pieces
{
public:
    /// Behind the items that are there, without a rule.
    Pieces(ExtrasMenu& menu, Program& program, frmMain& main, GlobalKeys& keys, StateStore& state);
    ~Pieces();
    Pieces(const Pieces&) = delete;
    Pieces& operator=(const Pieces&) = delete;

    /// Asks for the keys that are switched on. To be called once, when the program begins.
    void Begin() { HoldKeys(); }

private:
    struct Shortcut {
        GlobalKeys::Key key;
        std::string caption; ///< of its menu item, without the key
        Event act;
        Menu* item;
        bool turnedOn; ///< by the user just now, who wants to know whether it works
    };

    Program& program_;
    frmMain& main_;
    GlobalKeys& keys_;
    StateStore& state_;
    std::vector<Shortcut> shortcuts_;

    void ReadExcerpt(TextBox::Excerpt excerpt, const char* nothing);
    void ReadSelectionOfAnyProgram();
    void AddShortcut(ExtrasMenu& menu, const char* item, const char* caption, GlobalKeys::Key key, Event act);
    bool IsOn(const Shortcut& shortcut) const;
    void Turn(Shortcut& shortcut, bool on);
    void HoldKeys();
    void Answered(const std::string& name, GlobalKeys::Outcome outcome, const std::string& trigger);
};

} // namespace voxmate
