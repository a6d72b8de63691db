// When a character that has nothing to do may move, and how much: less while nobody looks, on battery, or while the
// user wants to be left alone.
#pragma once

#include "controls/Form.h"
#include "extras/ExtrasMenu.h"
#include "modules/Program.h"
#include "platform/Power.h"
#include "platform/Presence.h"
#include "platform/Quiet.h"
#include "platform/StateStore.h"

#include <chrono>
#include <optional>

namespace voxmate
{

class LivelyCharacter
{
public:
    /// `quiet` is this object's own: nobody else asks it.
    LivelyCharacter(ExtrasMenu& menu, Program& program, Form& main, Presence& user, Quiet& quiet, Power& power,
                    StateStore& state);
    ~LivelyCharacter();
    LivelyCharacter(const LivelyCharacter&) = delete;
    LivelyCharacter& operator=(const LivelyCharacter&) = delete;

    /// Switched on unless the user has switched it off: then the character stands still between its idle plays.
    bool IsOn() const;

    /// Milliseconds between two looks at the user, and how many looks are between two at desktop and battery.
    static constexpr int LookInterval = 2000;
    static constexpr int LooksToAsk = 3;
    /// After so long without an input the character breathes slowly, and later it stands still.
    static constexpr std::chrono::seconds Drowsy{60};
    static constexpr std::chrono::seconds Asleep{75};

private:
    Program& program_;
    Presence& user_;
    Quiet& quiet_;
    Power& power_;
    StateStore& state_;
    Timer tmrLively_;
    bool asking_ = false; ///< the desktop's answer is still to come
    bool leftAlone_ = false;
    bool onBattery_ = false;
    int looks_ = 0; ///< until desktop and battery are asked
    std::optional<IdleLife> told_;

    void Look();
    IdleLife Now();
    void Tell();
};

} // namespace voxmate
