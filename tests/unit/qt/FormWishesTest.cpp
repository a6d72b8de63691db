// What a form can wish of its window beyond its controls: menus added from outside, keys of menu items, where the
// keyboard begins, size and place from an earlier run; and Escape, which the program may take first.
#include "tests/unit/qt/QtTest.h"

#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QWindow>

namespace voxmate::qt
{

namespace
{

class FormWishesTest : public QtTest
{
protected:
    TestForm other{windows};

    FormWishesTest() { form.Unload(); }
    void Show()
    {
        other.Show();
        Window()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    }
};

TEST_F(FormWishesTest, AMenuAddedFromOutsideStandsBehindTheFormsOwn)
{
    Menu& added = other.AddMenu("mnuAdded", "&Added");
    added.Load("mnuOne", "&One").Click = Note("one");
    Show();
    const QList<QAction*> bar = Window()->findChild<QMenuBar*>()->actions();
    ASSERT_EQ(bar.size(), 2);
    EXPECT_EQ(bar[1]->text(), "&Added");
    bar[1]->menu()->actions().first()->trigger();
    EXPECT_EQ(happened, Happened{"one"});
}

TEST_F(FormWishesTest, AMenuTellsThatItIsAboutToOpen)
{
    Menu& added = other.AddMenu("mnuAdded", "&Added");
    Menu& item = added.Load("mnuOne", "&One");
    item.Checkable = true;
    added.Click = [this, &item] {
        happened.push_back("opens");
        item.Checked = !item.Checked;
    };
    Show();
    auto* menu = Find<QMenu>("mnuAdded");
    EXPECT_TRUE(happened.empty());
    for (const bool checked : {true, false}) {
        menu->popup({0, 0});
        EXPECT_EQ(menu->actions().first()->isChecked(), checked);
        EXPECT_TRUE(menu->actions().first()->isCheckable());
        menu->close();
    }
    EXPECT_EQ(happened, (Happened{"opens", "opens"}));
}

TEST_F(FormWishesTest, AnItemsKeyChoosesItWithEitherEnterKeyWhateverHasTheKeyboard)
{
    other.mnuExit.Shortcut = "Ctrl+Enter";
    other.mnuExit.Click = Note("chosen");
    Show();
    Find("txtText")->setFocus();
    QTest::keyClick(Window()->windowHandle(), Qt::Key_Return, Qt::ControlModifier);
    QTest::keyClick(Window()->windowHandle(), Qt::Key_Enter, Qt::ControlModifier | Qt::KeypadModifier);
    Find("cmdSpeak")->setFocus();
    QTest::keyClick(Window()->windowHandle(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(happened, (Happened{"chosen", "chosen", "chosen"}));
    EXPECT_EQ(other.txtText.Text.get(), "");
}

TEST_F(FormWishesTest, ALabelThatBreaksItsTextKeepsALinesRoomWithoutTextAndIsThenHidden)
{
    class LabelForm : public Form
    {
    public:
        explicit LabelForm(WindowSystem& host) : Form(host, "frmLabel")
        {
            Border = BorderStyle::Sizable;
            lbl.Wraps = true;
            Arrangement = Column({Item(lbl), Item(txt)});
        }
        Label lbl{this, "lbl"};
        TextBox txt{this, "txt"};
    } other(windows);
    other.Show();
    QCoreApplication::processEvents();
    QLabel* label = nullptr;
    QWidget* field = nullptr;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == QStringLiteral("frmLabel")) {
            label = ChildOf<QLabel>(window, "lbl");
            field = ChildOf<QWidget>(window, "txt");
        }
    }
    ASSERT_NE(label, nullptr);
    EXPECT_FALSE(label->isVisible());
    const int place = field->y();
    other.lbl.Caption = "Today at 16:00: tea";
    QCoreApplication::processEvents();
    EXPECT_TRUE(label->isVisible());
    EXPECT_EQ(field->y(), place);
}

TEST_F(FormWishesTest, TheKeyboardBeginsWhereTheFormWishes)
{
    other.FirstFocus = &other.txtName;
    Show();
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "txtName");
}

TEST_F(FormWishesTest, ASizableFormIsMadeLargerAndItsStretchedPartTakesTheRoom)
{
    other.Border = BorderStyle::Sizable;
    other.Arrangement.children.front().stretch = 1;
    Show();
    EXPECT_EQ(Window()->size(), Window()->sizeHint());
    const int before = Find("txtText")->height();
    const int below = Find("cmdOk")->height();
    Window()->resize(Window()->width() + 200, Window()->height() + 300);
    QCoreApplication::processEvents();
    EXPECT_EQ(Find("txtText")->height(), before + 300);
    EXPECT_EQ(Find("cmdOk")->height(), below);
    Window()->resize(1, 1);
    EXPECT_GE(Window()->height(), before);
}

TEST_F(FormWishesTest, SizeAndPlaceAreToldAndComeBack)
{
    other.Border = BorderStyle::Sizable;
    other.GeometryChanged = Note("changed");
    Show();
    happened.clear();
    Window()->resize(700, 500);
    Window()->move(40, 60);
    QCoreApplication::processEvents();
    EXPECT_EQ(happened, (Happened{"changed", "changed"}));
    const std::string kept = other.Geometry;
    EXPECT_FALSE(kept.empty());
    other.Unload();

    TestForm next(windows);
    next.Border = BorderStyle::Sizable;
    next.Geometry = kept;
    next.Show();
    EXPECT_EQ(Window()->size(), QSize(700, 500));
    EXPECT_EQ(Window()->pos(), QPoint(40, 60));
}

TEST_F(FormWishesTest, APlaceOutsideTheScreenIsBroughtBackOntoIt)
{
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    QWidget far;
    far.setGeometry(screen.right() + 500, screen.bottom() + 500, 420, 300);
    other.Border = BorderStyle::Sizable;
    other.Geometry = far.saveGeometry().toBase64().toStdString();
    Show();
    EXPECT_TRUE(screen.contains(Window()->geometry()));
}

TEST_F(FormWishesTest, AGeometryThatIsNotUnderstoodCountsAsNone)
{
    other.Border = BorderStyle::Sizable;
    other.Geometry = "not a geometry";
    Show();
    EXPECT_EQ(Window()->size(), Window()->sizeHint());
}

TEST_F(FormWishesTest, EscapeIsTheProgramsFirstAndTheWindowsIfItDoesNotTakeIt)
{
    struct Dialog : TestForm {
        explicit Dialog(WindowSystem& windows) : TestForm(windows) { cmdOk.IsCancel = true; }
    } dialog(windows);
    dialog.cmdOk.Click = Note("cancelled");
    dialog.Show();
    Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    bool takes = true;
    app.EscapePressed = [&] {
        happened.push_back("asked");
        return takes;
    };
    const auto press = [this] { QTest::keyClick(Window()->windowHandle(), Qt::Key_Escape); };
    press();
    EXPECT_EQ(happened, Happened{"asked"});
    takes = false;
    press();
    EXPECT_EQ(happened, (Happened{"asked", "asked", "cancelled"}));
    // Other keys, and Escape while a menu is open, are none of its business.
    takes = true;
    happened.clear();
    QTest::keyClick(Window()->windowHandle(), Qt::Key_Escape, Qt::ShiftModifier);
    QTest::keyClick(Window()->windowHandle(), Qt::Key_A);
    auto* menu = Find<QMenu>("mnuFile");
    menu->popup({0, 0});
    QTest::keyClick(menu->windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(menu->isVisible());
    EXPECT_EQ(std::count(happened.begin(), happened.end(), "asked"), 0);
    app.EscapePressed = nullptr;
}

} // namespace

} // namespace voxmate::qt
