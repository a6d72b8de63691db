// The characters that ship: they have all the animations the program calls, and nothing in them jumps.
#include "agent/file/AcsFile.h"
#include "speech/sound/WaveFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>

using namespace voxmate;
using namespace voxmate::agent;

namespace
{

std::vector<std::string> Shipped()
{
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::directory_iterator(VOXMATE_CHARACTERS))
        files.push_back(entry.path().stem().string());
    return files;
}

class ShippedCharacterTest : public testing::TestWithParam<std::string>
{
protected:
    void SetUp() override
    {
        file = AcsFile::Open(VOXMATE_CHARACTERS "/" + GetParam() + ".acs");
        const Animation* animation = file->FindAnimation("RestPose");
        ASSERT_TRUE(animation);
        ASSERT_EQ(animation->frames.size(), 1u);
        rest = ComposeFrame(*file, animation->frames[0], -1);
    }
    const Animation& Named(const std::string& name) const
    {
        const Animation* animation = file->FindAnimation(name);
        if (animation == nullptr)
            throw std::runtime_error("no animation " + name);
        return *animation;
    }
    // The frames shown when the animation plays to its end, following the branches that are always taken.
    static std::vector<std::size_t> Played(const Animation& animation)
    {
        std::vector<std::size_t> order;
        for (std::size_t at = 0; at < animation.frames.size() && order.size() < 1000;) {
            order.push_back(at);
            const auto& branches = animation.frames[at].branches;
            at = !branches.empty() && branches[0].percent == 100 ? branches[0].frame : at + 1;
        }
        return order;
    }
    // The frame in which an animation ends when nothing interrupts it.
    static const Frame& Last(const Animation& animation)
    {
        const Frame* last = nullptr;
        for (const std::size_t at : Played(animation))
            if (animation.frames[at].duration > 0)
                last = &animation.frames[at];
        if (last == nullptr)
            throw std::runtime_error("nothing to see in " + animation.name);
        return *last;
    }
    static int Duration(const Animation& animation)
    {
        int sum = 0;
        for (const std::size_t at : Played(animation))
            sum += animation.frames[at].duration;
        return sum;
    }
    static std::size_t Drawn(const Bitmap& bitmap)
    {
        std::size_t count = 0;
        for (const std::uint32_t pixel : bitmap.pixels)
            count += pixel != 0 ? 1 : 0;
        return count;
    }

    std::shared_ptr<const AcsFile> file;
    Bitmap rest;
};

// The standard animation set, by which programs call a character without knowing it.
const std::vector<std::string> StandardSet{"Acknowledge",
                                           "Alert",
                                           "Announce",
                                           "Blink",
                                           "Confused",
                                           "Congratulate",
                                           "Decline",
                                           "DoMagic1",
                                           "DoMagic2",
                                           "DontRecognize",
                                           "Explain",
                                           "GestureDown",
                                           "GestureLeft",
                                           "GestureRight",
                                           "GestureUp",
                                           "GetAttention",
                                           "GetAttentionContinued",
                                           "GetAttentionReturn",
                                           "Greet",
                                           "Hearing_1",
                                           "Hearing_2",
                                           "Hearing_3",
                                           "Hide",
                                           "Idle1_1",
                                           "Idle1_2",
                                           "Idle1_3",
                                           "Idle1_4",
                                           "Idle2_1",
                                           "Idle2_2",
                                           "Idle3_1",
                                           "Idle3_2",
                                           "LookDown",
                                           "LookDownReturn",
                                           "LookLeft",
                                           "LookLeftReturn",
                                           "LookRight",
                                           "LookRightReturn",
                                           "LookUp",
                                           "LookUpReturn",
                                           "MoveDown",
                                           "MoveDownReturn",
                                           "MoveLeft",
                                           "MoveLeftReturn",
                                           "MoveRight",
                                           "MoveRightReturn",
                                           "MoveUp",
                                           "MoveUpReturn",
                                           "Pleased",
                                           "Process",
                                           "Processing",
                                           "Read",
                                           "ReadContinued",
                                           "ReadReturn",
                                           "Reading",
                                           "RestPose",
                                           "Sad",
                                           "Search",
                                           "Searching",
                                           "Show",
                                           "StartListening",
                                           "StopListening",
                                           "Suggest",
                                           "Surprised",
                                           "Think",
                                           "Thinking",
                                           "Uncertain",
                                           "Wave",
                                           "Write",
                                           "WriteContinued",
                                           "WriteReturn",
                                           "Writing"};

// Poses held for talking, besides the one at rest.
const std::vector<std::string> TalkingPoses{"Greet", "Announce", "Suggest", "Explain", "GestureLeft", "GestureRight"};

// How much the drawn parts of two frames differ: the share of pixels that differ among those drawn in either.
double Difference(const Bitmap& a, const Bitmap& b)
{
    std::size_t drawn = 0;
    std::size_t other = 0;
    for (std::size_t i = 0; i < a.pixels.size(); ++i) {
        if ((a.pixels[i] | b.pixels[i]) == 0)
            continue;
        ++drawn;
        other += (a.pixels[i] == 0) != (b.pixels[i] == 0) ? 1 : 0;
    }
    return drawn == 0 ? 0 : static_cast<double>(other) / static_cast<double>(drawn);
}

} // namespace

TEST_P(ShippedCharacterTest, HasItsNameAndASize)
{
    ASSERT_FALSE(file->names.empty());
    EXPECT_EQ(file->names[0].name, GetParam());
    EXPECT_FALSE(file->names[0].description.empty());
    int top = rest.height;
    int bottom = 0;
    for (int y = 0; y < rest.height; ++y)
        for (int x = 0; x < rest.width; ++x)
            if (rest.pixels[static_cast<std::size_t>(y * rest.width + x)] != 0) {
                top = std::min(top, y);
                bottom = y + 1;
            }
    EXPECT_GE(bottom - top, 128);
    EXPECT_LE(bottom - top, 200);
}

TEST_P(ShippedCharacterTest, HasTheWholeStandardAnimationSet)
{
    EXPECT_TRUE(file->flags & FlagStandardSet);
    for (const std::string& name : StandardSet) {
        const Animation* animation = file->FindAnimation(name);
        ASSERT_TRUE(animation) << name;
        EXPECT_EQ(animation->name, name);
        EXPECT_FALSE(animation->frames.empty()) << name;
    }
}

TEST_P(ShippedCharacterTest, HasItsStates)
{
    std::set<std::string> idle;
    for (const char* name : {"Showing", "Hiding", "Speaking", "IdlingLevel1", "IdlingLevel2", "IdlingLevel3",
                             "Listening", "Hearing", "MovingLeft", "MovingRight", "MovingUp", "MovingDown",
                             "GesturingLeft", "GesturingRight", "GesturingUp", "GesturingDown"}) {
        const auto* state = file->FindState(name);
        ASSERT_TRUE(state) << name;
        ASSERT_FALSE(state->empty()) << name;
        for (const std::string& animation : *state) {
            EXPECT_TRUE(file->FindAnimation(animation)) << name << " " << animation;
            if (std::string(name).starts_with("Idling"))
                idle.insert(animation);
        }
    }
    EXPECT_GE(idle.size(), 8u);
}

TEST_P(ShippedCharacterTest, SpeaksWithSevenMouthsThatAllLookDifferent)
{
    std::vector<std::string> speaking = *file->FindState("Speaking");
    speaking.push_back("RestPose");
    speaking.insert(speaking.end(), TalkingPoses.begin(), TalkingPoses.end());
    for (const std::string& name : speaking) {
        const Frame& frame = Last(Named(name));
        EXPECT_EQ(frame.overlays.size(), 7u) << name;
        std::set<std::vector<std::uint32_t>> pictures;
        for (int mouth = 0; mouth < MouthCount; ++mouth)
            pictures.insert(ComposeFrame(*file, frame, mouth).pixels);
        EXPECT_EQ(pictures.size(), 7u) << name;
    }
}

TEST_P(ShippedCharacterTest, TalksFromItsRestPoseOnWithAMouthInEveryFrame)
{
    const auto& talks = *file->FindState("Speaking");
    EXPECT_GE(talks.size(), 2u);
    for (const std::string& name : talks) {
        const Animation& talk = Named(name);
        EXPECT_GT(talk.frames.size(), 30u) << name;
        EXPECT_TRUE(talk.frames.front().images == Named("RestPose").frames.front().images) << name;
        EXPECT_TRUE(Last(talk).images == talk.frames.front().images) << name;
        for (std::size_t i = 0; i < talk.frames.size(); ++i)
            EXPECT_EQ(talk.frames[i].overlays.size(), 7u) << name << " " << i;
    }
}

TEST_P(ShippedCharacterTest, BreathesBetweenEightAndTwelvePicturesASecondAndStaysNearItsRestPose)
{
    const auto& breaths = *file->FindState("Breathing");
    EXPECT_EQ(file->FindState("BreathingHalfShut")->size(), breaths.size());
    EXPECT_EQ(file->FindState("BreathingShut")->size(), breaths.size());
    for (const std::string& name : breaths) {
        const Animation& breath = Named(name);
        EXPECT_TRUE(breath.frames.front().images == Named("RestPose").frames.front().images) << name;
        EXPECT_TRUE(Last(breath).images == breath.frames.front().images) << name;
        const double aSecond = 100.0 * static_cast<double>(breath.frames.size()) / Duration(breath);
        EXPECT_GE(aSecond, 8) << name;
        EXPECT_LE(aSecond, 12) << name;
        for (std::size_t i = 0; i < breath.frames.size(); ++i)
            EXPECT_LT(Difference(ComposeFrame(*file, breath.frames[i], -1), rest), 0.12) << name << " " << i;
    }
}

TEST_P(ShippedCharacterTest, SpeaksInThePoseOfItsMood)
{
    for (const char* name : {"Sad", "Surprised", "Pleased", "Alert", "Wave", "Explain", "Think", "Confused"}) {
        const Frame& last = Last(Named(name));
        EXPECT_EQ(last.overlays.size(), 7u) << name;
        EXPECT_FALSE(ComposeFrame(*file, last, -1) == rest) << name;
    }
}

TEST_P(ShippedCharacterTest, AppearsFromNothingAndGoesToNothing)
{
    EXPECT_LT(Drawn(ComposeFrame(*file, Named("Show").frames.front(), -1)), Drawn(rest) / 5);
    EXPECT_TRUE(ComposeFrame(*file, Last(Named("Show")), -1) == rest);
    EXPECT_EQ(Drawn(ComposeFrame(*file, Last(Named("Hide")), -1)), 0u);
}

TEST_P(ShippedCharacterTest, TakesItsTimeForAGesture)
{
    for (const char* name : {"Greet", "Announce", "GetAttention", "Suggest", "Confused", "Decline", "Show", "Hide"}) {
        EXPECT_GE(Duration(Named(name)), 100) << name;
        EXPECT_LE(Duration(Named(name)), 250) << name;
    }
}

TEST_P(ShippedCharacterTest, ReachesItsRestPoseFromEveryFrame)
{
    for (const Animation& animation : file->animations) {
        if (animation.name == "Hide")
            continue;
        for (std::size_t start = 0; start < animation.frames.size(); ++start) {
            if (animation.frames[start].duration == 0)
                continue;
            std::set<std::size_t> passed;
            std::size_t at = start; // the frame last seen
            int wait = 0;
            for (int next = animation.frames[start].exitFrame;
                 next >= 0 && passed.insert(static_cast<std::size_t>(next)).second;
                 next = animation.frames[static_cast<std::size_t>(next)].exitFrame)
                if (animation.frames[static_cast<std::size_t>(next)].duration > 0) {
                    at = static_cast<std::size_t>(next);
                    wait += animation.frames[at].duration;
                }
            if (animation.transition == Transition::ReturnAnimation) {
                const Animation& back = Named(animation.returnAnimation);
                EXPECT_TRUE(ComposeFrame(*file, Last(back), -1) == rest) << back.name;
            } else {
                EXPECT_TRUE(ComposeFrame(*file, animation.frames[at], -1) == rest) << animation.name << " " << start;
            }
            if (animation.name.rfind("Idle", 0) == 0) {
                EXPECT_LE(wait, 50) << animation.name << " " << start;
            }
        }
    }
}

TEST_P(ShippedCharacterTest, NeverJumpsFromOneFrameToTheNextOnItsWayOut)
{
    for (const Animation& animation : file->animations)
        for (std::size_t i = 0; i < animation.frames.size(); ++i) {
            const Frame& frame = animation.frames[i];
            if (frame.duration == 0 || frame.exitFrame < 0)
                continue;
            const Frame& next = animation.frames[static_cast<std::size_t>(frame.exitFrame)];
            if (next.duration == 0)
                continue;
            const Bitmap here = ComposeFrame(*file, frame, -1);
            // A figure that appears or vanishes has to change its outline, so frames with little of it drawn are left
            // out.
            if (Drawn(here) > Drawn(rest) / 2) {
                EXPECT_LT(Difference(here, ComposeFrame(*file, next, -1)), 0.5) << animation.name << " " << i;
            }
        }
}

TEST_P(ShippedCharacterTest, HasAHandfulOfShortSoundsThatItUses)
{
    EXPECT_GE(file->SoundCount(), 4u);
    std::set<std::int32_t> used;
    for (const Animation& animation : file->animations)
        for (const Frame& frame : animation.frames)
            if (frame.sound >= 0)
                used.insert(frame.sound);
    EXPECT_EQ(used.size(), file->SoundCount());
    for (std::size_t i = 0; i < file->SoundCount(); ++i) {
        const auto wave = speech::DecodeWave(file->Sound(i));
        ASSERT_TRUE(wave) << i;
        const double seconds = static_cast<double>(wave->samples.size()) / wave->samplesPerSecond;
        EXPECT_GE(seconds, 0.05) << i;
        EXPECT_LE(seconds, 1.0) << i;
        int peak = 0;
        for (const std::int16_t sample : wave->samples)
            peak = std::max(peak, std::abs(int{sample}));
        EXPECT_GE(peak, 3000) << i;
        EXPECT_LE(peak, 16000) << i; // it must not drown the voice
        EXPECT_LE(std::abs(int{wave->samples.front()}), 300) << i;
        EXPECT_LE(std::abs(int{wave->samples.back()}), 300) << i;
    }
}

TEST_P(ShippedCharacterTest, ReadsAsAFigureOnLightAndOnDarkDesktops)
{
    // The outline is dark, and the inside is light enough to stand out where the outline does not.
    const auto brightness = [](std::uint32_t pixel) {
        return 0.299 * (pixel >> 16 & 0xFF) + 0.587 * (pixel >> 8 & 0xFF) + 0.114 * (pixel & 0xFF);
    };
    std::vector<double> rim;
    std::vector<double> inside;
    for (int y = 0; y < rest.height; ++y)
        for (int x = 0; x < rest.width; ++x) {
            const auto at = [&](int dx, int dy) {
                const int ax = x + dx;
                const int ay = y + dy;
                return ax < 0 || ay < 0 || ax >= rest.width || ay >= rest.height
                           ? 0
                           : rest.pixels[static_cast<std::size_t>(ay * rest.width + ax)];
            };
            if (at(0, 0) == 0)
                continue;
            const bool edge = at(1, 0) == 0 || at(-1, 0) == 0 || at(0, 1) == 0 || at(0, -1) == 0;
            (edge ? rim : inside).push_back(brightness(at(0, 0)));
        }
    std::sort(rim.begin(), rim.end());
    std::sort(inside.begin(), inside.end());
    EXPECT_LT(rim[rim.size() * 9 / 10], 90);
    EXPECT_GT(inside[inside.size() / 2], 80);
}

TEST_P(ShippedCharacterTest, DecodesEveryImage)
{
    for (std::size_t i = 0; i < file->ImageCount(); ++i)
        EXPECT_NO_THROW(file->DecodeImage(i)) << i;
}

INSTANTIATE_TEST_SUITE_P(All, ShippedCharacterTest, testing::ValuesIn(Shipped()),
                         [](const auto& name) { return name.param; });

TEST(ShippedCharactersTest, ThereAreThree)
{
    std::vector<std::string> names = Shipped();
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (std::vector<std::string>{"Gamp", "Nalu", "Tock"}));
}
