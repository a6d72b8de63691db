// The quiet movement of a character that stands and waits: it breathes and blinks, below and between its idle plays. A
// file has it when its state Breathing names animations. Each begins and ends in the neutral pose and never goes far
// from it, so that it can be broken off at any frame. Other readers of the format do not know the state.
#pragma once

#include "agent/Stage.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace voxmate::agent
{

class Breathing
{
public:
    /// `show` is called with every frame when it is due. The references outlive this object.
    Breathing(Stage& stage, const AcsFile& file, std::function<void(const Frame&)> show);

    /// Begins, unless the file has nothing for it or it goes on already.
    void Begin();
    /// Ends at once, without showing another frame.
    void Stop();
    /// Whether it goes on half as fast, as that of one who dozes off does. Holds from the next frame on.
    void SetSlow(bool slow) { slow_ = slow; }
    /// The frame on show; null while it does not go on.
    const Frame* Shown() const { return shown_; }
    /// Whether it goes on, with blinks.
    bool Blinks() const { return shown_ && breaths_[breath_].half && breaths_[breath_].shut; }

    /// People at rest blink some 17 times a minute, at irregular intervals whose logarithms spread by a half.
    static constexpr int BlinksAMinute = 17;
    static constexpr double BlinkSpread = 0.5;
    /// The shortest and the longest interval in milliseconds.
    static constexpr int ShortestInterval = 600;
    static constexpr int LongestInterval = 15000;
    /// How long lids close, stay shut and open again, in milliseconds.
    static constexpr int LidsClose = 100;
    static constexpr int LidsShut = 50;
    static constexpr int LidsOpen = 150;
    /// An animation takes from ShortestPace to ShortestPace + PaceSpread percent of its time, at random, and is
    /// followed by a pause of up to PauseSpread milliseconds: no two breaths are alike.
    static constexpr int ShortestPace = 90;
    static constexpr int PaceSpread = 25;
    static constexpr int PauseSpread = 700;

private:
    enum class Lids { Open, Closing, Shut, Opening };
    /// An animation, and the same movement with lids half and wholly shut; null where the file does not have those.
    struct Breath {
        const Animation* open = nullptr;
        const Animation* half = nullptr;
        const Animation* shut = nullptr;
    };

    void Draw();
    void Wait();
    void Tick();
    void Advance();
    void MoveLids();
    void NextBreath();
    int BlinkInterval();
    double Even();

    Stage& stage_;
    std::function<void(const Frame&)> show_;
    std::vector<Breath> breaths_;
    std::size_t breath_ = 0;
    std::size_t at_ = 0; ///< number of the frame in the animation with open lids
    int since_ = 0;      ///< when that frame begins in its animation, in 1/100 s
    int pace_ = 100;     ///< percent
    bool slow_ = false;
    bool begun_ = false;  ///< has ever begun, so that the lids have a time
    bool pauses_ = false; ///< stands in the last frame
    Lids lids_ = Lids::Open;
    std::int64_t due_ = 0;     ///< when the frame's time is over, by the stage's clock
    std::int64_t lidsDue_ = 0; ///< when the lids move next
    const Frame* shown_ = nullptr;
    std::unique_ptr<StageTimer> timer_;
};

} // namespace voxmate::agent
