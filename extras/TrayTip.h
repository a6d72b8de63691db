// Tells in the tray icon's tool tip how much of the document is left.
#pragma once

#include "extras/Documents.h"
#include "forms/frmMain.h"
#include "modules/Program.h"

#include <string>

namespace voxmate
{

class TrayTip
{
public:
    TrayTip(Program& program, frmMain& main, Documents& documents);

private:
    Program& program_;
    frmMain& main_;
    Documents& documents_;
    Timer tmrTip_; ///< while a document is read: an icon that comes meanwhile begins with its own tip
    bool told_ = false;

    bool Show(const std::string& text);
};

} // namespace voxmate
