// What every test of the modules starts from: fakes of the platform and of the main window.
#pragma once

#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/ProgramTest.h"

namespace voxmate
{

using Lines = std::vector<std::string>;

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
    /// What was spoken and played, in order, without the voice's tags and the pose that ends each speech.
    Lines Spoken() const
    {
        Lines spoken;
        for (const std::string& call : fake.log) {
            constexpr std::string_view prefix = "Speak \\Pit=50\\ \\Spd=156\\";
            if (call.starts_with(prefix))
                spoken.push_back(call.substr(prefix.size()));
            else if (call.starts_with("Play ") && call != "Play RestPose")
                spoken.push_back("[" + call.substr(5) + "]");
        }
        return spoken;
    }
};

} // namespace voxmate
