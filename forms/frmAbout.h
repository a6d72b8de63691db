// The about box.
#pragma once

#include "controls/Pictures.h"
#include "platform/Platform.h"

#include <cstdint>
#include <string>

namespace voxmate
{

class Program;

class frmAbout : public Form
{
public:
    explicit frmAbout(Program& program);

    MovingPicture Picture1{this, "Picture1", "about", 144};
    Label lblTitle{this, "lblTitle"};
    Label lblVersion{this, "lblVersion"};
    CommandButton cmdOK{this, "cmdOK", "OK"};
    CommandButton cmdSysInfo{this, "cmdSysInfo", "&System Info..."};

protected:
    void Form_Load() override;

private:
    Program& program_;

    /// Starts the system's own tool that describes the computer.
    void StartSysInfo();
    /// Reads one value under a predefined root key as text; a number as its decimal digits. False when it cannot be
    /// read or is longer than 1024 bytes.
    bool GetKeyValue(std::uint32_t KeyRoot, const std::string& KeyName, const std::string& SubKeyRef,
                     std::string& KeyVal);
};

} // namespace voxmate
