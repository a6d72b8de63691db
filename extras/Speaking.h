// Speaking and silencing by keys, in any of the program's windows.
#pragma once

#include "extras/ExtrasMenu.h"
#include "forms/frmMain.h"
#include "modules/Program.h"

#include <functional>

namespace voxmate
{

class Speaking
{
public:
    /// `reads` tells whether a document is being opened or read by another extra.
    Speaking(ExtrasMenu& menu, Program& program, frmMain& main, std::function<bool()> reads);

    /// Escape was pressed. While something is spoken, or a document is opened to be spoken, it stops everything and
    /// returns true. Otherwise it does nothing and returns false: Escape then means what it means in that window.
    bool Escape();

private:
    Program& program_;
    frmMain& main_;
    std::function<bool()> reads_;

    bool Going() const;
};

} // namespace voxmate
