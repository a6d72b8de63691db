// What every test of the modules starts from: fakes of the platform and of the main window.
#pragma once

#include "modules/Declarations.h"
#include "modules/Functions.h"
#include "modules/Messages.h"
#include "modules/Registry.h"
#include "tests/fakes/FakePlatform.h"

#include <gtest/gtest.h>

namespace voxmate
{

class ModuleTest : public ::testing::Test
{
protected:
    fakes::FakePlatform fake;
    fakes::FakeMainWindow window{fake.log};

    ModuleTest() { BeginProgram(fake.platform, window); }
    ~ModuleTest() override { WordApp.reset(); } // it belongs to this test's platform

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
