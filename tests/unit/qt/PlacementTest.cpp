// Windows that appear without the user having asked: where they are placed, and that they take no focus.
#include "qt/dialogs/Placement.h"
#include "platform/WindowSystem.h"
#include "qt/character/ShapedWindow.h"
#include "qt/dialogs/ModalWindows.h"
#include "tests/unit/qt/QtTest.h"

#include <QDialog>
#include <QGuiApplication>
#include <QScreen>
#include <QVBoxLayout>

namespace voxmate::qt
{

namespace
{

const QRect area(0, 0, 1280, 800);
const QSize window(420, 300);

class NoticeLikeForm : public Form
{
public:
    explicit NoticeLikeForm(WindowSystem& windows) : Form(windows, "frmNoticeLike")
    {
        ShowActivated = false;
        Arrangement = Item(lblText).Min(200, 80);
    }
    Label lblText{this, "lblText", "Something to say"};
};

} // namespace

TEST(PlacementTest, TheFirstWindowStandsInTheUpperRightCorner)
{
    EXPECT_EQ(FreePlace(area, window, {}), QPoint(846, 14));
}

TEST(PlacementTest, AsManyAsTheScreenHoldsCoverNeitherEachOtherNorItsEdges)
{
    QList<QRect> taken;
    for (int i = 0; i < 4; ++i) {
        const QRect place(FreePlace(area, window, taken), window);
        EXPECT_TRUE(area.contains(place));
        for (const QRect& other : taken)
            EXPECT_FALSE(other.intersects(place));
        taken.append(place);
    }
}

TEST(PlacementTest, APlaceThatHasBecomeFreeIsTakenAgain)
{
    QList<QRect> taken;
    for (int i = 0; i < 4; ++i)
        taken.append({FreePlace(area, window, taken), window});
    const QRect second = taken.takeAt(1);
    EXPECT_EQ(FreePlace(area, window, taken), second.topLeft());
}

TEST(PlacementTest, FortyWindowsStayOnTheScreenWithTheirTitlesApart)
{
    QList<QRect> taken;
    for (int i = 0; i < 40; ++i) {
        const QRect place(FreePlace(area, window, taken), window);
        EXPECT_TRUE(area.contains(place)) << i;
        for (const QRect& other : taken) {
            const QPoint apart = other.topLeft() - place.topLeft();
            EXPECT_TRUE(std::abs(apart.x()) >= 15 || std::abs(apart.y()) >= 15) << i;
        }
        taken.append(place);
    }
}

TEST(PlacementTest, AWindowOverTheCharacterMovesBesideItByTheShortestWay)
{
    const QRect screen(0, 0, 1024, 568);
    const QRect dialog(182, 66, 660, 437);
    EXPECT_EQ(ClearOf(screen, dialog, {850, 300, 160, 200}), dialog) << "they do not touch";
    const QRect character(780, 380, 160, 180);
    const QRect moved = ClearOf(screen, dialog, character);
    EXPECT_FALSE(moved.intersects(character));
    EXPECT_TRUE(screen.contains(moved));
    EXPECT_EQ(moved.top(), dialog.top());
    EXPECT_LT(moved.left(), dialog.left());
    EXPECT_EQ(moved.size(), dialog.size());
    EXPECT_GT(ClearOf(screen, dialog, {100, 300, 100, 100}).left(), dialog.left());
    EXPECT_LT(ClearOf(screen, {182, 66, 660, 200}, {400, 250, 160, 180}).top(), 66);
    EXPECT_GT(ClearOf(screen, {182, 66, 660, 200}, {400, 10, 160, 80}).top(), 66);
    EXPECT_EQ(ClearOf(screen, dialog, {400, 200, 160, 180}), dialog) << "there is room nowhere";
}

// A dialog of folders on a small screen: it fits beside the character, but not with a gap between them.
TEST(PlacementTest, ADialogStandsAgainstTheCharacterWhereThereIsNoRoomForAGap)
{
    const QRect screen(0, 0, 1024, 600);
    const QRect dialog(30, 90, 726, 434);
    const QRect character(736, 362, 248, 222);
    const QRect moved = ClearOf(screen, dialog, character);
    EXPECT_FALSE(moved.intersects(character));
    EXPECT_TRUE(screen.contains(moved));
    EXPECT_EQ(moved.top(), dialog.top());
    EXPECT_EQ(ClearOf(screen, {0, 90, 737, 434}, character), QRect(0, 90, 737, 434)) << "one pixel too wide";
}

TEST(PlacementTest, AWindowLargerThanTheScreenBeginsInItsCorner)
{
    const QRect small(100, 50, 300, 200);
    for (const QList<QRect>& taken : {QList<QRect>{}, QList<QRect>{QRect(100, 50, 420, 300)}})
        EXPECT_TRUE(small.contains(FreePlace(small, window, taken)));
}

TEST(PlacementTest, FormsThatDoNotTakeTheKeyboardStandBesideEachOtherAndLeaveItAlone)
{
    App();
    QtWindowSystem windows(VOXMATE_SHARE_DIR);
    NoticeLikeForm first(windows);
    NoticeLikeForm second(windows);
    first.Show();
    second.Show();
    QList<QRect> shown;
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() != QStringLiteral("frmNoticeLike") || !widget->isVisible())
            continue;
        EXPECT_TRUE(widget->testAttribute(Qt::WA_ShowWithoutActivating));
        shown.append(widget->frameGeometry());
    }
    ASSERT_EQ(shown.size(), 2);
    EXPECT_FALSE(shown[0].intersects(shown[1]));
}

// A dialog may get wider after it has come up, when what it shows has been found.
TEST(PlacementTest, ADialogThatNeedsMoreRoomThanAtFirstMovesAsideOfTheCharacter)
{
    App();
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget character;
    character.setWindowTitle(QString::fromLatin1(CharacterTitle));
    character.setGeometry(screen.center().x() + 110, screen.center().y() - 100, 200, 200);
    character.show();
    QDialog dialog;
    LetCharacterLiveBeside(dialog);
    auto* content = new QWidget;
    content->setMinimumSize(200, 200);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(content);
    dialog.show();
    ASSERT_FALSE(dialog.geometry().intersects(character.geometry()));
    content->setMinimumSize(300, 200);
    EXPECT_TRUE(QTest::qWaitFor([&] { return dialog.width() >= 300; }));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !dialog.geometry().intersects(character.geometry()); }, 2000));
    // What the user makes larger stays where it is.
    const QPoint place = dialog.pos();
    dialog.resize(dialog.size() + QSize(200, 0));
    QCoreApplication::processEvents();
    EXPECT_EQ(dialog.pos(), place);
}

} // namespace voxmate::qt
