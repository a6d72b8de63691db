// A character's source: every error message names its place.
#include "SourceFolder.h"

#include "characters/Drawing.h"

using namespace voxmate::characters;
using voxmate::characters::test::SourceFolder;

namespace
{

std::string ErrorAfter(const QString& old, const QString& with)
{
    SourceFolder folder;
    folder.Replace(old, with);
    return folder.ErrorOf([&] {
        const Source source = folder.Read();
        const Drawing drawing(source);
    });
}

std::string ErrorOfDrawing(const QString& old, const QString& with)
{
    SourceFolder folder;
    folder.drawing.replace(old, with);
    return folder.ErrorOf([&] {
        const Source source = folder.Read();
        const Drawing drawing(source);
    });
}

} // namespace

TEST(CharacterSourceTest, ReadsWhatItIsGiven)
{
    const SourceFolder folder;
    const Source source = folder.Read();
    EXPECT_EQ(source.names.at(0).name, "Dot");
    EXPECT_EQ(source.names.at(0).language, 0x0409);
    ASSERT_EQ(source.parts.size(), 5u);
    EXPECT_EQ(source.parts[3].parent, 1);
    EXPECT_TRUE(source.parts[4].mirrored);
    EXPECT_EQ(source.parts[4].pivot, QPointF(10, 14));
    EXPECT_EQ(source.mouths[0], source.parts[2].rest.variant);
    EXPECT_EQ(source.animations.size(), 2u);
    EXPECT_EQ(source.animations[0].name, "Hop");
    EXPECT_EQ(source.animations[0].length, 24);
    const voxmate::agent::Guid guid{0x33, 0x22, 0x11, 0x00, 0x55, 0x44, 0x77, 0x66,
                                    0x88, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    EXPECT_EQ(source.guid, guid);
}

TEST(CharacterSourceTest, SaysLineAndColumnOfBrokenJson)
{
    EXPECT_EQ(ErrorAfter("\"poses\": {", "\"poses\" {"), "character.json:11:9: missing name separator");
}

TEST(CharacterSourceTest, SaysWhereAFileIsMissing)
{
    const SourceFolder folder;
    EXPECT_EQ(folder.ErrorOf([&] { ReadSource(folder.Path()); }),
              "character.json: cannot be read: No such file or directory");
    EXPECT_EQ(ErrorAfter("dot.svg", "dott.svg"), "dott.svg: cannot be read: No such file or directory");
}

TEST(CharacterSourceTest, RefusesANameItDoesNotKnow)
{
    EXPECT_EQ(ErrorAfter("\"all\": {\"move\"", "\"al\": {\"move\""),
              "character.json: animations.Hop.keys[0]: there is no part \"al\"");
    EXPECT_EQ(
        ErrorAfter("\"move\": [0, -4]", "\"moves\": [0, -4]"),
        "character.json: animations.Hop.keys[0].all: there is no setting \"moves\" here, only move, rotate, scale, "
        "show, ease");
    EXPECT_EQ(ErrorAfter("\"pose\": \"rest\"", "\"pose\": \"reset\""),
              "character.json: animations.Hop.keys[1].pose: there is no pose \"reset\"");
    EXPECT_EQ(
        ErrorAfter("\"move\": [0, -4]", "\"show\": \"big\""),
        "character.json: animations.Hop.keys[0].all.show: the part \"all\" has no variant \"big\", only none, shown");
    EXPECT_EQ(
        ErrorAfter("\"at\": 12,", "\"at\": 12, \"ease\": \"soft\","),
        "character.json: animations.Hop.keys[0].ease: there is no easing \"soft\", only anticipate, back, bounce, "
        "hold, in, inOut, linear, out, spring");
    EXPECT_EQ(ErrorAfter("[\"RestPose\"]", "[\"Rest\"]"),
              "character.json: states.Speaking[0]: there is no animation \"Rest\"");
    EXPECT_EQ(ErrorAfter("\"mirrorOf\": \"left\"", "\"mirrorOf\": \"lft\""),
              "character.json: parts[4].mirrorOf: there is no part \"lft\"");
}

TEST(CharacterSourceTest, RefusesAValueOfTheWrongKind)
{
    EXPECT_EQ(ErrorAfter("[0, -4]", "4"),
              "character.json: animations.Hop.keys[0].all.move: a list in brackets is needed");
    EXPECT_EQ(ErrorAfter("[0, -4]", "[0]"), "character.json: animations.Hop.keys[0].all.move: two numbers are needed");
    EXPECT_EQ(ErrorAfter("\"at\": 12", "\"at\": 12.5"),
              "character.json: animations.Hop.keys[0].at: a whole number from 0 to 30000 is needed");
    EXPECT_EQ(ErrorAfter("\"at\": 12", "\"at\": 30"),
              "character.json: animations.Hop.keys[1].at: keys stand in the order of their times");
    EXPECT_EQ(ErrorAfter("\"Hop\": {", "\"Hop\": {\"start\": {\"all\": {}}, "),
              "character.json: animations.Hop.start: the name of a pose or a list of such names is needed");
    EXPECT_EQ(ErrorAfter("\"name\": \"Dot\"", "\"name\": 7"),
              "character.json: names[0].name: a text in quotes is needed");
}

TEST(CharacterSourceTest, RefusesToHoldOrBranchBetweenTwoFrames)
{
    EXPECT_EQ(ErrorAfter("\"pose\": \"rest\"}]", "\"pose\": \"rest\"}], \"hold\": 13"),
              "character.json: animations.Hop.hold: a multiple of the step, 6, is needed");
    EXPECT_EQ(ErrorAfter("\"pose\": \"rest\"}]", "\"pose\": \"rest\"}], \"branches\": [{\"from\": 18, \"to\": 5}]"),
              "character.json: animations.Hop.branches[0].to: a multiple of the step, 6, is needed");
}

TEST(CharacterSourceTest, RefusesPartsThatAreTheirOwnAncestors)
{
    EXPECT_EQ(ErrorAfter("{\"name\": \"all\"}", "{\"name\": \"all\", \"parent\": \"left\"}"),
              "character.json: parts[0].parent: this part is its own ancestor");
}

TEST(CharacterSourceTest, RefusesADrawingWithoutTheGroupThatAPartNames)
{
    EXPECT_EQ(ErrorOfDrawing("id=\"arm\"", "id=\"leg\""),
              "dot.svg: there is no top-level group \"arm\", only body, leg, mouth, open");
    EXPECT_EQ(ErrorOfDrawing("id=\"open\"", "id=\"arm\""), "dot.svg: there are two groups \"arm\"");
}

TEST(CharacterSourceTest, RefusesADrawingThatIsNotSound)
{
    EXPECT_EQ(ErrorOfDrawing("</g>\n<g id=\"arm\">", "<g id=\"arm\">"),
              "dot.svg:5:6: Opening and ending tag mismatch.");
    EXPECT_EQ(
        ErrorOfDrawing("viewBox=\"0 0 40 30\"", ""),
        "dot.svg: viewBox=\"\": a frame is given by four whole numbers, left, top, width and height, the last two "
        "from 16 to 1024");
}

TEST(CharacterSourceTest, SaysWhatIsWrongWithSwaysBlinksAndMouths)
{
    const QString poses = "\"poses\": {";
    EXPECT_EQ(ErrorAfter("\"speaks\": true", "\"speaks\": \"always\""),
              "character.json: animations.RestPose.speaks: true, false or \"throughout\" is needed");
    EXPECT_EQ(ErrorAfter("\"speaks\": true", "\"sway\": [\"breath\"]"),
              "character.json: animations.RestPose.sway[0]: there is no sway \"breath\"");
    EXPECT_EQ(
        ErrorAfter("\"speaks\": true", "\"blinks\": 20"),
        "character.json: animations.RestPose.blinks: \"blink\", beside \"poses\", must say what a blink looks like");
    EXPECT_EQ(ErrorAfter("\"keys\": [{\"at\": 12", "\"closedMouth\": \"open\", \"keys\": [{\"at\": 12"),
              "character.json: animations.Hop.closedMouth: is for an animation that \"speaks\"");
    EXPECT_EQ(
        ErrorAfter("\"speaks\": true", "\"speaks\": true, \"closedMouth\": \"wide\""),
        "character.json: animations.RestPose.closedMouth: the part \"mouth\" has no variant \"wide\", only none, open, "
        "shut");
    EXPECT_EQ(ErrorAfter(poses, "\"sways\": {\"breath\": {\"body\": {\"move\": [0, 1]}}}," + poses),
              "character.json: sways.breath.period: is missing");
    EXPECT_EQ(ErrorAfter(poses, "\"sways\": {\"breath\": {\"period\": 300, \"bdy\": {\"move\": [0, 1]}}}," + poses),
              "character.json: sways.breath: there is no part \"bdy\"");
    EXPECT_EQ(ErrorAfter(poses, "\"blink\": {\"shut\": \"up\"}," + poses),
              "character.json: blink.shut: this pose shows no variant of any part");
}
