// The character stands aside when it would cover what a window of the program shows, and comes back when it need not
// any more.
#pragma once

#include "extras/ExtrasMenu.h"
#include "modules/Program.h"
#include "platform/StateStore.h"
#include "platform/WindowPlaces.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace voxmate
{

class StandAside
{
public:
    /// Adds the item to the menu. `main` is the main window, not loaded yet. All references outlive this object.
    StandAside(ExtrasMenu& menu, Program& program, Form& main, WindowPlaces& places, StateStore& state);
    ~StandAside() { places_.Changed = nullptr; }
    StandAside(const StandAside&) = delete;
    StandAside& operator=(const StandAside&) = delete;

    /// Milliseconds between two looks while something is about to be done.
    static constexpr int LookInterval = 100;
    /// Looks until a window that has opened stands where the window manager wants it, and until it counts no more as
    /// one that has just opened. What the character then covers, the user has put under it.
    static constexpr int LooksToSettle = 2;
    static constexpr int LooksToAge = 6;
    /// Looks until the character goes home: another window may open in place of the one that has gone.
    static constexpr int LooksToReturn = 10;

private:
    struct Seen {
        WindowPlace Place;
        int Age = 0; ///< looks since it was opened or activated, to LooksToAge
    };

    enum class Next { Nothing, Wait, Return }; ///< what is still to be done after a look

    Program& program_;
    WindowPlaces& places_;
    StateStore& state_;
    Timer tmrAside_;
    std::map<std::uintptr_t, Seen> seen_; ///< the windows at the last look
    std::uintptr_t cause_ = 0;            ///< the window for which the character went aside last
    std::optional<CharacterPlace> home_;  ///< at the last look
    int returning_ = 0;                   ///< looks for which it could have gone home

    bool IsOn() const;
    void Look(bool tick);
    void NoteHome();
    bool Note(const std::vector<WindowPlace>& windows, bool tick);
    Next Consider(AgentCharacter& character);
    const WindowPlace* Covered(const Rect& figure, const Rect& area, bool onlyNew) const;
    bool GoAside(AgentCharacter& character, const WindowPlace& window, const Rect& area);
    bool MayReturn(AgentCharacter& character, const Rect& area) const;
};

} // namespace voxmate
