// A character without a window, which logs what it is asked to do.
#pragma once

#include "platform/Agent.h"
#include "tests/fakes/FakeRequest.h"
#include "tests/fakes/Log.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeCharacter : public AgentCharacter, AgentBalloon, AgentCommands
{
public:
    FakeCharacter(Log& log, std::string name) : log_(log), name_(std::move(name)) {}

    std::vector<std::string> animations{"RestPose", "Show", "Hide", "Greet"};
    int originalWidth = 128;
    int originalHeight = 160;
    std::vector<std::uint32_t> styles; ///< every style that was set, in order
    std::string fontName;
    int fontSize = 0;
    int width = 0;
    int height = 0;
    std::string ttsModeId;
    std::vector<std::string> commands;
    bool visible = false;

    AgentRequestPtr Show(bool fast) override
    {
        visible = true;
        return Made(std::string("Show") + (fast ? " fast" : ""));
    }
    AgentRequestPtr Hide(bool fast) override
    {
        visible = false;
        return Made(std::string("Hide") + (fast ? " fast" : ""));
    }
    AgentRequestPtr Play(const std::string& animation) override { return Made("Play " + animation); }
    AgentRequestPtr Speak(std::string text, std::string url) override
    {
        return Made("Speak " + text + (url.empty() ? "" : " from " + url));
    }
    void Stop(const AgentRequestPtr&) override { log_.push_back("Stop"); }
    void StopAll(const std::string& types) override { log_.push_back("StopAll " + types); }
    AgentBalloon& Balloon() override { return *this; }
    AgentCommands& Commands() override { return *this; }
    int Width() const override { return width; }
    int Height() const override { return height; }
    void SetWidth(int value) override { width = value; }
    void SetHeight(int value) override { height = value; }
    int OriginalWidth() const override { return originalWidth; }
    int OriginalHeight() const override { return originalHeight; }
    std::string TTSModeID() const override { return ttsModeId; }
    void SetTTSModeID(const std::string& id) override
    {
        ttsModeId = id;
        log_.push_back("TTSModeID " + id);
    }
    std::vector<std::string> AnimationNames() const override { return animations; }
    bool Visible() const override { return visible; }

    CharacterPlace home{{1000, 500, 200, 200}, {1050, 520, 100, 180}};
    std::optional<CharacterPlace> aside;
    bool free = true; ///< whether it can walk now
    CharacterPlace Place() override { return aside.value_or(home); }
    CharacterPlace Home() override { return home; }
    std::optional<Size> balloon; ///< stands above the figure, in its middle
    std::optional<Rect> BalloonAt(Point window) override
    {
        if (!balloon)
            return std::nullopt;
        const int middle = window.x + home.Figure.Middle().x - home.Window.x;
        return Rect{middle - balloon->width / 2, window.y + home.Figure.y - home.Window.y - balloon->height,
                    balloon->width, balloon->height};
    }
    bool StandAside(Point window, Going how) override
    {
        if (!free)
            return false;
        aside = home;
        aside->Window.x = window.x;
        aside->Window.y = window.y;
        aside->Figure.x += window.x - home.Window.x;
        aside->Figure.y += window.y - home.Window.y;
        log_.push_back("StandAside " + std::to_string(window.x) + "," + std::to_string(window.y) +
                       (how == Going::AtOnce ? " at once" : ""));
        return true;
    }
    bool StandAtHome() override
    {
        if (!free)
            return false;
        aside.reset();
        log_.push_back("StandAtHome");
        return true;
    }
    /// The user drags it, so that the window's upper left corner comes to a point.
    void Drag(Point window)
    {
        StandAside(window, Going::Walk);
        log_.pop_back();
        home = *std::exchange(aside, std::nullopt);
    }

    std::uint32_t Style() const override { return styles.empty() ? 0 : styles.back(); }
    void SetStyle(std::uint32_t style) override { styles.push_back(style); }
    std::string FontName() const override { return fontName; }
    void SetFontName(const std::string& name) override { fontName = name; }
    int FontSize() const override { return fontSize; }
    void SetFontSize(int points) override { fontSize = points; }

    void Add(const std::string& name, const std::string& caption, const std::string& voice, bool enabled,
             bool isVisible) override
    {
        commands.push_back(name + "|" + caption + "|" + voice + (enabled ? "|enabled" : "") +
                           (isVisible ? "|visible" : ""));
    }

    AgentRequestPtr last; ///< what the last call returned
    std::vector<AgentRequestPtr> requests;

private:
    Log& log_;
    std::string name_;
    AgentRequestPtr Made(const std::string& call)
    {
        log_.push_back(call);
        last = std::make_shared<FakeRequest>();
        requests.push_back(last);
        return last;
    }
};

} // namespace voxmate::fakes
