#include "agent/body/Painter.h"

#include "tests/unit/agent/ServerTest.h"

namespace voxmate::agent::test
{
namespace
{

class PainterTest : public testing::Test
{
protected:
    /// Makes a character with frames `side` pixels wide and high. Image i is filled with colour i.
    void Make(std::uint16_t side)
    {
        AcsDescription d;
        d.width = side;
        d.height = side;
        for (std::uint8_t i = 0; i < 100; ++i) {
            d.palette.push_back({i, 0, 0});
            d.images.push_back({side, side, std::vector<std::uint8_t>(std::size_t{side} * side, i)});
        }
        file = AcsFile::Parse(WriteAcs(d), "test");
        painter.emplace(*file, *window);
    }

    fakes::FakeStage stage;
    std::unique_ptr<CharacterWindow> window = stage.CreateCharacterWindow();
    std::shared_ptr<const AcsFile> file;
    std::optional<Painter> painter;
};

TEST_F(PainterTest, DrawsOnlyWhatHasChanged)
{
    Make(4);
    const Frame plain = Picture(1);
    const Frame same = Picture(1, 50, 2);
    Frame mouths = Picture(1);
    mouths.overlays = {{MouthWide1, true, 9, 0, 0, 4, 4, {}}};
    painter->Show(plain, -1, {4, 4});
    painter->Show(same, -1, {4, 4});
    painter->Show(mouths, MouthClosed, {4, 4});
    EXPECT_EQ(stage.Window().frames.size(), 1u);
    painter->Show(mouths, MouthWide1, {4, 4});
    EXPECT_EQ(stage.Window().frames.size(), 2u);
    painter->Show(mouths, MouthWide1, {8, 4});
    EXPECT_EQ(stage.Window().frames.size(), 3u);
    EXPECT_EQ(stage.Window().size, (Size{8, 4}));
}

TEST_F(PainterTest, WhileTheWindowIsBusyOnlyTheLastPictureIsKeptAndNoneIsComposed)
{
    Make(4);
    std::vector<Frame> frames;
    for (std::uint32_t i = 1; i <= 50; ++i)
        frames.push_back(Picture(i));
    painter->Show(frames[0], -1, {4, 4});
    const std::size_t used = painter->MemoryUsed();
    stage.Window().busy = true;
    for (const Frame& frame : frames)
        painter->Show(frame, -1, {4, 4});
    EXPECT_EQ(stage.Window().frames.size(), 1u);
    EXPECT_EQ(painter->MemoryUsed(), used);
    stage.Window().busy = false;
    (*stage.Window().ready)();
    ASSERT_EQ(stage.Window().frames.size(), 2u);
    EXPECT_EQ(stage.Window().frames[1].pixels.front(), 0xFF320000u);
    EXPECT_EQ(painter->MemoryUsed(), 2 * used);
    (*stage.Window().ready)();
    EXPECT_EQ(stage.Window().frames.size(), 2u);
}

TEST_F(PainterTest, RemembersPicturesWithinItsMemoryBound)
{
    Make(200);
    for (int round = 0; round < 2; ++round)
        for (std::uint32_t i = 1; i < 100; ++i) {
            painter->Show(Picture(i), -1, {200, 200});
            EXPECT_LE(painter->MemoryUsed(), Painter::MemoryBound);
        }
    EXPECT_EQ(stage.Window().frames.size(), 198u);
    EXPECT_EQ(stage.Window().frames.back().pixels.front(), 0xFF630000u);
    EXPECT_GT(painter->MemoryUsed(), Painter::MemoryBound / 2);
}

TEST_F(PainterTest, ForgetsAllPicturesButTheOneOnShow)
{
    Make(4);
    painter->Show(Picture(1), -1, {4, 4});
    painter->Show(Picture(2), -1, {4, 4});
    painter->Forget();
    EXPECT_EQ(painter->MemoryUsed(), 0u);
    // The one on show is not drawn again.
    painter->Show(Picture(2), -1, {4, 4});
    EXPECT_EQ(stage.Window().frames.size(), 2u);
    painter->Show(Picture(2), -1, {8, 8});
    EXPECT_EQ(stage.Window().frames.back().pixels.front(), 0xFF020000u);
    painter->Show(Picture(1), -1, {8, 8});
    EXPECT_EQ(stage.Window().frames.back().pixels.front(), 0xFF010000u);
    EXPECT_EQ(stage.Window().frames.size(), 4u);
}

TEST_F(PainterTest, AFrameWhoseImageDoesNotExistLeavesThePicture)
{
    Make(4);
    painter->Show(Picture(1), -1, {4, 4});
    painter->Show(Picture(500), -1, {4, 4});
    EXPECT_EQ(stage.Window().frames.size(), 1u);
    painter->Show(Picture(2), -1, {4, 4});
    EXPECT_EQ(stage.Window().frames.size(), 2u);
}

TEST_F(PainterTest, TheOutlineHoldsAllThatIsDrawn)
{
    Make(10);
    Frame frame = Picture(1);
    frame.images = {{1, 7, -6}, {2, -8, 3}};
    // The drawn parts: x 7 to 9 with y 0 to 3, and x 0 to 1 with y 3 to 9.
    EXPECT_EQ(painter->Outline(frame), (Rect{0, 0, 10, 10}));
    frame.images = {{1, 7, -6}};
    EXPECT_EQ(painter->Outline(frame), (Rect{7, 0, 3, 4}));
    frame.images = {};
    EXPECT_EQ(painter->Outline(frame).width, 0);
}

} // namespace
} // namespace voxmate::agent::test
