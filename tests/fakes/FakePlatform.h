// Fakes of every platform interface. They share one log, so that a test sees calls in their order across interfaces.
#pragma once

#include "modules/Program.h"
#include "platform/Platform.h"
#include "tests/fakes/FakeAgent.h"
#include "tests/fakes/FakeClock.h"
#include "tests/fakes/FakeFiles.h"
#include "tests/fakes/FakeProcess.h"
#include "tests/fakes/FakeSettingsStore.h"
#include "tests/fakes/FakeSpeech.h"
#include "tests/fakes/FakeWindows.h"
#include "tests/fakes/FakeWord.h"
#include "tests/fakes/Log.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace voxmate::fakes
{

/// All of them, wired into one Platform, with two engines and two characters in place, and a program over it.
struct FakePlatform {
    Log log;
    FakeSettingsStore store{log};
    FakeAgent agent{log};
    FakeSpeech speech;
    FakeWindows windows{log};
    FakeFiles files;
    FakeProcess process{log};
    FakeClock clock;
    FakeWord word{log};
    Platform platform{store, agent, speech, windows, files, process, clock, word};
    Program program{platform};

    FakePlatform()
    {
        speech.engines = {{"First Voice", "11111111-0000-8000-8000-000000000001"},
                          {"Second Voice", "22222222-0000-8000-8000-000000000002"}};
        AddCharacters("C:\\Chars\\", {"Alfa", "Bravo"});
    }
    void AddCharacters(const std::string& folder, const std::vector<std::string>& names)
    {
        files.folders.insert(folder);
        for (const std::string& name : names)
            files.files.insert(folder + name + ".acs");
    }
    FakeCharacter& Loaded(const std::string& name) { return *agent.loaded.at(name); }

    /// Puts every setting of the catalogue in place with its default, and a characters folder, a character and an
    /// engine that exist.
    void StoreDefaults()
    {
        for (const SettingRow& row : SettingsCatalogue()) {
            if (std::holds_alternative<std::int16_t SettingsRecord::*>(row.field))
                store.SetDword(row.name, static_cast<std::uint32_t>(row.defaultNumber));
            else
                store.SetText(row.name, row.defaultText);
        }
        store.SetText("CharacterPath", "C:\\Chars\\");
        store.SetText("LastCharacter", "Alfa");
        store.SetText("LastSpeechEngine", "First Voice");
    }
    /// While the next message is spoken another one comes, with a box of its own.
    void LetAnotherMessageCome()
    {
        windows.whilePending = [this] {
            windows.whilePending = nullptr;
            program.Characters.LoadCharacter("Nobody", false);
        };
    }
    /// Runs something that ends the program; true when it did.
    template <class Body>
    bool Ends(Body body)
    {
        try {
            body();
        } catch (const ProgramEnded&) {
            return true;
        }
        return false;
    }
};

} // namespace voxmate::fakes
