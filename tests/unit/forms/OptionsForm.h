// What the tests of the options dialog start from: the dialog, open on settings that are all at their defaults, and a
// character.
#pragma once

#include "forms/frmOptions.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/ProgramTest.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace voxmate
{

using Lines = std::vector<std::string>;

class OptionsFormTest : public ProgramTest
{
protected:
    fakes::FakeMainWindow window{fake.log};
    frmOptions form{program};

    OptionsFormTest()
    {
        program.Main = &window;
        fake.StoreDefaults();
        LoadSettings();
        SearchPath = Settings.CharacterPath;
        FindCharacters(false);
        LoadCharacter("Alfa", true);
    }

    void Open()
    {
        form.Show();
        fake.log.clear();
    }
    fakes::FakeCharacter& Alfa() { return fake.Loaded("Alfa"); }

    /// The lines of the log that begin so, without that beginning.
    Lines Logged(const std::string& beginning) const
    {
        Lines found;
        for (const std::string& line : fake.log) {
            if (line.starts_with(beginning))
                found.push_back(line.substr(beginning.size()));
        }
        return found;
    }
};

/// Notes that its control was given the keyboard.
class FocusPeer : public Peer
{
public:
    int focused = 0;
    void Update(Property) override {}
    void SetFocus() override { ++focused; }
};

} // namespace voxmate
