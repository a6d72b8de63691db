// Builds character files from sources: pictures without fringes, mirrored parts, exits, mouths.
#include "SourceFolder.h"

#include "characters/Assemble.h"
#include "characters/Film.h"
#include "characters/FramePlan.h"
#include "characters/Motion.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <set>

using namespace voxmate;
using namespace voxmate::characters;
using voxmate::characters::test::SourceFolder;

namespace
{

std::shared_ptr<const agent::AcsFile> Built(const SourceFolder& folder)
{
    const Source source = folder.Read();
    const Drawing drawing(source);
    double error = 0;
    return agent::AcsFile::Parse(agent::WriteAcs(Assemble(source, drawing, error)), "dot.acs");
}

std::uint32_t PixelAt(const Bitmap& bitmap, int x, int y)
{
    return bitmap.pixels[static_cast<std::size_t>(y * bitmap.width + x)];
}

} // namespace

TEST(CharacterMotionTest, EveryEasingGoesFromItsStartToItsEnd)
{
    for (const Ease ease : {Ease::Linear, Ease::In, Ease::Out, Ease::InOut, Ease::Back, Ease::Anticipate, Ease::Bounce,
                            Ease::Spring, Ease::Hold}) {
        EXPECT_EQ(Eased(ease, 0), 0);
        EXPECT_EQ(Eased(ease, 1), 1);
        if (ease != Ease::Hold) {
            EXPECT_NEAR(Eased(ease, 0.0001), 0, 0.01);
            EXPECT_NEAR(Eased(ease, 0.9999), 1, 0.01);
        }
    }
    EXPECT_EQ(Eased(Ease::Hold, 0.99), 0);
    EXPECT_GT(Eased(Ease::Back, 0.8), 1.05);
    EXPECT_LT(Eased(Ease::Anticipate, 0.2), -0.05);
}

TEST(CharacterMotionTest, APartGoesFromTheLastKeyThatNamesItToTheNext)
{
    SourceFolder folder;
    folder.Replace("{\"at\": 12, \"all\": {\"move\": [0, -4]}}",
                   "{\"at\": 6, \"left\": {}, \"body\": {\"rotate\": 10}}, {\"at\": 12, \"ease\": \"linear\", "
                   "\"left\": {\"rotate\": 60}, \"mouth\": {\"show\": \"open\"}, \"all\": {\"move\": [12, 0]}}");
    const Source source = folder.Read();
    const SourceAnimation& hop = source.animations[0];
    EXPECT_EQ(PoseAt(hop, 6)[3].values[Rotate], 0);
    EXPECT_EQ(PoseAt(hop, 9)[3].values[Rotate], 30);
    EXPECT_EQ(PoseAt(hop, 12)[3].values[Rotate], 60);
    EXPECT_EQ(PoseAt(hop, 3)[0].values[MoveX], 3);
    EXPECT_EQ(PoseAt(hop, 11)[2].variant, source.parts[2].rest.variant);
    EXPECT_NE(PoseAt(hop, 12)[2].variant, source.parts[2].rest.variant);
    EXPECT_EQ(PoseAt(hop, 24), source.RestPose());
}

TEST(CharacterDrawingTest, ShowsAtItsRimTheFiguresOwnColourOnly)
{
    SourceFolder folder;
    folder.Replace("\"parts\": [", "\"parts\": [{\"name\": \"only\", \"drawing\": \"body\"}], \"comment\": [");
    folder.Replace("\"mouths\": {", "\"comment\": {");
    folder.Replace("\"poses\": {", "\"comment\": {");
    folder.Replace("\"animations\": {", "\"animations\": {\"RestPose\": {\"keys\": []}}, \"comment\": {");
    const Source source = folder.Read();
    const QImage picture = Drawing(source).Render(source.RestPose());
    int shown = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            EXPECT_TRUE(pixel == 0 || pixel == 0xFFFF0000u) << x << " " << y;
            shown += pixel != 0 ? 1 : 0;
        }
    EXPECT_NEAR(shown, 314, 12);
}

TEST(CharacterDrawingTest, MirrorsAPartAndItsMovement)
{
    SourceFolder folder;
    folder.drawing.replace("<circle cx=\"20\" cy=\"16\" r=\"10\" fill=\"#ff0000\"/>",
                           "<circle cx=\"20\" cy=\"16\" r=\"10\" fill=\"#ff0000\"/>");
    const Source source = folder.Read();
    Pose pose = source.RestPose();
    pose[3].values[Rotate] = pose[4].values[Rotate] = 35;
    pose[3].values[MoveX] = pose[4].values[MoveX] = -2;
    const QImage picture = Drawing(source).Render(pose);
    EXPECT_NE(picture, Drawing(source).Render(source.RestPose()));
    EXPECT_EQ(picture, picture.mirrored(true, false));
}

TEST(CharacterDrawingTest, HidesWhatAHiddenPartHoldsTogether)
{
    const SourceFolder folder;
    const Source source = folder.Read();
    Pose pose = source.RestPose();
    pose[0].variant = -1;
    QImage nothing(40, 30, QImage::Format_ARGB32);
    nothing.fill(0);
    EXPECT_EQ(Drawing(source).Render(pose), nothing);
}

TEST(CharacterBuildTest, MakesAFileWithItsFramesAndMouths)
{
    const SourceFolder folder;
    const auto file = Built(folder);
    EXPECT_EQ(file->width, 40);
    EXPECT_EQ(file->height, 30);
    EXPECT_EQ(file->palette.size(), 256u);
    const agent::Animation* rest = file->FindAnimation("RestPose");
    ASSERT_TRUE(rest);
    ASSERT_EQ(rest->frames.size(), 1u);
    EXPECT_EQ(rest->frames[0].overlays.size(), 7u);
    const Bitmap shut = ComposeFrame(*file, rest->frames[0], agent::MouthClosed);
    const Bitmap open = ComposeFrame(*file, rest->frames[0], agent::MouthWide1);
    EXPECT_EQ(PixelAt(shut, 20, 18), 0xFF000000u);
    EXPECT_EQ(PixelAt(open, 20, 18), 0xFFFFFFFFu);
    EXPECT_EQ(PixelAt(shut, 20, 10), 0xFFFF0000u);
    EXPECT_EQ(PixelAt(shut, 5, 13), 0xFF0000FFu);
    EXPECT_EQ(PixelAt(shut, 1, 1), 0u);
    EXPECT_TRUE(ComposeFrame(*file, rest->frames[0], -1) == shut);
    const agent::Animation* hop = file->FindAnimation("Hop");
    ASSERT_EQ(hop->frames.size(), 4u);
    EXPECT_EQ(PixelAt(ComposeFrame(*file, hop->frames[1], -1), 20, 14), 0xFF000000u);
    EXPECT_TRUE(ComposeFrame(*file, hop->frames[3], -1) == shut);
    EXPECT_EQ(hop->frames[3].exitFrame, -1);
}

TEST(CharacterBuildTest, MakesTheExampleThatArtistsStartFrom)
{
    const Source source = ReadSource(VOXMATE_SOURCES "/example");
    const Drawing drawing(source);
    double error = 0;
    const auto file = agent::AcsFile::Parse(agent::WriteAcs(Assemble(source, drawing, error)), "Blob.acs");
    EXPECT_EQ(file->names.at(0).name, "Blob");
    for (const char* name : {"RestPose", "Blink", "Show", "Hide", "Greet"})
        EXPECT_TRUE(file->FindAnimation(name)) << name;
    EXPECT_EQ(file->FindAnimation("RestPose")->frames.at(0).overlays.size(), 7u);
}

TEST(CharacterBuildTest, IsTheSameEveryTime)
{
    const SourceFolder folder;
    const Source source = folder.Read();
    const Drawing drawing(source);
    double error = 0;
    EXPECT_TRUE(agent::WriteAcs(Assemble(source, drawing, error)) == agent::WriteAcs(Assemble(source, drawing, error)));
}

TEST(CharacterBuildTest, KeepsEveryPictureOnce)
{
    SourceFolder folder;
    folder.Replace("\"animations\": {",
                   "\"animations\": {\"Hop2\": {\"keys\": [{\"at\": 12, \"all\": {\"move\": [0, -4]}},"
                   "{\"at\": 24, \"pose\": \"rest\"}]},");
    EXPECT_EQ(Built(folder)->ImageCount(), Built(SourceFolder())->ImageCount());
}

TEST(CharacterBuildTest, KeepsASoundOnceThatSeveralKeysPlay)
{
    SourceFolder folder;
    folder.Write("tick.wav", "RIFF tick");
    folder.Write("same.wav", "RIFF tick");
    folder.Write("tock.wav", "RIFF tock");
    folder.Replace("{\"at\": 12, \"all\": {\"move\": [0, -4]}},\n {\"at\": 24, \"pose\": \"rest\"}]",
                   "{\"at\": 0, \"sound\": \"tick.wav\"}, {\"at\": 6, \"sound\": \"tock.wav\"},"
                   "{\"at\": 12, \"sound\": \"same.wav\", \"all\": {\"move\": [0, -4]}},"
                   "{\"at\": 24, \"pose\": \"rest\"}]");
    const auto file = Built(folder);
    ASSERT_EQ(file->SoundCount(), 2u);
    const auto& frames = file->FindAnimation("Hop")->frames;
    ASSERT_EQ(frames.size(), 4u);
    EXPECT_EQ(frames[0].sound, 0);
    EXPECT_EQ(frames[1].sound, 1);
    EXPECT_EQ(frames[2].sound, 0);
    EXPECT_EQ(frames[3].sound, -1);
}

TEST(CharacterBuildTest, PutsTheWayBackBeforeTheFrameAnAnimationHoldsIn)
{
    SourceFolder folder;
    folder.Replace("{\"at\": 24, \"pose\": \"rest\"}]",
                   "{\"at\": 24, \"pose\": \"rest\"}], \"hold\": 12, \"speaks\": true");
    const auto file = Built(folder);
    const auto& frames = file->FindAnimation("Hop")->frames;
    ASSERT_EQ(frames.size(), 5u);
    ASSERT_EQ(frames[0].branches.size(), 1u);
    EXPECT_EQ(frames[0].branches[0].frame, 3);
    EXPECT_EQ(frames[0].branches[0].percent, 100);
    EXPECT_EQ(frames[3].overlays.size(), 7u);
    EXPECT_EQ(PixelAt(ComposeFrame(*file, frames[3], -1), 20, 14), 0xFF000000u);
    EXPECT_EQ(frames[3].exitFrame, 2);
    EXPECT_EQ(PixelAt(ComposeFrame(*file, frames[2], -1), 20, 18), 0xFF000000u);
    EXPECT_EQ(frames[2].exitFrame, 4);
    EXPECT_EQ(frames[4].duration, 0);
    EXPECT_EQ(frames[4].exitFrame, -1);
}

TEST(CharacterBuildTest, LeadsOutInStepsThatDoNotJump)
{
    SourceFolder folder;
    folder.drawing.replace("0 0 40 30", "0 0 80 30");
    folder.Replace(
        "{\"at\": 12, \"all\": {\"move\": [0, -4]}},\n {\"at\": 24,",
        "{\"at\": 60, \"ease\": \"linear\", \"all\": {\"move\": [40, 0]}}, {\"at\": 120, \"ease\": \"linear\",");
    const auto file = Built(folder);
    const auto& frames = file->FindAnimation("Hop")->frames;
    ASSERT_EQ(frames.size(), 20u);
    // The part moves out by 4 pixels a frame and back. A smooth step is at most 14 pixels, so one on the way out is 12.
    const auto place = [](int frame) { return frame < 10 ? 4 * (frame + 1) : 4 * (19 - frame); };
    for (int i = 0; i < 19; ++i) {
        int steps = 0;
        int at = i;
        while (at != 19 && steps <= 20) {
            const int next = frames[static_cast<std::size_t>(at)].exitFrame;
            ASSERT_GE(next, 0) << i;
            EXPECT_LE(std::abs(place(next) - place(at)), 12) << i;
            at = next;
            ++steps;
        }
        EXPECT_EQ(steps, std::max(1, (place(i) + 11) / 12)) << i;
    }
    EXPECT_EQ(frames[19].exitFrame, -1);
}

TEST(CharacterBuildTest, LoopsThroughABranch)
{
    SourceFolder folder;
    folder.Replace("{\"at\": 24, \"pose\": \"rest\"}]",
                   "{\"at\": 24, \"pose\": \"rest\"}], \"branches\": [{\"from\": 18, \"to\": 6, \"percent\": 70}]");
    const auto file = Built(folder);
    const auto& frames = file->FindAnimation("Hop")->frames;
    ASSERT_EQ(frames.size(), 4u);
    ASSERT_EQ(frames[2].branches.size(), 1u);
    EXPECT_EQ(frames[2].branches[0].frame, 1);
    EXPECT_EQ(frames[2].branches[0].percent, 70);
}

namespace
{

// Adds a blink, a breath and an animation to the small character's source.
void Enlivened(SourceFolder& folder, const QString& animation)
{
    folder.Replace("\"poses\": {\"up\": {\"left\": {\"rotate\": 40}}},",
                   "\"poses\": {\"shut\": {\"left\": {\"show\": \"none\"}}}, \"blink\": {\"shut\": \"shut\"},"
                   "\"sways\": {\"breath\": {\"period\": 100, \"body\": {\"move\": [0, 4]},"
                   "\"mouth\": {\"rotate\": 90, \"late\": 25}}},");
    folder.Replace("\"animations\": {", "\"animations\": {\"Talk\": {" + animation + "},");
}

const SourceAnimation& TalkOf(const Source& source)
{
    return *std::find_if(source.animations.begin(), source.animations.end(),
                         [](const SourceAnimation& animation) { return animation.name == "Talk"; });
}

} // namespace

TEST(CharacterBuildTest, GivesEveryFrameItsMouthsWhereItSpeaksThroughout)
{
    SourceFolder folder;
    folder.Replace("{\"at\": 24, \"pose\": \"rest\"}]",
                   "{\"at\": 24, \"pose\": \"rest\"}], \"speaks\": \"throughout\"");
    const auto file = Built(folder);
    const auto& frames = file->FindAnimation("Hop")->frames;
    ASSERT_EQ(frames.size(), 4u);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i].overlays.size(), 7u) << i;
        EXPECT_FALSE(ComposeFrame(*file, frames[i], agent::MouthWide1) == ComposeFrame(*file, frames[i], -1)) << i;
    }
    // The figure is four pixels higher here, and so is its mouth.
    EXPECT_EQ(PixelAt(ComposeFrame(*file, frames[1], agent::MouthWide1), 20, 14), 0xFFFFFFFFu);
}

TEST(CharacterBuildTest, ClosesTheMouthOfAMoodAsTheMoodWantsIt)
{
    SourceFolder folder;
    folder.Replace("\"speaks\": true}", "\"speaks\": true, \"closedMouth\": \"open\"}");
    const auto file = Built(folder);
    const agent::Frame& rest = file->FindAnimation("RestPose")->frames.at(0);
    EXPECT_EQ(PixelAt(ComposeFrame(*file, rest, -1), 20, 18), 0xFF000000u);
    EXPECT_EQ(PixelAt(ComposeFrame(*file, rest, agent::MouthClosed), 20, 18), 0xFFFFFFFFu);
}

TEST(CharacterMotionTest, ASwayBeginsAndEndsWithNothing)
{
    SourceFolder folder;
    Enlivened(folder, "\"length\": 400, \"step\": 10, \"sway\": \"breath\"");
    const Source source = folder.Read();
    const SourceAnimation& talk = TalkOf(source);
    for (const int still : {0, 10, 400})
        EXPECT_EQ(PoseAt(talk, still), source.RestPose()) << still;
    // A step and a quarter of its period after the start it is at its height, which it does not have at once.
    EXPECT_GT(PoseAt(talk, 35)[1].values[MoveY], 1.0);
    EXPECT_LT(PoseAt(talk, 35)[1].values[MoveY], 4.0);
    EXPECT_NEAR(PoseAt(talk, 135)[1].values[MoveY], 4, 1e-9);
    EXPECT_NEAR(PoseAt(talk, 185)[1].values[MoveY], -4, 1e-9);
    EXPECT_NEAR(PoseAt(talk, 135)[2].values[Rotate], 0, 1e-9); // a quarter later
    EXPECT_NEAR(PoseAt(talk, 160)[2].values[Rotate], 90, 1e-9);
}

TEST(CharacterMotionTest, BlinksAsOftenAsItIsToldButNotRegularly)
{
    SourceFolder folder;
    Enlivened(folder, "\"length\": 30000, \"step\": 10, \"blinks\": 26");
    const Source source = folder.Read();
    const SourceAnimation& talk = TalkOf(source);
    EXPECT_NEAR(static_cast<double>(talk.blinks.size()), 5 * 26, 20);
    std::set<int> intervals;
    for (std::size_t i = 1; i < talk.blinks.size(); ++i) {
        EXPECT_GE(talk.blinks[i] - talk.blinks[i - 1], 50);
        intervals.insert(talk.blinks[i] - talk.blinks[i - 1]);
    }
    EXPECT_GT(intervals.size(), 20u);
    // The lids go and come back: half for 10, shut for 10 (a frame), half for 20, of which this source has only shut.
    const int first = talk.blinks.front();
    const auto shut = [&](int at) { return PoseAt(talk, at)[3].variant < 0; };
    EXPECT_FALSE(shut(first));
    EXPECT_TRUE(shut(first + 10));
    EXPECT_TRUE(shut(first + 20));
    EXPECT_FALSE(shut(first + 60));
    EXPECT_EQ(PoseAt(talk, 30000), source.RestPose());
}

TEST(CharacterMotionTest, DoesNotBlinkWithLidsThatAKeyHasSet)
{
    SourceFolder folder;
    folder.Replace("\"drawing\": \"arm\"}",
                   "\"variants\": {\"arm\": \"arm\", \"mouth\": \"mouth\"}, \"show\": \"arm\"}");
    Enlivened(folder, "\"length\": 30000, \"step\": 10, \"blinks\": 26,"
                      "\"keys\": [{\"at\": 0, \"left\": {\"show\": \"mouth\"}}]");
    const Source source = folder.Read();
    const SourceAnimation& talk = TalkOf(source);
    ASSERT_FALSE(talk.blinks.empty());
    for (const int blink : talk.blinks)
        EXPECT_EQ(PoseAt(talk, blink + 20)[3].variant, 1) << blink;
}

TEST(CharacterBuildTest, MakesAnAnimationWithLidsTwiceMoreAndOpensThemAtItsEnd)
{
    SourceFolder folder;
    folder.Replace("\"animations\": {",
                   "\"blink\": {\"shut\": \"gape\"}, \"animations\": {\"Breathe\": {\"step\": 10,"
                   " \"length\": 60, \"lids\": true, \"keys\": [{\"at\": 30, \"all\": {\"move\": [0, -4]}},"
                   " {\"at\": 60, \"all\": {\"move\": [0, 0]}}]}, ");
    folder.Replace("\"poses\": {", "\"poses\": {\"gape\": {\"mouth\": {\"show\": \"open\"}}, ");
    folder.Replace("\"Speaking\": [\"RestPose\"]", "\"Speaking\": [\"RestPose\"], \"BreathingShut\": [\"BreatheShut\"],"
                                                   " \"BreathingHalfShut\": [\"BreatheHalfShut\"]");
    const auto file = Built(folder);
    const auto picture = [&file](const char* name, std::size_t frame) {
        return agent::ComposeFrame(*file, file->FindAnimation(name)->frames.at(frame), -1);
    };
    const std::size_t last = file->FindAnimation("Breathe")->frames.size() - 1;
    for (const char* name : {"BreatheHalfShut", "BreatheShut"}) {
        ASSERT_EQ(file->FindAnimation(name)->frames.size(), last + 1) << name;
        for (std::size_t i = 0; i < last; ++i) {
            EXPECT_FALSE(picture(name, i) == picture("Breathe", i)) << name << " " << i;
        }
        EXPECT_TRUE(picture(name, last) == picture("Breathe", last)) << name;
    }
}

TEST(CharacterFilmTest, IsAnAnimatedPictureOfTheAnimationsTimes)
{
    const auto file = Built(SourceFolder());
    QByteArray film = Film(*file, *file->FindAnimation("Hop"));
    QBuffer buffer(&film);
    QImageReader reader(&buffer, "gif");
    std::vector<int> times;
    std::vector<QRgb> middles;
    for (QImage picture = reader.read(); !picture.isNull(); picture = reader.read()) {
        EXPECT_EQ(picture.size(), QSize(40, 30));
        EXPECT_EQ(picture.pixel(1, 1), 0xFFF4F7F9u);
        EXPECT_EQ(picture.pixel(20, 20), 0xFFFF0000u);
        times.push_back(reader.nextImageDelay());
        middles.push_back(picture.pixel(20, 14));
    }
    EXPECT_EQ(times, (std::vector<int>{60, 60, 60, 60}));
    EXPECT_EQ(middles[1], 0xFF000000u); // its mouth at the top of the hop
    EXPECT_EQ(middles[3], 0xFFFF0000u);
}
