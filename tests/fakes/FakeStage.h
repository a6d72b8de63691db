// A stage without a display: a clock that stands until the test moves it, windows that keep what they were told, and
// letters that are all 8 pixels wide.
#pragma once

#include "agent/Stage.h"
#include "base/Text.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace voxmate::fakes
{

class FakeStage : public agent::Stage
{
public:
    struct Character {
        std::vector<Bitmap> frames; ///< every picture it was given
        std::vector<std::int64_t> frameTimes;
        Size size;
        Point place;
        int moves = 0;
        bool visible = false;
        bool destroyed = false;
        bool busy = false;
        std::function<void()>* ready = nullptr;
        std::function<void(const agent::MouseEvent&)>* mouse = nullptr;
        std::function<void(const std::vector<std::string>&)>* filesDropped = nullptr;
        std::function<void(Point)>* moved = nullptr;
    };
    struct Balloon {
        std::vector<agent::BalloonView> views;
        bool visible = false;
        std::function<void(const agent::MouseEvent&)>* mouse = nullptr;
        std::function<void(const std::vector<std::string>&)>* filesDropped = nullptr;
    };

    std::unique_ptr<agent::CharacterWindow> CreateCharacterWindow() override
    {
        characters.push_back(std::make_shared<Character>());
        return std::make_unique<CharacterWindow>(*this, characters.back());
    }
    std::unique_ptr<agent::BalloonWindow> CreateBalloonWindow() override
    {
        balloons.push_back(std::make_shared<Balloon>());
        return std::make_unique<BalloonWindow>(*this, balloons.back());
    }

    Rect WorkArea(Point point) override
    {
        for (const Rect& area : workAreas)
            if (area.Contains(point))
                return area;
        return workAreas.front();
    }
    Rect PrimaryWorkArea() override { return workAreas.front(); }

    std::unique_ptr<agent::StageTimer> After(int milliseconds, std::function<void()> action) override
    {
        auto entry = std::make_shared<Entry>(Entry{now + milliseconds, nextNumber_++, std::move(action)});
        timers_.push_back(entry);
        return std::make_unique<Timer>(*this, std::move(entry));
    }
    /// The work is done when the stage comes to it, `workTime` milliseconds from now.
    std::unique_ptr<agent::StageWork> InBackground(std::function<void(std::stop_token)> work,
                                                   std::function<void()> done) override
    {
        return std::make_unique<Work>(After(workTime, [this, work = std::move(work), done = std::move(done)] {
            ++worksDone;
            work({});
            done();
        }));
    }
    std::int64_t Now() override { return now; }
    int Random(int bound) override { return random ? std::clamp(random(bound), 0, bound - 1) : 0; }

    int TextWidth(const agent::BalloonFont&, const std::string& text) override
    {
        ++measures;
        return static_cast<int>(Len(text)) * 8;
    }
    int LineHeight(const agent::BalloonFont& font) override { return font.points * 2; }
    int AverageCharWidth(const agent::BalloonFont&) override { return 8; }

    void PopupMenu(const std::vector<agent::MenuEntry>& entries, Point at,
                   std::function<void(const std::string& name)> chosen) override
    {
        menu = entries;
        menuAt = at;
        menuChosen = std::move(chosen);
    }
    void PlaySound(std::span<const std::uint8_t> wave) override { sounds.emplace_back(wave.begin(), wave.end()); }
    void StopSound() override { ++soundStops; }

    /// Lets the clock run for some milliseconds: every timer runs in its moment, those of one moment in order.
    void Run(int milliseconds)
    {
        const std::int64_t until = now + milliseconds;
        while (RunNext(until)) {
        }
        now = until;
    }
    /// Runs what is due already, and what that causes at once.
    void Settle() { Run(0); }
    /// The machine stands still for a while: the clock goes on, the timers come late.
    void Stall(int milliseconds) { now += milliseconds; }

    /// How many timers are waiting; the milliseconds to the next one, -1 when there is none.
    std::size_t Waiting() const { return timers_.size(); }
    int NextDue() const
    {
        const auto first = Earliest();
        return first == timers_.end() ? -1 : static_cast<int>(std::max<std::int64_t>(0, (*first)->due - now));
    }

    Character& Window() { return *characters.back(); }
    /// A mouse event on the last character's window, at a point within it.
    void Mouse(agent::MouseAction action, int button, Point at, int shift = 0)
    {
        const Character& window = Window();
        (*window.mouse)({action, button, shift, at, {window.place.x + at.x, window.place.y + at.y}});
    }
    /// The window manager puts the last character's window elsewhere.
    void MoveWindow(Point place)
    {
        Window().place = place;
        if (*Window().moved)
            (*Window().moved)(place);
    }
    /// The work areas become others.
    void ChangeScreens(std::vector<Rect> areas)
    {
        workAreas = std::move(areas);
        if (ScreensChanged)
            ScreensChanged();
    }
    bool BalloonVisible() const { return !balloons.empty() && balloons.back()->visible; }
    const agent::BalloonView& View() const { return balloons.back()->views.back(); }

    std::vector<Rect> workAreas{{0, 0, 1280, 720}}; ///< the first is the primary screen's
    std::int64_t now = 1000;
    std::function<int(int bound)> random; ///< without one every choice is 0
    std::vector<std::shared_ptr<Character>> characters;
    std::vector<std::shared_ptr<Balloon>> balloons;
    std::vector<agent::MenuEntry> menu;
    Point menuAt;
    std::function<void(const std::string& name)> menuChosen;
    std::vector<std::vector<std::uint8_t>> sounds;
    int soundStops = 0;
    int measures = 0; ///< texts measured
    int timersRun = 0;
    int workTime = 0; ///< milliseconds that work in the background takes
    int worksDone = 0;
    int characterWindows = 0; ///< that exist
    int balloonWindows = 0;

private:
    struct Entry {
        std::int64_t due = 0;
        std::int64_t number = 0;
        std::function<void()> action;
    };
    using Entries = std::vector<std::shared_ptr<Entry>>;

    class Timer : public agent::StageTimer
    {
    public:
        Timer(FakeStage& stage, std::shared_ptr<Entry> entry) : stage_(stage), entry_(std::move(entry)) {}
        ~Timer() override { std::erase(stage_.timers_, entry_); }

    private:
        FakeStage& stage_;
        std::shared_ptr<Entry> entry_;
    };

    class Work : public agent::StageWork
    {
    public:
        explicit Work(std::unique_ptr<agent::StageTimer> timer) : timer_(std::move(timer)) {}

    private:
        std::unique_ptr<agent::StageTimer> timer_;
    };

    class CharacterWindow : public agent::CharacterWindow
    {
    public:
        CharacterWindow(FakeStage& stage, std::shared_ptr<Character> state) : stage_(stage), state_(std::move(state))
        {
            ++stage_.characterWindows;
            state_->mouse = &Mouse;
            state_->filesDropped = &FilesDropped;
            state_->moved = &Moved;
            state_->ready = &Ready;
        }
        ~CharacterWindow() override
        {
            --stage_.characterWindows;
            state_->visible = false;
            state_->destroyed = true;
            state_->mouse = nullptr;
            state_->filesDropped = nullptr;
            state_->moved = nullptr;
            state_->ready = nullptr;
        }
        bool Busy() const override { return state_->busy; }
        void SetFrame(const agent::Picture& picture, Size size) override
        {
            state_->frames.push_back(*picture.bitmap);
            state_->frameTimes.push_back(stage_.now);
            state_->size = size;
        }
        void MoveTo(Point topLeft) override
        {
            state_->place = topLeft;
            ++state_->moves;
        }
        void SetVisible(bool visible) override { state_->visible = visible; }

    private:
        FakeStage& stage_;
        std::shared_ptr<Character> state_;
    };

    class BalloonWindow : public agent::BalloonWindow
    {
    public:
        BalloonWindow(FakeStage& stage, std::shared_ptr<Balloon> state) : stage_(stage), state_(std::move(state))
        {
            ++stage_.balloonWindows;
            state_->mouse = &Mouse;
            state_->filesDropped = &FilesDropped;
        }
        ~BalloonWindow() override
        {
            --stage_.balloonWindows;
            state_->visible = false;
            state_->mouse = nullptr;
            state_->filesDropped = nullptr;
        }
        void Show(const agent::BalloonView& view) override
        {
            state_->views.push_back(view);
            state_->visible = true;
        }
        void Hide() override { state_->visible = false; }

    private:
        FakeStage& stage_;
        std::shared_ptr<Balloon> state_;
    };

    Entries::const_iterator Earliest() const
    {
        return std::min_element(timers_.begin(), timers_.end(), [](const auto& a, const auto& b) {
            return std::pair{a->due, a->number} < std::pair{b->due, b->number};
        });
    }

    bool RunNext(std::int64_t until)
    {
        const auto first = Earliest();
        if (first == timers_.end() || (*first)->due > until)
            return false;
        const std::shared_ptr<Entry> entry = *first;
        timers_.erase(first);
        now = std::max(now, entry->due);
        ++timersRun;
        entry->action();
        return true;
    }

    Entries timers_;
    std::int64_t nextNumber_ = 0;
};

} // namespace voxmate::fakes
