// The splash form: the program's start-up object.
#pragma once

#include "platform/Platform.h"

namespace voxmate
{

class frmSplash : public Form
{
public:
    explicit frmSplash(Platform& platform);

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
    void splashTimer_Timer();
};

} // namespace voxmate
