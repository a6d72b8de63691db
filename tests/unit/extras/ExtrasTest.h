// What tests of the extras start from: the program with its main window and all extras, over fakes.
#pragma once

#include "extras/Extras.h"
#include "tests/fakes/FakeActivation.h"
#include "tests/fakes/FakeAutostart.h"
#include "tests/fakes/FakeDocuments.h"
#include "tests/fakes/FakeGlobalKeys.h"
#include "tests/fakes/FakeMediaControls.h"
#include "tests/fakes/FakeNotifications.h"
#include "tests/fakes/FakePower.h"
#include "tests/fakes/FakePresence.h"
#include "tests/fakes/FakeQuiet.h"
#include "tests/fakes/FakeSounds.h"
#include "tests/fakes/FakeState.h"
#include "tests/fakes/FakeWindowPlaces.h"
#include "tests/fakes/FakeWording.h"
#include "tests/fakes/ProgramTest.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace voxmate
{

using Lines = std::vector<std::string>;

class ExtrasTest : public ProgramTest
{
protected:
    fakes::FakeState state;
    fakes::FakeAutostart login;
    fakes::FakeActivation desktop{fake.log};
    fakes::FakeMediaControls media;
    fakes::FakeGlobalKeys keys;
    CharacterLook look{"Bo", "A robot", 2345678};
    std::string lookFault; ///< what is wrong with every character file; empty: nothing
    fakes::FakeDocuments documents;
    fakes::FakeWindowPlaces places;
    fakes::FakeWording wording;
    bool savesText = true; ///< whether the extras can write text files
    fakes::FakeSounds sounds{fake.log};
    fakes::FakePresence presence;
    fakes::FakeNotifications notifications{fake.log};
    fakes::FakeQuiet quiet;
    fakes::FakeQuiet characterQuiet;
    fakes::FakePower power;
    frmMain form{program};
    Extras extras{program,
                  form,
                  {state, login, desktop, media, keys,
                   [this](const std::string& path) {
                       fake.log.push_back("Look " + path);
                       if (!lookFault.empty())
                           throw std::runtime_error(lookFault);
                       return look;
                   },
                   [this](const std::string& path) { return documents.Read(path); },
                   [this](const std::string& path) { return documents.Fingerprint(path); }, places, wording,
                   [this](const std::string& path, const std::string& text) {
                       fake.log.push_back("Save " + path);
                       if (savesText)
                           fake.files.texts[path] = text;
                       return savesText;
                   },
                   sounds.Host(), presence, notifications, quiet, characterQuiet, power}};

    ExtrasTest()
    {
        documents.texts = &fake.files.texts;
        fake.StoreDefaults();
        fake.store.SetDword("GreetingEnabled", 0);
        fake.store.SetDword("ShowTipAtStartUp", 0);
        fake.store.SetDword("ReadMessages", 0);
    }
    /// Starts the program as from the command line; the splash does not wait.
    void Begin(const CommandLine& line = {})
    {
        extras.Begin(line, [this] { StartMain(); });
        fake.log.clear();
    }
    Timer& TimerOf(const std::string& name) { return dynamic_cast<Timer&>(*form.Find(name)); }
    Menu& Item(const std::string& name) { return dynamic_cast<Menu&>(*form.Find(name)); }
    void OpenMenu() { Item("mnuExtras").UserClick(); }
    fakes::FakeRequest& LastSpoken() { return dynamic_cast<fakes::FakeRequest&>(*program.Voice.LastSpeakRequest); }
    /// The texts of the boxes shown so far, with their titles in front.
    Lines Boxes() const
    {
        Lines texts;
        for (const auto& box : fake.windows.boxes)
            texts.push_back(box.title + ": " + box.text);
        return texts;
    }
    bool Logged(const std::string& call) const
    {
        return std::find(fake.log.begin(), fake.log.end(), call) != fake.log.end();
    }
};

} // namespace voxmate
