#include "extras/LivelyCharacter.h"

#include <utility>

namespace voxmate
{

namespace
{

constexpr const char* StillName = "character.still";

} // namespace

LivelyCharacter::LivelyCharacter(ExtrasMenu& menu, Program& program, Form& main, Presence& user, Quiet& quiet,
                                 Power& power, StateStore& state)
    : program_(program), user_(user), quiet_(quiet), power_(power), state_(state),
      tmrLively_(&main, "tmrLively", LookInterval, true)
{
    menu.AddSwitch(
        "mnuLively", "Character &Breathes", [this] { return IsOn(); },
        [this](bool on) {
            state_.Set(StillName, on ? "" : "1");
            Tell();
        });
    quiet_.Answered = [this](bool quiet) {
        asking_ = false;
        leftAlone_ = quiet;
        Tell();
    };
    tmrLively_.Tick = [this] { Look(); };
    Tell();
}

LivelyCharacter::~LivelyCharacter()
{
    quiet_.Answered = nullptr;
}

bool LivelyCharacter::IsOn() const
{
    return state_.Get(StillName) != "1";
}

void LivelyCharacter::Look()
{
    Tell();
    // What would change nothing is not asked.
    if (!IsOn() || told_ == IdleLife::None || --looks_ > 0)
        return;
    looks_ = LooksToAsk;
    onBattery_ = power_.OnBattery();
    if (!std::exchange(asking_, true))
        quiet_.Ask();
    Tell();
}

IdleLife LivelyCharacter::Now()
{
    if (!IsOn())
        return IdleLife::PlaysOnly;
    const std::chrono::milliseconds since = user_.Idle().value_or(user_.IdleHere());
    if (since >= Asleep)
        return IdleLife::None;
    if (onBattery_ || leftAlone_)
        return IdleLife::PlaysOnly;
    return since >= Drowsy ? IdleLife::Slow : IdleLife::Full;
}

void LivelyCharacter::Tell()
{
    const IdleLife life = Now();
    if (std::exchange(told_, life) != life)
        program_.Host.Agent.SetIdleLife(life);
}

} // namespace voxmate
