#include "readers/Frames.h"

#include <gtest/gtest.h>

using namespace voxmate::readers;

namespace
{

std::vector<Frame> Decoded(std::string_view bytes, std::size_t piece, bool& wrong)
{
    FrameDecoder decoder;
    std::vector<Frame> frames;
    for (; !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
        decoder.Add(bytes.substr(0, piece));
        while (std::optional<Frame> frame = decoder.Next())
            frames.push_back(std::move(*frame));
    }
    wrong = decoder.Wrong();
    return frames;
}

} // namespace

TEST(FramesTest, FramesComeOutAsTheyWentInHoweverTheyAreCut)
{
    const Block block{BlockKind::ListItem, 3, "2.", "some\ntext", "en"};
    const std::vector<Frame> frames{Kind::Pdf, block, Block{}, Refusal::Damaged};
    std::string bytes;
    for (const Frame& frame : frames)
        bytes += EncodeFrame(frame);
    for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, bytes.size()}) {
        bool wrong = true;
        EXPECT_EQ(Decoded(bytes, piece, wrong), frames);
        EXPECT_FALSE(wrong);
    }
}

TEST(FramesTest, ATextThatIsTooLongIsCutAtACharacter)
{
    Block block;
    block.text = std::string(LongestText - 1, 'a') + "\xC3\xA4";
    bool wrong = true;
    const std::vector<Frame> frames = Decoded(EncodeFrame(block), LongestText, wrong);
    ASSERT_EQ(frames.size(), 1U);
    EXPECT_EQ(std::get<Block>(frames[0]).text, std::string(LongestText - 1, 'a'));
}

TEST(FramesTest, WrongFramesAreRefused)
{
    const std::string good = EncodeFrame(Block{BlockKind::Paragraph, 0, "", "text", ""});
    std::vector<std::string> bad{std::string("\xFF\xFF\xFF\xFF", 4), std::string("\0\0\0\0", 4),
                                 std::string("\2\0\0\0X\1", 6), std::string("\2\0\0\0K\x7F", 6),
                                 std::string("\3\0\0\0K\0\0", 7)};
    for (std::size_t i = 4; i < 7; ++i) {
        bad.push_back(good);
        bad.back()[i] = '\x7F'; // type, kind, level
    }
    bad.push_back(good);
    bad.back()[bad.back().find("text")] = '\xFF';
    for (const std::string& bytes : bad) {
        bool wrong = false;
        EXPECT_TRUE(Decoded(bytes, bytes.size(), wrong).empty());
        EXPECT_TRUE(wrong);
    }
}
