// When and how a character with nothing to do moves. There are three levels; the longer it has been left alone, the
// higher its level.
#pragma once

#include "agent/Stage.h"

#include <array>
#include <cstdint>
#include <vector>

namespace voxmate::agent
{

class Idling
{
public:
    Idling(Stage& stage, const AcsFile& file);

    /// The pause between two idle animations is GapMinimum to GapMinimum + GapSpread milliseconds, at random.
    static constexpr int GapMinimum = 3000;
    static constexpr int GapSpread = 4000;
    /// Levels 2 and 3 begin this many milliseconds after the last request or press on the character.
    static constexpr std::int64_t Level2After = 120'000;
    static constexpr std::int64_t Level3After = 300'000;

    /// Milliseconds until the next idle animation of a character left alone since `since` (by the stage's clock); -1
    /// when there will be none.
    int Delay(std::int64_t since);
    /// One of the animations of the level reached, or of the next lower level that has any, at random; null when there
    /// is none. In a file with a state Breathing none comes again before three others have, as far as there are so
    /// many, and with `blinks`, as one who blinks anyway, the animation Blink is not chosen.
    const Animation* Choose(std::int64_t since, bool blinks);

private:
    static constexpr std::size_t OthersBetween = 3;

    const std::vector<const Animation*>* LevelNow(std::int64_t since) const;

    Stage& stage_;
    std::array<std::vector<const Animation*>, 3> levels_;
    const bool breathes_;                  ///< the file has the state Breathing
    std::vector<const Animation*> lately_; ///< those chosen last, the last one first
};

/// The animations of a state that exist and have frames, in the file's order. Only the state's first 100 names count.
std::vector<const Animation*> StateAnimations(const AcsFile& file, const char* state);

/// One of `animations` at random; null when there is none.
const Animation* PickAnimation(Stage& stage, const std::vector<const Animation*>& animations);

} // namespace voxmate::agent
