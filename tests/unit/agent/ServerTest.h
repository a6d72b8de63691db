// A character server with a small character, a stage and a voice that are played by the test, and a log of all events.
#pragma once

#include "agent/Server.h"
#include "tests/fakes/FakeStage.h"
#include "tests/fakes/FakeVoiceOutput.h"
#include "tests/unit/agent/Bo.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::agent::test
{

class ServerTest : public testing::Test
{
protected:
    ServerTest()
    {
        const auto mouse = [this](const char* what) {
            return [this, what](const std::string& character, int button, int shift, int x, int y) {
                Note(std::string(what) + " " + character + " " + std::to_string(button) + "/" + std::to_string(shift) +
                     " " + std::to_string(x) + "," + std::to_string(y));
            };
        };
        server.Click = mouse("click");
        server.DblClick = mouse("dblclick");
        server.DragStart = mouse("dragstart");
        server.DragComplete = mouse("dragcomplete");
        server.Shown = [this](const std::string& character, VisibilityCause cause) {
            Note("shown " + character + " " + std::to_string(static_cast<int>(cause)));
        };
        server.Hidden = [this](const std::string& character, VisibilityCause cause) {
            Note("hidden " + character + " " + std::to_string(static_cast<int>(cause)));
        };
        server.Command = [this](const std::string& name) { Note("command " + name); };
        server.RequestStart = [this](const AgentRequestPtr& request) { Note("start " + names[request]); };
        server.RequestComplete = [this](const AgentRequestPtr& request) {
            Note("end " + names[request] + " " + std::to_string(static_cast<int>(request->Status())));
        };
        server.Bookmark = [this](int number) { Note("bookmark " + std::to_string(number)); };
    }

    AgentCharacter& Load(const std::string& name = "Bo")
    {
        server.Load(name, name + ".acs");
        return server.Characters(name);
    }
    /// Loads the character and shows it in its neutral pose; the log is empty afterwards.
    AgentCharacter& LoadShown(const std::string& name = "Bo")
    {
        AgentCharacter& character = Load(name);
        character.Show(true);
        stage.Settle();
        log.clear();
        return character;
    }
    /// Gives a request the name under which it is logged.
    AgentRequestPtr Named(const std::string& name, AgentRequestPtr request)
    {
        names[request] = name;
        return request;
    }
    void Note(const std::string& what) { log.push_back(what); }
    /// What was logged since the last call.
    std::vector<std::string> Log() { return std::exchange(log, {}); }
    /// The numbers of the pictures that the window was given since the last call.
    std::vector<int> Pictures()
    {
        std::vector<int> numbers;
        auto& frames = stage.Window().frames;
        for (const Bitmap& frame : frames)
            numbers.push_back(static_cast<int>(frame.pixels.front() >> 16 & 0xFF));
        frames.clear();
        stage.Window().frameTimes.clear();
        return numbers;
    }
    static int StatusOf(const AgentRequestPtr& request) { return static_cast<int>(request->Status()); }

    AcsDescription description = Bo();
    fakes::FakeStage stage;
    fakes::FakeVoiceOutput voice;
    Server server{stage, voice,
                  [this](const std::string& path) { return AcsFile::Parse(WriteAcs(description), path); }};
    std::map<AgentRequestPtr, std::string> names;
    std::vector<std::string> log;
};

using Lines = std::vector<std::string>;
using Numbers = std::vector<int>;

} // namespace voxmate::agent::test
