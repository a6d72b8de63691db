// The splash form: the program's start-up object.
#pragma once

#include "platform/Platform.h"

namespace voxmate
{

class Program;

class frmSplash : public Form
{
public:
    explicit frmSplash(Program& program);

    Image imgIcon{this, "imgIcon", "voxmate", 96};
    Label lblProduct{this, "lblProduct", "Voxmate"};
    Label lblDesc{this, "lblDesc"};
    Label lblVersion{this, "lblVersion"};
    Label lblOS{this, "lblOS"};
    Label lblAuthor{this, "lblAuthor"};
    Timer splashTimer{this, "splashTimer", 2000, true};

protected:
    void Form_Load() override;

private:
    Program& program_;

    void splashTimer_Timer();
};

} // namespace voxmate
