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

    /// Starts the system's information tool; a box says when there is none.
    void StartSysInfo();
    /// Reads one value under a predefined root key as text; a number becomes its decimal digits. Returns false if the
    /// value cannot be read or is longer than 1024 bytes.
    bool GetKeyValue(std::uint32_t KeyRoot, const std::string& KeyName, const std::string& SubKeyRef,
                     std::string& KeyVal);
};

} // namespace voxmate
