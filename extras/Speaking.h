// Speaking and silencing by keys, in any of the program's windows.
#pragma once

#include "extras/ExtrasMenu.h"
#include "forms/frmMain.h"
#include "modules/Program.h"

namespace voxmate
{

class Speaking
{
public:
    Speaking(ExtrasMenu& menu, Program& program, frmMain& main);

    /// Escape was pressed. While something is spoken, or a document is opened to be spoken, it stops everything and
    /// returns true. Otherwise it does nothing and returns false: Escape then means what it means in that window.
    bool Escape();

private:
    Program& program_;
    frmMain& main_;

    bool Going() const;
};

} // namespace voxmate
