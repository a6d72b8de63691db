#include "forms/frmSplash.h"

#include "modules/Program.h"

namespace voxmate
{

frmSplash::frmSplash(Program& program) : Form(program.Host.Windows, "frmSplash"), program_(program)
{
    Caption = "Voxmate";
    Border = BorderStyle::Splash;
    lblProduct.Heading = true;
    Arrangement =
        Row({Item(imgIcon),
             Column({Item(lblProduct), Item(lblDesc), Space(), Item(lblVersion), Item(lblOS), Item(lblAuthor)})
                 .Stretch(1)})
            .Min(420, 190);
    splashTimer.Tick = [this] { splashTimer_Timer(); };
}

void frmSplash::Form_Load()
{
    lblVersion.Caption = "Version " + VersionText();
    lblOS.Caption = "Windows 98/NT and above";
    lblDesc.Caption = "A desktop assistant that talks";
    lblAuthor.Caption = "By the makers of Voxmate";
}

void frmSplash::splashTimer_Timer()
{
    program_.StartMain();
    splashTimer.Enabled = false;
    Unload();
}

} // namespace voxmate
