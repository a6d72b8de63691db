// Windows that appear without the user having asked: where they are placed, and that they take no focus. And the
// message boxes that ask.
#include "platform/WindowSystem.h"
#include "qt/dialogs/Placement.h"
#include "tests/unit/qt/QtFixture.h"

#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

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

/// Runs `look` on the next message box, then presses a key in it.
void AnswerBox(Qt::Key key, const std::function<void(QMessageBox&)>& look = {})
{
    QTimer::singleShot(30, &App(), [key, look] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        if (look)
            look(*box);
        QTest::keyClick(box, key);
    });
}

QStringList Buttons(const QMessageBox& box)
{
    QStringList texts;
    for (const auto& [button, name] : {std::pair{QMessageBox::Yes, "Yes"}, std::pair{QMessageBox::No, "No"},
                                       std::pair{QMessageBox::Cancel, "Cancel"}, std::pair{QMessageBox::Ok, "OK"}}) {
        if (box.button(button))
            texts.append(QString::fromLatin1(name) + (box.defaultButton() == box.button(button) ? " default" : "") +
                         (box.escapeButton() == box.button(button) ? " escape" : ""));
    }
    return texts;
}

} // namespace

TEST(Placement, TheFirstWindowStandsInTheUpperRightCorner)
{
    EXPECT_EQ(FreePlace(area, window, {}), QPoint(846, 14));
}

TEST(Placement, AsManyAsTheScreenHoldsCoverNeitherEachOtherNorItsEdges)
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

TEST(Placement, APlaceThatHasBecomeFreeIsTakenAgain)
{
    QList<QRect> taken;
    for (int i = 0; i < 4; ++i)
        taken.append({FreePlace(area, window, taken), window});
    const QRect second = taken.takeAt(1);
    EXPECT_EQ(FreePlace(area, window, taken), second.topLeft());
}

TEST(Placement, FortyWindowsStayOnTheScreenWithTheirTitlesApart)
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

TEST(Placement, AWindowOverTheCharacterMovesBesideItByTheShortestWay)
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

TEST(Placement, AWindowLargerThanTheScreenBeginsInItsCorner)
{
    const QRect small(100, 50, 300, 200);
    for (const QList<QRect>& taken : {QList<QRect>{}, QList<QRect>{QRect(100, 50, 420, 300)}})
        EXPECT_TRUE(small.contains(FreePlace(small, window, taken)));
}

TEST(Placement, FormsThatDoNotTakeTheKeyboardStandBesideEachOtherAndLeaveItAlone)
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

TEST_F(QtTest, ABoxOfYesNoAndCancelAnswersEachAndEscapeMeansCancel)
{
    const auto ask = [this] { return windows.MsgBox("Save?", vbYesNoCancel + vbQuestion, "Voxmate"); };
    AnswerBox(Qt::Key_Escape, [](QMessageBox& box) {
        EXPECT_EQ(Buttons(box), (QStringList{"Yes default", "No", "Cancel escape"}));
        EXPECT_FALSE(box.iconPixmap().isNull());
    });
    EXPECT_EQ(ask(), vbCancel);
    AnswerBox(Qt::Key_Return);
    EXPECT_EQ(ask(), vbYes);
    for (const auto& [button, answer] : {std::pair{QMessageBox::Yes, vbYes}, std::pair{QMessageBox::No, vbNo},
                                         std::pair{QMessageBox::Cancel, vbCancel}}) {
        QTimer::singleShot(30, &app, [button = button] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            QTest::mouseClick(box->button(button), Qt::LeftButton);
        });
        EXPECT_EQ(ask(), answer);
    }
    QTimer::singleShot(30, &app, [] { QApplication::activeModalWidget()->close(); });
    EXPECT_EQ(ask(), vbCancel);
}

TEST_F(QtTest, TheSecondButtonCanBeTheDefault)
{
    AnswerBox(Qt::Key_Return, [](QMessageBox& box) {
        EXPECT_EQ(Buttons(box), (QStringList{"Yes", "No default escape"}));
    });
    EXPECT_EQ(windows.MsgBox("Delete?", vbYesNo + vbQuestion + vbDefaultButton2, "Voxmate"), vbNo);
    AnswerBox(Qt::Key_Return, [](QMessageBox& box) {
        EXPECT_EQ(Buttons(box), (QStringList{"Yes", "No default", "Cancel escape"}));
    });
    EXPECT_EQ(windows.MsgBox("Delete?", vbYesNoCancel + vbQuestion + vbDefaultButton2, "Voxmate"), vbNo);
}

TEST_F(QtTest, EachIconIsItsOwnAndStyleZeroHasNone)
{
    QList<QImage> pictures;
    for (const int icon : {vbCritical, vbQuestion, vbExclamation, vbInformation}) {
        AnswerBox(Qt::Key_Escape, [&](QMessageBox& box) { pictures.append(box.iconPixmap().toImage()); });
        EXPECT_EQ(windows.MsgBox("Text", icon, "Voxmate"), vbOK);
        ASSERT_FALSE(pictures.back().isNull());
        EXPECT_EQ(pictures.indexOf(pictures.back()), pictures.size() - 1);
    }
    AnswerBox(Qt::Key_Escape, [](QMessageBox& box) {
        EXPECT_TRUE(box.iconPixmap().isNull());
        EXPECT_EQ(box.icon(), QMessageBox::NoIcon);
    });
    EXPECT_EQ(windows.MsgBox("Text", 0, "Voxmate"), vbOK);
}

} // namespace voxmate::qt
