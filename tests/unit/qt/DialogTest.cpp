// The controls that dialogs are made of, as real widgets.
#include "controls/OptionButton.h"
#include "controls/Pictures.h"
#include "controls/TabStrip.h"
#include "qt/dialogs/FontDialog.h"
#include "qt/widgets/DialogWidgets.h"
#include "qt/widgets/Widgets.h"
#include "tests/unit/qt/QtTest.h"

#include <QAccessible>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMovie>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTabBar>
#include <QTabWidget>
#include <QTimer>

#include <memory>
#include <optional>

namespace voxmate::qt
{

namespace
{

class DialogForm : public Form
{
public:
    explicit DialogForm(WindowSystem& windows) : Form(windows, "frmDialog")
    {
        lblText.Caption = "Short.";
        lblSample.Caption = "Sample";
        Arrangement = Column({
            Tabbed(SSTab1,
                   {Column({Framed(fraShape, Column({Item(optShape(0)), Item(optShape(1))})),
                            Framed(fraColor, Column({Item(optColor(0)), Item(optColor(1)), Item(optColor(2))}))}),
                    Column({Item(txtOther), Item(lblSample)})}),
            Framed(pane, Item(lblText).Min(160, 40)).Min(200, 80),
            Item(picture),
            Item(cmdOK),
        });
    }
    TabStrip SSTab1{this, "SSTab1", {"One", "Two"}};
    Frame fraShape{this, "fraShape", "A frame with a rather long caption indeed"};
    OptionGroup optShape{this, "optShape", {"Square", "Round"}};
    Frame fraColor{this, "fraColor", "Color"};
    OptionGroup optColor{this, "optColor", {"Red", "Green", "Blue"}};
    TextBox txtOther{this, "txtOther"};
    FontSample lblSample{this, "lblSample"};
    Pane pane{this, "pane"};
    Label lblText{this, "lblText"};
    MovingPicture picture{this, "picture", "about", 72};
    CommandButton cmdOK{this, "cmdOK", "OK"};
};

class DialogTest : public ::testing::Test
{
protected:
    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    DialogForm form{windows};
    std::vector<int> clicks;

    DialogTest()
    {
        form.optColor.Click = [this](int index) { clicks.push_back(index); };
        form.Show();
    }
    QWidget* Window() const
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == QStringLiteral("frmDialog") && window->isVisible())
                return window;
        }
        throw std::logic_error("the form has no window");
    }
    template <class W = QWidget>
    W* Find(const char* name) const
    {
        return ChildOf<W>(Window(), name);
    }
    QRadioButton* Color(int index) const
    {
        return Find<QRadioButton>(("optColor(" + std::to_string(index) + ")").c_str());
    }
    static void Click(QWidget* widget)
    {
        QTest::mouseClick(widget, Qt::LeftButton, {}, QPoint(8, widget->height() / 2));
    }
};

TEST_F(DialogTest, ChoosingAButtonUnsetsTheOthersOfItsGroupOnly)
{
    Click(Find("optShape(1)"));
    Click(Color(2));
    EXPECT_EQ(form.optColor.Selected(), 2);
    EXPECT_EQ(form.optShape.Selected(), 1);
    Click(Color(0));
    EXPECT_EQ(form.optColor.Selected(), 0);
    EXPECT_FALSE(Color(2)->isChecked());
    EXPECT_EQ(form.optShape.Selected(), 1);
    EXPECT_EQ(clicks, (std::vector<int>{2, 0}));
    Click(Color(0));
    EXPECT_EQ(clicks, (std::vector<int>{2, 0}));
}

TEST_F(DialogTest, WhatTheProgramChoosesIsShownAndRaisesClickOnce)
{
    form.optColor.Select(1);
    EXPECT_TRUE(Color(1)->isChecked());
    form.optColor.Select(2);
    EXPECT_FALSE(Color(1)->isChecked());
    EXPECT_TRUE(Color(2)->isChecked());
    EXPECT_EQ(clicks, (std::vector<int>{1, 2}));
    form.optColor(2).Value = false;
    EXPECT_FALSE(Color(2)->isChecked());
    EXPECT_EQ(form.optColor.Selected(), -1);
    EXPECT_EQ(clicks, (std::vector<int>{1, 2}));
    Click(Color(2));
    EXPECT_EQ(form.optColor.Selected(), 2);
}

TEST_F(DialogTest, ArrowKeysChooseWithinAGroup)
{
    form.optColor.Select(0);
    clicks.clear();
    Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    Color(0)->setFocus();
    QTest::keyClick(Color(0), Qt::Key_Down);
    QTest::keyClick(Color(1), Qt::Key_Down);
    EXPECT_EQ(form.optColor.Selected(), 2);
    EXPECT_EQ(clicks, (std::vector<int>{1, 2}));
    EXPECT_EQ(QApplication::focusWidget(), Color(2));
}

TEST_F(DialogTest, TabGoesToTheChosenButtonOfAGroup)
{
    form.optShape.Select(1);
    form.optColor.Select(2);
    Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    const auto tabOn = [] {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        return QApplication::focusWidget()->objectName();
    };
    Find<QTabWidget>("SSTab1")->setFocus();
    EXPECT_EQ(tabOn(), "optShape(1)");
    EXPECT_EQ(tabOn(), "optColor(2)");
    EXPECT_EQ(tabOn(), "cmdOK");
    form.optColor.Select(0);
    Find<QTabWidget>("SSTab1")->setFocus();
    EXPECT_EQ(tabOn(), "optShape(1)");
    EXPECT_EQ(tabOn(), "optColor(0)");
}

TEST_F(DialogTest, ADisabledButtonIsNotChosen)
{
    form.optColor.Enable(false);
    Click(Color(1));
    form.optColor(1).UserClick();
    EXPECT_EQ(form.optColor.Selected(), -1);
}

TEST_F(DialogTest, TabsSwitchByMouseByKeyboardAndByTheProgram)
{
    auto* tabs = Find<QTabWidget>("SSTab1");
    ASSERT_EQ(tabs->count(), 2);
    EXPECT_EQ(tabs->tabText(1), "Two");
    EXPECT_TRUE(Color(0)->isVisible());
    EXPECT_FALSE(Find("txtOther")->isVisible());
    QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, {}, tabs->tabBar()->tabRect(1).center());
    EXPECT_EQ(form.SSTab1.Tab, 1);
    EXPECT_TRUE(Find("txtOther")->isVisible());
    form.SSTab1.Tab = 0;
    EXPECT_TRUE(Color(0)->isVisible());
    QTest::keyClick(tabs->tabBar(), Qt::Key_Right);
    EXPECT_EQ(form.SSTab1.Tab, 1);
}

TEST_F(DialogTest, AFormThatIsShownAnewHasItsTabAndItsChoices)
{
    form.SSTab1.Tab = 1;
    form.optColor.Select(2);
    form.Unload();
    form.Show();
    EXPECT_EQ(Find<QTabWidget>("SSTab1")->currentIndex(), 1);
    EXPECT_TRUE(Color(2)->isChecked());
    EXPECT_FALSE(Color(0)->isChecked());
}

TEST_F(DialogTest, AFrameIsAsWideAsItsCaption)
{
    auto* frame = Find<GroupFrame>("fraShape");
    QFont heading = frame->font();
    heading.setWeight(QFont::DemiBold);
    EXPECT_GT(frame->width(), QFontMetrics(heading).horizontalAdvance(frame->title()));
}

TEST_F(DialogTest, ALongTextScrollsInItsPaneAndMovesNothing)
{
    auto* pane = Find<PaneArea>("pane");
    const QSize before = Window()->size();
    QTest::qWait(20);
    EXPECT_EQ(pane->verticalScrollBar()->maximum(), 0);
    std::string text;
    for (int i = 0; i < 40; ++i)
        text += "More and more words. ";
    form.lblText.Caption = text;
    QTest::qWait(50);
    EXPECT_GT(pane->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(pane->horizontalScrollBar()->maximum(), 0);
    EXPECT_EQ(Window()->size(), before);
    Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    QTest::keyClick(Find("cmdOK"), Qt::Key_PageDown);
    EXPECT_GT(pane->verticalScrollBar()->value(), 0);
    QTest::keyClick(Find("cmdOK"), Qt::Key_PageUp);
    EXPECT_EQ(pane->verticalScrollBar()->value(), 0);
}

TEST_F(DialogTest, AMovingPicturePlaysWhileItIsSeen)
{
    auto* label = Find<MovieLabel>("picture");
    EXPECT_EQ(label->size(), QSize(72, 72));
    ASSERT_TRUE(label->movie()->isValid());
    EXPECT_EQ(label->movie()->state(), QMovie::Running);
    EXPECT_GT(label->movie()->frameCount(), 1);
    EXPECT_EQ(label->movie()->loopCount(), -1);
    const QImage seen = label->grab().toImage();
    EXPECT_NE(seen.pixelColor(36, 36), seen.pixelColor(2, 36));
    form.Hide();
    EXPECT_EQ(label->movie()->state(), QMovie::NotRunning);
    form.Show();
    EXPECT_EQ(label->movie()->state(), QMovie::Running);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(label)->role(), QAccessible::Animation);
}

TEST_F(DialogTest, TheMovingPictureSuitsTheTheme)
{
    auto* label = Find<MovieLabel>("picture");
    const QImage light = label->grab().toImage();
    QPalette dark = label->palette();
    dark.setColor(QPalette::Window, Qt::black);
    label->setPalette(dark);
    ASSERT_TRUE(label->movie()->isValid());
    EXPECT_EQ(label->movie()->state(), QMovie::Running);
    EXPECT_GT(light.pixelColor(36, 4).lightness(), 200);
    EXPECT_LT(label->grab().toImage().pixelColor(36, 4).lightness(), 100);
    label->setPalette({});
    EXPECT_EQ(label->grab().toImage().pixelColor(36, 4), light.pixelColor(36, 4));
}

TEST_F(DialogTest, TheMovingPicturesAreSmallFiles)
{
    for (const char* name : {"about", "about-dark"})
        EXPECT_LT(QFileInfo(windows.Icons().MoviePath(QString::fromLatin1(name))).size(), 60 * 1024) << name;
}

TEST_F(DialogTest, ASampleIsDrawnInItsFontOnOneLineWhateverItsSize)
{
    form.SSTab1.Tab = 1;
    QWidget* sample = Find("lblSample");
    const QSize size = sample->size();
    const QImage small = sample->grab().toImage();
    form.lblSample.Font = FontSpec{"DejaVu Serif", 12};
    const QImage serif = sample->grab().toImage();
    EXPECT_NE(serif, small);
    form.lblSample.Font = FontSpec{"DejaVu Serif", 72};
    const QImage large = sample->grab().toImage();
    EXPECT_NE(large, serif);
    EXPECT_EQ(sample->size(), size);
    // The edge of the field stays free of ink.
    for (int x = 10; x < large.width() - 10; ++x)
        ASSERT_EQ(large.pixelColor(x, 1), large.pixelColor(10, 1)) << x;
}

class FontDialogTest : public ::testing::Test
{
protected:
    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};

    /// Shows the dialog, does something in it, and returns what was chosen.
    std::optional<FontSpec> Choose(const FontSpec& font, const std::function<void(FontDialog&)>& act)
    {
        bool acted = false;
        QTimer::singleShot(20, &app, [&] {
            auto* dialog = dynamic_cast<FontDialog*>(QApplication::activeModalWidget());
            acted = dialog != nullptr;
            if (!dialog)
                return;
            act(*dialog);
            if (dialog->isVisible())
                dialog->reject();
        });
        FontSpec chosen = font;
        const bool taken = windows.ShowFont(chosen, 4, 72);
        EXPECT_TRUE(acted);
        EXPECT_TRUE(taken || chosen == font);
        return taken ? std::optional(chosen) : std::nullopt;
    }
    static void Press(FontDialog& dialog, QDialogButtonBox::StandardButton button)
    {
        QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
    }
    static void Type(FontDialog& dialog, const QString& name)
    {
        auto* field = dialog.findChild<QLineEdit*>(QStringLiteral("fontName"));
        field->selectAll();
        QTest::keyClicks(field, name);
    }
};

TEST_F(FontDialogTest, AFamilyAndASizeAreChosen)
{
    ASSERT_TRUE(QFontDatabase::hasFamily(QStringLiteral("DejaVu Sans")));
    const auto chosen = Choose({"DejaVu Serif", 10}, [](FontDialog& dialog) {
        auto* list = dialog.findChild<QListView*>(QStringLiteral("fontList"));
        EXPECT_EQ(list->currentIndex().data().toString(), "DejaVu Serif");
        Type(dialog, QStringLiteral("dejavu sans"));
        EXPECT_EQ(list->currentIndex().data().toString(), "DejaVu Sans");
        dialog.findChild<QSpinBox*>(QStringLiteral("fontSize"))->setValue(18);
        EXPECT_EQ(dialog.findChild<QLabel*>(QStringLiteral("fontSample"))->font(), QFont("DejaVu Sans", 18));
        Press(dialog, QDialogButtonBox::Ok);
    });
    EXPECT_EQ(chosen, (FontSpec{"DejaVu Sans", 18}));
}

TEST_F(FontDialogTest, EveryFamilyIsListedOnceWhoeverItsFoundriesAre)
{
    Choose({"DejaVu Serif", 10}, [](FontDialog& dialog) {
        const auto* list = dialog.findChild<QListView*>(QStringLiteral("fontList"));
        QStringList listed;
        for (int row = 0; row < list->model()->rowCount(); ++row)
            listed << list->model()->index(row, 0).data().toString();
        EXPECT_TRUE(listed.filter(QStringLiteral("[")).isEmpty()) << listed.join(u'|').toStdString();
        EXPECT_EQ(listed.removeDuplicates(), 0);
        for (const QString& family : QFontDatabase::families()) {
            const QString name = family.section(QStringLiteral(" ["), 0, 0);
            EXPECT_EQ(listed.contains(name), !QFontDatabase::isPrivateFamily(family)) << name.toStdString();
        }
    });
}

TEST_F(FontDialogTest, ARowOfTheListIsChosenByItsClick)
{
    const auto chosen = Choose({"DejaVu Serif", 10}, [](FontDialog& dialog) {
        auto* list = dialog.findChild<QListView*>(QStringLiteral("fontList"));
        const auto found = list->model()->match(list->model()->index(0, 0), Qt::DisplayRole, "DejaVu Sans Mono");
        ASSERT_FALSE(found.isEmpty());
        list->scrollTo(found.first());
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(found.first()).center());
        Press(dialog, QDialogButtonBox::Ok);
    });
    EXPECT_EQ(chosen, (FontSpec{"DejaVu Sans Mono", 10}));
}

TEST_F(FontDialogTest, CancelChoosesNothing)
{
    EXPECT_EQ(Choose({"DejaVu Serif", 10}, [](FontDialog& dialog) { Press(dialog, QDialogButtonBox::Cancel); }),
              std::nullopt);
}

TEST_F(FontDialogTest, OnlyAFamilyThatIsInstalledIsTakenOrTheOneBefore)
{
    const auto chosen = Choose({"A Font From Elsewhere", 10}, [](FontDialog& dialog) {
        QPushButton* ok = dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        EXPECT_TRUE(ok->isEnabled());
        Type(dialog, QStringLiteral("Nothing like it"));
        EXPECT_FALSE(ok->isEnabled());
        Type(dialog, QStringLiteral("a font from elsewhere"));
        EXPECT_TRUE(ok->isEnabled());
        Press(dialog, QDialogButtonBox::Ok);
    });
    EXPECT_EQ(chosen, (FontSpec{"A Font From Elsewhere", 10}));
}

TEST_F(FontDialogTest, SizesStayWithinTheirLimits)
{
    const auto chosen = Choose({"DejaVu Serif", 10}, [](FontDialog& dialog) {
        auto* size = dialog.findChild<QSpinBox*>(QStringLiteral("fontSize"));
        EXPECT_EQ(size->minimum(), 4);
        EXPECT_EQ(size->maximum(), 72);
        size->setValue(500);
        Press(dialog, QDialogButtonBox::Ok);
    });
    EXPECT_EQ(chosen, (FontSpec{"DejaVu Serif", 72}));
}

} // namespace

} // namespace voxmate::qt
