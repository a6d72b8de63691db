// What every test of the modules starts from: fakes of the platform and of the main window.
#pragma once

#include "tests/fakes/ProgramTest.h"

namespace voxmate
{

class ModuleTest : public ProgramTest
{
protected:
    fakes::FakeMainWindow window{fake.log};

    ModuleTest() { program.Main = &window; }

    /// Loads settings and a character so that speech goes to it, and empties the log.
    fakes::FakeCharacter& WithCharacter()
    {
        fake.StoreDefaults();
        LoadSettings();
        Settings.SettingsErrorList.clear();
        Settings.ShowCharacterAtStart = 0;
        LoadCharacter("Alfa", true);
        Settings.ShowCharacterAtStart = 1;
        fake.log.clear();
        return fake.Loaded("Alfa");
    }
};

using Lines = std::vector<std::string>;

} // namespace voxmate
