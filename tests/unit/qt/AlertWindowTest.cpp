// The alert window's looks, pixel by pixel, and its behaviour as a window.
#include "forms/frmAlertWindow.h"
#include "qt/alerts/ClassicDrawing.h"
#include "qt/alerts/PlacedLabel.h"
#include "qt/alerts/PlacedWindow.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/unit/qt/QtTest.h"

#include <QAccessible>
#include <QElapsedTimer>
#include <QScreen>
#include <QTimer>

#include <array>
#include <cmath>
#include <memory>

namespace voxmate::qt
{

namespace
{

struct Style {
    std::int32_t seconds = 0;
    bool fade = false;
    bool fit = false;
    bool square = true;
    std::int32_t color = 0xC0FFFF;
    bool tube = false;
};

class AlertTest : public ::testing::Test
{
protected:
    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    fakes::FakePlatform fake;
    Platform platform{fake.store, fake.agent, fake.speech, windows, fake.files, fake.process, fake.clock, fake.word};
    Program program{platform};
    fakes::FakeMainWindow mainWindow{fake.log};
    std::unique_ptr<frmAlertWindow> form;

    AlertTest()
    {
        program.Main = &mainWindow;
        form = std::make_unique<frmAlertWindow>(program);
    }

    void Show(const Style& style, const std::string& text = "Tea")
    {
        form->DisplayMessage(text, 9999, true, style.seconds, style.fade, style.fit, style.square, style.color,
                             style.tube);
    }
    /// The alert window that is visible.
    static PlacedWindow* Window()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* window = dynamic_cast<PlacedWindow*>(widget); window && window->isVisible())
                return window;
        }
        throw std::logic_error("there is no alert window");
    }
    static PlacedLabel* MessageLabel() { return ChildOf<PlacedLabel>(Window(), "lblMessage"); }
    static QRect WorkArea() { return QGuiApplication::primaryScreen()->availableGeometry(); }
};

/// A picture that the test computes by itself.
struct Expected {
    int width;
    int height;
    std::vector<QRgb> pixels = std::vector<QRgb>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    QRgb& At(int x, int y)
    {
        return pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
    }
};

/// The channel value `part` of `whole` on the way from `from` to `to`. The calls' channels have 16 bits with a lower
/// byte of 0; the upper byte of a value between is rounded down, never above the exact value.
int Between(int from, int to, int part, int whole)
{
    const int scaled = 256 * (from * whole + (to - from) * part);
    return static_cast<int>(std::floor(std::floor(static_cast<double>(scaled) / whole) / 256));
}

QRgb Between(QRgb from, QRgb to, int part, int whole)
{
    return qRgb(Between(qRed(from), qRed(to), part, whole), Between(qGreen(from), qGreen(to), part, whole),
                Between(qBlue(from), qBlue(to), part, whole));
}

const QRgb White = qRgb(255, 255, 255);

void DrawTube(Expected& picture, QRgb color)
{
    const int middle = picture.height / 2;
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x)
            picture.At(x, y) = y < middle ? Between(color, White, y, middle)
                                          : Between(White, color, y - middle, picture.height - middle);
    }
}

/// Above the diagonal the colour changes with the rows, below it with the columns.
void DrawCorner(Expected& picture, QRgb color)
{
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            const bool above = x * picture.height >= y * picture.width;
            picture.At(x, y) =
                above ? Between(White, color, y, picture.height) : Between(White, color, x, picture.width);
        }
    }
}

/// Each line includes its first point, but not its last.
void DrawSquare(Expected& picture, int inset, QRgb color)
{
    const int right = picture.width - 1 - inset;
    const int bottom = picture.height - 1 - inset;
    for (int y = inset + 1; y <= bottom; ++y) {
        picture.At(right, y) = color;
        picture.At(inset, y) = color;
    }
    for (int x = inset + 1; x <= right; ++x) {
        picture.At(x, inset) = color;
        picture.At(x, bottom) = color;
    }
}

/// For each row of a corner of this radius, the outermost first: the number of pixels from the corner's centre that lie
/// within the circle at the height of the row's middle.
std::vector<int> CornerRows(double radius)
{
    std::vector<int> rows;
    for (int row = 0; row < std::floor(radius); ++row) {
        const double height = radius - row - 0.5;
        // The last pixel whose middle lies within; middles are 0.5, 1.5, ... from the centre.
        rows.push_back(static_cast<int>(std::floor(std::sqrt(radius * radius - height * height) + 0.5)));
    }
    return rows;
}

/// The first pixel of a row of a rounded rectangle with a whole radius; rows count from its upper edge.
int FirstOf(int row, int height, int radius)
{
    const int fromEdge = std::min(row, height - 1 - row);
    return fromEdge >= radius ? 0 : radius - CornerRows(radius)[static_cast<std::size_t>(fromEdge)];
}

/// Draws the outline: in every row, the pixels next to which the shape ends at the side, above or below.
void DrawRound(Expected& picture, int left, int top, int right, int bottom, int radius, QRgb color)
{
    const int width = right - left;
    const int height = bottom - top;
    for (int row = 0; row < height; ++row) {
        const int first = FirstOf(row, height, radius);
        const int above = row == 0 ? width : FirstOf(row - 1, height, radius);
        const int below = row == height - 1 ? width : FirstOf(row + 1, height, radius);
        for (int x = first; x < width - first; ++x) {
            const bool edge = x == first || x == width - 1 - first;
            const bool open = x < above || x >= width - above || x < below || x >= width - below;
            if (edge || open)
                picture.At(left + x, top + row) = color;
        }
    }
}

/// The first pixel that differs; empty if none does.
std::string Difference(const QImage& image, Expected& expected)
{
    if (image.size() != QSize(expected.width, expected.height))
        return "size " + std::to_string(image.width()) + " x " + std::to_string(image.height());
    for (int y = 0; y < expected.height; ++y) {
        for (int x = 0; x < expected.width; ++x) {
            if (image.pixel(x, y) != expected.At(x, y)) {
                return std::to_string(x) + ", " + std::to_string(y) + ": " + fakes::Hex(image.pixel(x, y)) + ", not " +
                       fakes::Hex(expected.At(x, y));
            }
        }
    }
    return {};
}

const QRgb Colours[] = {qRgb(255, 255, 192), qRgb(160, 195, 255), qRgb(255, 200, 200), qRgb(200, 255, 200)};

Expected Draw(int width, int height, bool tube, bool square, QRgb color, QRgb face)
{
    Expected picture{width, height};
    if (tube)
        DrawTube(picture, color);
    else
        DrawCorner(picture, color);
    if (square) {
        DrawSquare(picture, 0, face);
        DrawSquare(picture, 1, color);
    } else {
        DrawRound(picture, 0, 0, width - 1, height - 1, 10, face);
        DrawRound(picture, 1, 1, width - 2, height - 2, 9, color);
    }
    return picture;
}

/// A picture's colour in the form of the drawing calls.
std::int32_t Reversed(QRgb color)
{
    return qBlue(color) << 16 | qGreen(color) << 8 | qRed(color);
}

} // namespace

TEST_F(AlertTest, EveryStyleHasThesePixels)
{
    const QRgb face = app.palette().color(QPalette::Button).rgb();
    for (const bool tube : {false, true}) {
        for (const bool square : {false, true}) {
            for (const QRgb color : Colours) {
                SCOPED_TRACE(std::string(tube ? "tube " : "corner ") + (square ? "square " : "round ") +
                             fakes::Hex(color));
                form = std::make_unique<frmAlertWindow>(program);
                Show({.square = square, .color = Reversed(color), .tube = tube});
                Expected expected = Draw(160, 133, tube, square, color, face);
                EXPECT_EQ(Difference(Window()->Drawn(), expected), "");
            }
        }
    }
}

TEST_F(AlertTest, ThePictureHasTheseColoursInThesePlaces)
{
    Show({.color = 0xFFC3A0});
    const QImage corner = Window()->Drawn();
    EXPECT_EQ(corner.pixel(2, 2), qRgb(253, 254, 255)); // 255 - 95 * 2/160, 255 - 60 * 2/160, always down
    EXPECT_EQ(corner.pixel(80, 66), qRgb(207, 225, 255));
    EXPECT_EQ(corner.pixel(0, 0), qRgb(255, 255, 255)); // lines end here, and end points are not drawn
    EXPECT_EQ(corner.pixel(1, 1), qRgb(254, 254, 255));
    EXPECT_EQ(corner.pixel(158, 131), qRgb(160, 195, 255));
    form = std::make_unique<frmAlertWindow>(program);
    Show({.color = 0xFFC3A0, .tube = true});
    const QImage tube = Window()->Drawn();
    EXPECT_EQ(tube.pixel(80, 33), qRgb(207, 225, 255));
    EXPECT_EQ(tube.pixel(80, 66), qRgb(255, 255, 255));
    EXPECT_EQ(tube.pixel(2, 66), qRgb(255, 255, 255));
}

TEST_F(AlertTest, AWindowThatGrewIsDrawnInItsNewSize)
{
    const QRgb face = app.palette().color(QPalette::Button).rgb();
    const std::string text = "One line\r\nand one\r\nand one\r\nand one\r\nand one\r\nand one\r\nand one\r\nand one\r\n"
                             "and one\r\nand one\r\nand one\r\nand one";
    Show({.fit = true, .square = false, .tube = true}, text);
    const int height = form->Height() / 15;
    ASSERT_GT(height, 133);
    EXPECT_EQ(height, 5 + form->lblMessage.Place.get().height + 15);
    Expected expected = Draw(160, height, true, false, Colours[0], face);
    EXPECT_EQ(Difference(Window()->Drawn(), expected), "");
}

TEST_F(AlertTest, OnAFineScreenTheSameDrawingIsFiner)
{
    QImage image(320, 266, QImage::Format_RGB32);
    image.setDevicePixelRatio(2);
    const auto vertex = [](int x, int y, QRgb color) {
        TriVertex result;
        result.x = x;
        result.y = y;
        ColorToVertex(result, Reversed(color));
        return result;
    };
    const TriVertex corner[] = {vertex(0, 0, White), vertex(160, 0, White), vertex(160, 133, Colours[1]),
                                vertex(0, 133, White)};
    const GradientTriangle triangles[] = {{0, 1, 2}, {0, 2, 3}};
    ASSERT_TRUE(FillTriangles(image, corner, triangles));
    Expected gradient{320, 266};
    DrawCorner(gradient, Colours[1]);
    EXPECT_EQ(Difference(image, gradient), "");

    const TriVertex tube[] = {vertex(0, 0, Colours[2]), vertex(160, 66, White), vertex(160, 133, Colours[2]),
                              vertex(0, 66, White)};
    const GradientRect rects[] = {{0, 1}, {3, 2}};
    ASSERT_TRUE(FillRectsDown(image, tube, rects));
    Expected halves{320, 266};
    for (int y = 0; y < 266; ++y) {
        for (int x = 0; x < 320; ++x)
            halves.At(x, y) = y < 132 ? Between(Colours[2], White, y, 132) : Between(White, Colours[2], y - 132, 134);
    }
    EXPECT_EQ(Difference(image, halves), "");

    // At ratio 2 a line is two device pixels wide and ends that much before its end point.
    image.fill(White);
    DrawLine(image, {159, 132}, {159, 0}, Qt::red);
    for (int y = 0; y < 266; ++y) {
        EXPECT_EQ(image.pixel(317, y), White);
        EXPECT_EQ(image.pixel(318, y), y < 2 ? White : qRgb(255, 0, 0));
        EXPECT_EQ(image.pixel(319, y), y < 2 ? White : qRgb(255, 0, 0));
    }

    // The outline is two device pixels wide where it is straight, and lies within the finer shape.
    image.fill(White);
    DrawRoundRect(image, QRect(0, 0, 159, 132), QSize(20, 20), Qt::red);
    const QRegion shape = RoundRectRegion(QRect(0, 0, 159, 132), QSize(20, 20), 2);
    const std::vector<int> rows = CornerRows(20);
    for (int y = 0; y < 266; ++y) {
        for (int x = 0; x < 320; ++x) {
            const bool red = image.pixel(x, y) != White;
            if (red) {
                EXPECT_TRUE(shape.contains(QPoint(x, y))) << x << ", " << y;
            }
            if (y >= 20 && y < 244) {
                EXPECT_EQ(red, x < 2 || x == 316 || x == 317) << x << ", " << y;
            }
        }
        if (y < 20) {
            EXPECT_NE(image.pixel(20 - rows[static_cast<std::size_t>(y)], y), White) << y;
        }
    }
}

TEST_F(AlertTest, AMeshThatNamesAMissingVertexDrawsNothing)
{
    QImage image(4, 4, QImage::Format_RGB32);
    image.fill(White);
    const TriVertex vertices[] = {{0, 0}, {4, 0}, {4, 4}};
    const GradientTriangle triangles[] = {{0, 1, 2}, {0, 1, 3}};
    const GradientRect rects[] = {{0, 3}};
    EXPECT_FALSE(FillTriangles(image, vertices, triangles));
    EXPECT_FALSE(FillRectsDown(image, vertices, rects));
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(image.pixel(i % 4, i / 4), White);
}

TEST_F(AlertTest, LinesLeaveTheirEndPointOut)
{
    QImage image(6, 6, QImage::Format_RGB32);
    const auto drawn = [&image](QPoint from, QPoint to) {
        image.fill(White);
        DrawLine(image, from, to, Qt::black);
        std::vector<QPoint> points;
        for (int i = 0; i < 36; ++i) {
            if (image.pixel(i % 6, i / 6) != White)
                points.emplace_back(i % 6, i / 6);
        }
        return points;
    };
    EXPECT_EQ(drawn({1, 2}, {4, 2}), (std::vector<QPoint>{{1, 2}, {2, 2}, {3, 2}}));
    EXPECT_EQ(drawn({4, 2}, {1, 2}), (std::vector<QPoint>{{2, 2}, {3, 2}, {4, 2}}));
    EXPECT_EQ(drawn({0, 0}, {3, 3}), (std::vector<QPoint>{{0, 0}, {1, 1}, {2, 2}}));
    EXPECT_EQ(drawn({2, 4}, {2, 4}), (std::vector<QPoint>{}));
}

TEST_F(AlertTest, ARoundWindowHasThisShape)
{
    const QRegion region = RoundRectRegion(QRect(0, 0, 160, 133), QSize(19, 19), 1);
    EXPECT_EQ(region.boundingRect(), QRect(0, 0, 160, 133));
    EXPECT_FALSE(region.contains(QPoint(5, 0)));
    EXPECT_TRUE(region.contains(QPoint(6, 0)));
    constexpr double radius = 9.5;
    for (int y = 0; y < 133; ++y) {
        // In the circle's row at the height of the pixels' middles: the first pixel whose middle is not left of the
        // circle.
        const double height = std::max(radius - 0.5 - std::min(y, 132 - y), 0.0);
        const int cut = static_cast<int>(std::ceil(radius - std::sqrt(radius * radius - height * height) - 0.5));
        for (int x = 0; x < 160; ++x)
            EXPECT_EQ(region.contains(QPoint(x, y)), x >= cut && x < 160 - cut) << x << ", " << y;
    }
}

TEST_F(AlertTest, SlidesInBelowTheWorkAreasRightEndAndTakesNoKeyboard)
{
    Show({});
    const PlacedWindow* window = Window();
    EXPECT_EQ(window->geometry(), QRect(WorkArea().right() + 1 - 160, WorkArea().bottom() + 1, 160, 133));
    EXPECT_TRUE(window->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_TRUE(window->windowFlags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_TRUE(window->windowFlags() & Qt::WindowStaysOnTopHint);
    EXPECT_FALSE(window->isActiveWindow());
    EXPECT_TRUE(QTest::qWaitFor([&] { return form->Top() == (WorkArea().bottom() + 1) * 15 - 2000; }, 3000));
    EXPECT_EQ(window->pos().y(), WorkArea().bottom() + 1 - 133);
}

TEST_F(AlertTest, FadesToEveryOpacityItIsGiven)
{
    Show({.fade = true});
    EXPECT_EQ(Window()->windowOpacity(), 0);
    form->Timer1.Enabled = false;
    for (int i = 1; i <= 50; ++i)
        form->Timer1.Fire();
    EXPECT_EQ(Window()->windowOpacity(), 0); // a disabled timer does not tick
    form->Timer1.Enabled = true;
    for (int i = 1; i <= 25; ++i)
        form->Timer1.Fire();
    EXPECT_NEAR(Window()->windowOpacity(), 128 / 255.0, 0.001);
    for (int i = 1; i <= 25; ++i)
        form->Timer1.Fire();
    EXPECT_EQ(Window()->windowOpacity(), 1);
}

TEST_F(AlertTest, TransparencyTakesALayeredWindow)
{
    Show({});
    const WindowHandle window = form->Handle();
    EXPECT_FALSE(windows.SetLayeredWindowAttributes(window, 0, 100, LWA_ALPHA));
    EXPECT_EQ(windows.SetWindowLongA(window, GWL_EXSTYLE, WS_EX_LAYERED | 8), 0);
    EXPECT_EQ(windows.GetWindowLongA(window, GWL_EXSTYLE), WS_EX_LAYERED | 8);
    EXPECT_TRUE(windows.SetLayeredWindowAttributes(window, 0, 51, LWA_ALPHA));
    EXPECT_NEAR(Window()->windowOpacity(), 0.2, 0.001);
    EXPECT_FALSE(windows.SetLayeredWindowAttributes(window + 1000, 0, 51, LWA_ALPHA));
}

TEST_F(AlertTest, ClicksOnTheTextAndBesideItSendItAway)
{
    Show({.seconds = 0});
    QTest::mouseClick(MessageLabel(), Qt::LeftButton, {}, QPoint(20, 5));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !form->IsLoaded(); }, 3000));
    Show({.seconds = 0});
    QTest::mouseClick(Window(), Qt::RightButton, {}, QPoint(80, 130));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !form->IsLoaded(); }, 3000));
    Show({.seconds = 0});
    // A press that is released outside the label is not a click.
    QTest::mousePress(MessageLabel(), Qt::LeftButton, {}, QPoint(20, 5));
    QTest::mouseRelease(MessageLabel(), Qt::LeftButton, {}, QPoint(-40, 5));
    QTest::qWait(50);
    form->Timer1.Enabled = false;
    EXPECT_LE(form->Top(), (WorkArea().bottom() + 1) * 15 - 50);
    form->Timer1.Enabled = true;
    const std::int32_t before = form->Top();
    form->Timer1.Fire();
    EXPECT_LT(form->Top(), before);
}

TEST_F(AlertTest, CanBeClickedAwayWhileAMessageBoxIsUp)
{
    Show({.seconds = 0});
    bool blocked = true;
    QTimer::singleShot(50, &app, [&] {
        QWidget* box = QApplication::activeModalWidget();
        ASSERT_NE(box, nullptr);
        QTest::mouseClick(Window()->windowHandle(), Qt::LeftButton, {}, QPoint(80, 120));
        blocked = !QTest::qWaitFor([this] { return !form->IsLoaded(); }, 3000);
        QTest::keyClick(box, Qt::Key_Escape);
    });
    windows.MsgBox("Wait", vbOKOnly, "Voxmate");
    EXPECT_FALSE(blocked);
}

TEST_F(AlertTest, IsReadByAScreenReaderAsAnAnnouncementOfItsText)
{
    Show({.seconds = 4}, "Tea & cake");
    QAccessibleInterface* window = QAccessible::queryAccessibleInterface(Window());
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->role(), QAccessible::AlertMessage);
    EXPECT_EQ(window->text(QAccessible::Name), QStringLiteral("Tea & cake"));
    QAccessibleInterface* label = QAccessible::queryAccessibleInterface(MessageLabel());
    ASSERT_NE(label, nullptr);
    EXPECT_EQ(label->role(), QAccessible::StaticText);
    EXPECT_EQ(label->text(QAccessible::Name), QStringLiteral("Tea & cake"));
}

TEST_F(AlertTest, IsSentAwayByAScreenReader)
{
    Show({});
    QAccessibleInterface* window = QAccessible::queryAccessibleInterface(Window());
    ASSERT_NE(window, nullptr);
    ASSERT_NE(window->actionInterface(), nullptr);
    EXPECT_EQ(window->actionInterface()->actionNames(), QStringList{QAccessibleActionInterface::pressAction()});
    window->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !form->IsLoaded(); }, 3000));
}

TEST_F(AlertTest, TextBreaksAtItsEdgeAndIsWhollyToBeSeenInAWindowThatFits)
{
    const int one = windows.TextHeight(0, {"Tahoma", 8.25}, "Tea", 150);
    EXPECT_GT(one, 0);
    EXPECT_EQ(windows.TextHeight(0, {"Tahoma", 8.25}, "Tea\r\n\r\nTea\nTea", 150), 4 * one);
    EXPECT_EQ(windows.TextHeight(0, {"Tahoma", 8.25}, std::string(60, 'M'), 150) % one, 0);
    EXPECT_GE(windows.TextHeight(0, {"Tahoma", 8.25}, std::string(60, 'M'), 150), 3 * one);
    EXPECT_GT(windows.TextHeight(0, {"Tahoma", 16}, "Tea", 150), one);

    Show({.fit = true}, std::string(60, 'M') + "\r\n" + std::string(200, 'x'));
    form->Timer1.Enabled = false;
    const QImage image = Window()->grab().toImage();
    const auto dark = [&image](int x, int y) { return qGray(image.pixel(x, y)) < 100; };
    int left = image.width();
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (dark(x, y)) {
                left = std::min(left, x);
                right = std::max(right, x);
                bottom = y;
            }
        }
    }
    EXPECT_GE(left, 5);
    EXPECT_LT(right, 155);
    EXPECT_GT(bottom, image.height() - 15 - one);
    EXPECT_LT(bottom, image.height() - 15);
}

TEST_F(AlertTest, NoWordOfATextIsLeftOutInAWindowThatDoesNotGrow)
{
    Show({});
    const auto drawn = [this](const std::string& text) {
        frmAlertWindow second(program);
        second.DisplayMessage(text, 9999, true, 0, false, true, true, 0xC0FFFF, false);
        second.Timer1.Enabled = false;
        QImage image;
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (widget->isVisible() && widget->accessibleName().contains(QStringLiteral("Rem. Id: 2")))
                image = widget->grab().toImage();
        }
        second.Unload();
        return image;
    };
    // As much as a reminder's record can hold: 99 bytes of title and description.
    const std::string head = "Missed Reminder\r\nRem. Id: 2\r\nTitle: ";
    const std::string middle = "\r\nDate: 03/07/2004\r\nTime: 09:05\r\nDesc: ";
    std::string words;
    while (words.size() < 76)
        words += "whether the keys are ";
    std::string ends;
    while (ends.size() < 60)
        ends += "a\r\n";
    const std::string texts[] = {head + "Keys" + middle + words, head + std::string(99 - 8, 'W') + middle,
                                 head + "Keys" + middle + ends, head + "Keys" + middle + std::string(90, '@')};
    for (const std::string& text : texts) {
        SCOPED_TRACE(text);
        const QImage one = drawn(text + "one");
        ASSERT_EQ(one.height(), 133);
        EXPECT_NE(one, drawn(text + "two")) << "the last word is not on show";
        EXPECT_EQ(one, drawn(text + "one"));
        // The window's edge cuts no line either.
        for (int y = 133 - 6; y < 131; ++y) {
            for (int x = 2; x < 158; ++x)
                ASSERT_GT(qGray(one.pixel(x, y)), 200) << x << ", " << y;
        }
    }
}

TEST_F(AlertTest, ATextThatFitsKeepsItsSize)
{
    Show({.fit = true}, "Missed Reminder\r\nRem. Id: 1\r\nTitle: Tea");
    PlacedLabel* label = MessageLabel();
    QImage plain(label->size(), QImage::Format_ARGB32_Premultiplied);
    plain.fill(Qt::white);
    label->render(&plain, {}, {}, {});
    EXPECT_EQ(label->height(), PlainTextHeight(label->text(), label->font(), label->width()));
    // An additional line does not change those above it.
    label->setText(label->text() + QStringLiteral("\nmore"));
    label->setFixedHeight(PlainTextHeight(label->text(), label->font(), label->width()));
    Window()->setFixedHeight(label->y() + label->height() + 15);
    QImage longer(label->size(), QImage::Format_ARGB32_Premultiplied);
    longer.fill(Qt::white);
    label->render(&longer, {}, {}, {});
    EXPECT_EQ(longer.copy(plain.rect()), plain);
    EXPECT_NE(longer, plain);
}

TEST_F(AlertTest, AVersionRecordOfAnotherSizeIsRefused)
{
    OsVersionInfo info;
    EXPECT_FALSE(windows.GetVersionExA(info));
    info.dwOSVersionInfoSize = 148;
    EXPECT_TRUE(windows.GetVersionExA(info));
    EXPECT_EQ(info.dwPlatformId, 2U);
    EXPECT_EQ(info.dwMajorVersion, 5U);
}

TEST_F(AlertTest, TheWorkAreaAndTheScreenAreToldByTheirEdges)
{
    WinRect area;
    EXPECT_TRUE(windows.SystemParametersInfoA(SPI_GETWORKAREA, 0, area, 0));
    const QRect work = WorkArea();
    EXPECT_EQ(area, (WinRect{work.left(), work.top(), work.left() + work.width(), work.top() + work.height()}));
    EXPECT_FALSE(windows.SystemParametersInfoA(SPI_GETWORKAREA + 1, 0, area, 0));
    EXPECT_EQ(windows.ScreenHeight(), QGuiApplication::primaryScreen()->geometry().height() * 15);
    EXPECT_EQ(windows.TwipsPerPixelY(), 15);
}

TEST_F(AlertTest, AnOrdinaryWindowIsKeptOnTopWithoutBeingHiddenForIt)
{
    TestForm ordinary(windows);
    ordinary.Show();
    QWidget* window = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QStringLiteral("frmTest") && widget->isVisible())
            window = widget;
    }
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(windows.SetWindowPos(ordinary.hWnd(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE));
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(window->windowHandle()->flags() & Qt::WindowStaysOnTopHint);
    EXPECT_TRUE(windows.SetWindowPos(ordinary.hWnd(), HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE));
    EXPECT_TRUE(window->isVisible());
    EXPECT_FALSE(window->windowHandle()->flags() & Qt::WindowStaysOnTopHint);
    EXPECT_FALSE(windows.SetWindowPos(ordinary.hWnd(), HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE));
    EXPECT_FALSE(windows.SetWindowPos(0, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE));
}

TEST_F(AlertTest, TheFastestTimerMakesUpForTicksThatCameTooLate)
{
    form->Timer1.Enabled = false;
    int ticks = 0;
    form->Timer1.Tick = [&ticks] { ++ticks; };
    Show({});
    QElapsedTimer running;
    running.start();
    while (running.elapsed() < 900) {
        QTest::qWait(60);
        // The program is busy for a while.
        QElapsedTimer busy;
        busy.start();
        while (busy.elapsed() < 60) {
        }
    }
    QTest::qWait(300);
    const auto due = static_cast<double>(running.elapsed()) / 10;
    form->Timer1.Enabled = false;
    // If late ticks were not made up for, half of them would be missing.
    EXPECT_GE(ticks, due * 0.85);
    EXPECT_LE(ticks, due + 2);
}

} // namespace voxmate::qt
