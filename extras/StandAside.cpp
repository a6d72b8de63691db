#include "extras/StandAside.h"

#include "extras/NearestFree.h"

#include <algorithm>
#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* StaysName = "character.stays";

/// Where an alert will be that slides up from the lower edge of the work area.
Rect Arrived(Rect alert, const Rect& area)
{
    alert.y = std::min(alert.y, area.Bottom() - alert.height);
    return alert;
}

bool Covers(const Rect& figure, const WindowPlace& window, const Rect& area)
{
    return std::ranges::any_of(window.Controls, [&](const Rect& control) {
        return Overlap(figure, window.Alert ? Arrived(control, area) : control);
    });
}

} // namespace

StandAside::StandAside(ExtrasMenu& menu, Program& program, Form& main, WindowPlaces& places, StateStore& state)
    : program_(program), places_(places), state_(state), tmrAside_(&main, "tmrAside", LookInterval, false)
{
    menu.BeginGroup();
    Menu& item = menu.AddSwitch(
        "mnuStandAside", "&Character Stands Aside", [this] { return IsOn(); },
        [this](bool on) {
            state_.Set(StaysName, on ? "0" : "1");
            Look(false);
        });
    menu.WhenOpened([this, &item] {
        if (places_.Known())
            return;
        item.Caption = "&Character Stands Aside (not on this desktop)";
        item.Enabled = false;
    });
    tmrAside_.Tick = [this] { Look(true); };
    places_.Changed = [this] { Look(false); };
}

bool StandAside::IsOn() const
{
    return places_.Known() && state_.Get(StaysName) != "1";
}

void StandAside::Look(bool tick)
{
    NoteHome();
    bool again = Note(places_.Windows(), tick);
    bool returns = false;
    if (program_.Character) {
        const Next next = Consider(*program_.Character);
        returns = next == Next::Return;
        again = again || next != Next::Nothing;
    }
    returning_ = returns ? returning_ + (tick ? 1 : 0) : 0;
    // Not set again: that would begin its interval anew, and a sliding alert is told of more often.
    if (tmrAside_.Enabled != again)
        tmrAside_.Enabled = again;
}

// Where the user has put the character it stays, whatever it covers of the windows that there were.
void StandAside::NoteHome()
{
    std::optional<CharacterPlace> home;
    if (program_.Character)
        home = program_.Character->Home();
    if (const auto before = std::exchange(home_, home); before && before != home) {
        for (auto& [id, seen] : seen_)
            seen.Age = LooksToAge;
    }
}

// Takes over what windows there are. True while one of them has just opened.
bool StandAside::Note(const std::vector<WindowPlace>& windows, bool tick)
{
    std::map<std::uintptr_t, Seen> now;
    for (const WindowPlace& window : windows) {
        Seen seen{window};
        const auto before = seen_.find(window.Id);
        const bool opened = before == seen_.end() || (window.Active && !before->second.Place.Active) ||
                            window.Page != before->second.Place.Page ||
                            (window.Alert && window.Controls != before->second.Place.Controls);
        if (!opened)
            seen.Age = std::min(before->second.Age + (tick ? 1 : 0), LooksToAge);
        now.emplace(window.Id, std::move(seen));
    }
    seen_ = std::move(now);
    return std::ranges::any_of(seen_, [](const auto& entry) { return entry.second.Age < LooksToAge; });
}

StandAside::Next StandAside::Consider(AgentCharacter& character)
{
    const CharacterPlace place = character.Place();
    const CharacterPlace home = character.Home();
    const Rect area = places_.WorkArea(place.Window.Middle());
    if (!IsOn())
        return place == home || character.StandAtHome() ? Next::Nothing : Next::Wait;
    if (const WindowPlace* window = Covered(place.Figure, area, true))
        return GoAside(character, *window, area) ? Next::Nothing : Next::Wait;
    if (place == home || !MayReturn(character, area))
        return Next::Nothing;
    return returning_ >= LooksToReturn && character.StandAtHome() ? Next::Nothing : Next::Return;
}

// A window of which the figure covers something; with `onlyNew` one that has just opened and stands in its place.
const WindowPlace* StandAside::Covered(const Rect& figure, const Rect& area, bool onlyNew) const
{
    for (const auto& [id, seen] : seen_) {
        const bool isNew = seen.Age < LooksToAge && (seen.Place.Alert || seen.Age >= LooksToSettle);
        if ((isNew || !onlyNew) && Covers(figure, seen.Place, area))
            return &seen.Place;
    }
    return nullptr;
}

// False when the character cannot go now.
bool StandAside::GoAside(AgentCharacter& character, const WindowPlace& window, const Rect& area)
{
    std::vector<Rect> taken;
    std::vector<Rect> columns; // other alerts come above the first one
    std::vector<Rect> alerts;
    for (const auto& [id, seen] : seen_) {
        for (const Rect& control : seen.Place.Controls) {
            if (seen.Place.Alert)
                alerts.push_back(Arrived(control, area));
            taken.push_back(seen.Place.Alert ? Arrived(control, area) : control);
            columns.push_back(seen.Place.Alert ? Rect{control.x, area.y, control.width, area.height} : control);
        }
    }
    const auto balloonAt = [&character](Point corner) { return character.BalloonAt(corner); };
    // The balloon goes again by itself, so it gives way first.
    std::optional<Point> there = NearestFree(character.Place(), area, columns, balloonAt);
    if (!there)
        there = NearestFree(character.Place(), area, columns);
    if (!there)
        there = NearestFree(character.Place(), area, taken);
    if (!there && window.Alert)
        there = NearestFree(character.Place(), area, alerts);
    if (!there)
        return true; // it stays: there is no better place
    cause_ = window.Id;
    // An alert is there in less time than a walk takes.
    return character.StandAside(*there, window.Alert ? Going::AtOnce : Going::Walk);
}

// The window for which it went has been closed or left, and nothing is covered at home.
bool StandAside::MayReturn(AgentCharacter& character, const Rect& area) const
{
    const auto cause = seen_.find(cause_);
    return (cause == seen_.end() || !cause->second.Place.Active) && !Covered(character.Home().Figure, area, false);
}

} // namespace voxmate
