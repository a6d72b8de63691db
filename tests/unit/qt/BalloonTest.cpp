// What the balloon's window draws.
#include "tests/unit/qt/QtTest.h"

#include "qt/character/QtBalloonWindow.h"

#include <algorithm>

namespace voxmate::qt
{

namespace
{

constexpr int kLineHeight = 24;

class BalloonWindowTest : public QtTest
{
protected:
    /// Leftmost and rightmost inked pixel of a line, counted from the bubble's left edge.
    struct Ink {
        int left = 0;
        int right = 0;
    };

    void Show(std::vector<std::string> lines, std::vector<bool> rightToLeft)
    {
        agent::BalloonView view;
        view.bubble = {200, 100, 300, static_cast<int>(lines.size()) * kLineHeight + 2 * agent::BalloonPadding};
        view.tailTip = {350, view.bubble.Bottom() + agent::BalloonTailLength};
        view.lines = std::move(lines);
        view.rightToLeft = std::move(rightToLeft);
        view.lineHeight = kLineHeight;
        view.font.points = 12;
        view.text = {255, 0, 0};
        view.background = {255, 255, 255};
        view.border = {0, 0, 0};
        balloon.Show(view);
        bubble = view.bubble;
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == QStringLiteral("Voxmate balloon") && widget->isVisible())
                picture = widget->grab().toImage();
    }

    Ink InkOf(int line) const
    {
        // The window is larger than the bubble: by the space for its outline and, below, by the tail.
        const int margin = (picture.width() - bubble.width) / 2;
        Ink ink{bubble.width, -1};
        for (int y = 0; y < kLineHeight; ++y)
            for (int x = 0; x < bubble.width; ++x) {
                const QColor colour =
                    picture.pixelColor(margin + x, margin + agent::BalloonPadding + line * kLineHeight + y);
                if (colour.red() - colour.green() > 100) {
                    ink.left = std::min(ink.left, x);
                    ink.right = std::max(ink.right, x);
                }
            }
        return ink;
    }

    QtBalloonWindow balloon;
    QImage picture;
    Rect bubble;
};

} // namespace

TEST_F(BalloonWindowTest, LinesBeginAtTheEdgeFromWhichTheirTextRuns)
{
    Show({"Hello", "שלום", "Hello"}, {false, true, true});
    const int middle = bubble.width / 2;
    EXPECT_NEAR(InkOf(0).left, agent::BalloonPadding, 3);
    EXPECT_LT(InkOf(0).right, middle);
    EXPECT_NEAR(InkOf(1).right, bubble.width - agent::BalloonPadding, 3);
    EXPECT_GT(InkOf(1).left, middle);
    EXPECT_NEAR(InkOf(2).right, bubble.width - agent::BalloonPadding, 3);
    EXPECT_GT(InkOf(2).left, middle);
}

TEST_F(BalloonWindowTest, ALineGrowsFromTheEdgeWhereItBegins)
{
    Show({"שלום"}, {true});
    const Ink first = InkOf(0);
    Show({"שלום שלום"}, {true});
    const Ink both = InkOf(0);
    EXPECT_EQ(both.right, first.right);
    EXPECT_LT(both.left, first.left - 10);
}

TEST_F(BalloonWindowTest, AFullStopStandsBehindTheLastWordOfEitherDirection)
{
    Show({"abc", "abc................"}, {true, true});
    // In a text that runs from right to left the full stops are on the left of its last word.
    EXPECT_NEAR(InkOf(1).right, InkOf(0).right, 1);
    EXPECT_LT(InkOf(1).left, InkOf(0).left - 20);
    Show({"שלום", "שלום................"}, {false, false});
    EXPECT_NEAR(InkOf(1).left, InkOf(0).left, 1);
    EXPECT_GT(InkOf(1).right, InkOf(0).right + 20);
}

} // namespace voxmate::qt
