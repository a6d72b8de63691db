// The characters that ship: they have what the program calls them for, and nothing about them jumps.
#include "platform/agent/AcsFile.h"

#include <gtest/gtest.h>

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

class ShippedCharacter : public testing::TestWithParam<std::string>
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
    // The frames shown when the animation plays to its end, along the branches that are always taken.
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

const std::vector<std::string> Called{"Show",
                                      "Hide",
                                      "RestPose",
                                      "Greet",
                                      "Announce",
                                      "GetAttention",
                                      "GetAttentionContinued",
                                      "GetAttentionReturn",
                                      "Suggest",
                                      "Confused",
                                      "Decline",
                                      "Blink",
                                      "Idle1_1",
                                      "Idle1_2"};

} // namespace

TEST_P(ShippedCharacter, HasItsNameAndASize)
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
    EXPECT_GE(bottom - top, 160);
    EXPECT_LE(bottom - top, 200);
}

TEST_P(ShippedCharacter, HasTheAnimationsThatAreCalledByName)
{
    for (const std::string& name : Called)
        EXPECT_TRUE(file->FindAnimation(name)) << name;
}

TEST_P(ShippedCharacter, HasItsStates)
{
    for (const char* name : {"Showing", "Hiding", "Speaking", "IdlingLevel1"}) {
        const auto* state = file->FindState(name);
        ASSERT_TRUE(state) << name;
        ASSERT_FALSE(state->empty()) << name;
        for (const std::string& animation : *state)
            EXPECT_TRUE(file->FindAnimation(animation)) << name << " " << animation;
    }
    EXPECT_GE(file->FindState("IdlingLevel1")->size(), 2u);
}

TEST_P(ShippedCharacter, SpeaksWithSevenMouthsThatAllLookDifferent)
{
    std::vector<std::string> speaking = *file->FindState("Speaking");
    speaking.insert(speaking.end(), {"RestPose", "Greet", "Announce", "Suggest"});
    for (const std::string& name : speaking) {
        const Frame& frame = Last(Named(name));
        EXPECT_EQ(frame.overlays.size(), 7u) << name;
        std::set<std::vector<std::uint32_t>> pictures;
        for (int mouth = 0; mouth < MouthCount; ++mouth)
            pictures.insert(ComposeFrame(*file, frame, mouth).pixels);
        EXPECT_EQ(pictures.size(), 7u) << name;
    }
}

TEST_P(ShippedCharacter, AppearsFromNothingAndGoesToNothing)
{
    EXPECT_LT(Drawn(ComposeFrame(*file, Named("Show").frames.front(), -1)), Drawn(rest) / 5);
    EXPECT_TRUE(ComposeFrame(*file, Last(Named("Show")), -1) == rest);
    EXPECT_EQ(Drawn(ComposeFrame(*file, Last(Named("Hide")), -1)), 0u);
}

TEST_P(ShippedCharacter, TakesItsTimeForAGesture)
{
    for (const char* name : {"Greet", "Announce", "GetAttention", "Suggest", "Confused", "Decline", "Show", "Hide"}) {
        EXPECT_GE(Duration(Named(name)), 100) << name;
        EXPECT_LE(Duration(Named(name)), 250) << name;
    }
}

TEST_P(ShippedCharacter, ReachesItsRestPoseFromEveryFrame)
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

TEST_P(ShippedCharacter, DecodesEveryImage)
{
    for (std::size_t i = 0; i < file->ImageCount(); ++i)
        EXPECT_NO_THROW(file->DecodeImage(i)) << i;
}

INSTANTIATE_TEST_SUITE_P(All, ShippedCharacter, testing::ValuesIn(Shipped()),
                         [](const auto& name) { return name.param; });

TEST(ShippedCharacters, ThereIsOne)
{
    EXPECT_FALSE(Shipped().empty());
}
