// Forms as real windows: user actions reach the control, property changes by the program reach the widget.
#include "tests/unit/qt/QtTest.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextBlock>
#include <QTimer>

namespace voxmate::qt
{

using FormTest = QtTest;

TEST_F(FormTest, AFixedFormIsJustAsLargeAsItsLayoutNeeds)
{
    EXPECT_EQ(Window()->minimumSize(), Window()->maximumSize());
    EXPECT_EQ(Window()->size(), Window()->sizeHint());
}

TEST_F(FormTest, AFormTooLargeForTheScreenScrollsToTheControlThatTheKeyboardReaches)
{
    Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    const int room = Window()->screen()->availableGeometry().height();
    Find("txtText")->setMinimumHeight(2 * room);
    ASSERT_TRUE(QTest::qWaitFor([&] { return Window()->frameGeometry().height() > room / 2; }));
    EXPECT_LE(Window()->frameGeometry().height(), room);
    EXPECT_TRUE(Find("comEngine")->visibleRegion().isEmpty());
    while (QApplication::focusWidget()->objectName() != "comEngine")
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_EQ(Find("comEngine")->visibleRegion().boundingRect(), Find("comEngine")->rect());
}

// The toolkit's grid answers questions about rows that it does not have yet with whatever the memory held.
TEST_F(FormTest, ARowOfAGridThatBeginsWithAnEmptyCellIsAsHighAsItsContent)
{
    class GridForm : public Form
    {
    public:
        explicit GridForm(WindowSystem& windows) : Form(windows, "frmGrid")
        {
            Arrangement =
                Grid(2, {Item(lblFirst), Item(chkFirst), Space(0), Item(chkSecond), Space(0), Item(chkThird)});
        }
        Label lblFirst{this, "lblFirst", "First"};
        CheckBox chkFirst{this, "chkFirst", "One"};
        CheckBox chkSecond{this, "chkSecond", "Two"};
        CheckBox chkThird{this, "chkThird", "Three"};
    };
    for (int i = 0; i < 20; ++i) {
        std::vector<std::vector<int>> used(200, std::vector<int>(static_cast<std::size_t>(2 + i), 20'000));
        used.clear();
        GridForm grid(windows);
        grid.Show();
        const auto open = QApplication::topLevelWidgets();
        const auto found = std::find_if(open.begin(), open.end(), [](const QWidget* window) {
            return window->objectName() == QLatin1String("frmGrid") && window->isVisible();
        });
        ASSERT_NE(found, open.end());
        EXPECT_LT((*found)->height(), 300);
    }
}

TEST_F(FormTest, WidgetsCarryTheirControlsNamesAndAreNamedForAScreenReader)
{
    EXPECT_EQ(Find("cmdOk")->accessibleName(), "OK");
    EXPECT_EQ(Find("cmdSpeak")->accessibleName(), "Speak it");
    EXPECT_EQ(Find("txtText")->accessibleName(), "Text to read");
    EXPECT_EQ(Find("chkWhisper")->accessibleName(), "Whisper");
    EXPECT_EQ(Find<QLabel>("lblPitch")->buddy(), Find("scrPitch"));
    EXPECT_EQ(Find("stsBar1")->accessibleName(), "Activity");
    form.stsBar.SetPanel(1, "Busy...");
    EXPECT_EQ(Find("stsBar1")->accessibleName(), "Busy...");
    EXPECT_EQ(Find("stsBar1")->accessibleDescription(), "Activity");
}

TEST_F(FormTest, TabGoesInTheOrderOfDeclaration)
{
    Window()->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    std::vector<QString> order;
    for (int i = 0; i < 7; ++i) {
        order.push_back(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order,
              (std::vector<QString>{"txtText", "cmdSpeak", "cmdOk", "txtName", "scrPitch", "chkWhisper", "comEngine"}));
    EXPECT_EQ(QApplication::focusWidget()->objectName(), "txtText");
}

TEST_F(FormTest, ALeftClickIsAClickAndThenAMouseUp)
{
    form.cmdSpeak.Click = Note("click");
    form.cmdSpeak.MouseUp = [this](int button) { happened.push_back("up " + std::to_string(button)); };
    QTest::mouseClick(Find("cmdSpeak"), Qt::LeftButton);
    QTest::mouseClick(Find("cmdSpeak"), Qt::RightButton);
    EXPECT_EQ(happened, (Happened{"click", "up 1", "up 2"}));
}

TEST_F(FormTest, AButtonReleasedBesideItDoesNothing)
{
    form.cmdSpeak.Click = Note("click");
    form.cmdSpeak.MouseUp = [this](int) { happened.push_back("up"); };
    QTest::mousePress(Find("cmdSpeak"), Qt::LeftButton);
    QTest::mouseRelease(Find("cmdSpeak"), Qt::LeftButton, {}, QPoint(-20, -20));
    EXPECT_EQ(happened, Happened{});
}

TEST_F(FormTest, SpaceAndEnterPressAButtonAndShiftF10IsItsRightButton)
{
    form.cmdSpeak.Click = Note("click");
    form.cmdSpeak.MouseUp = [this](int button) { happened.push_back("up " + std::to_string(button)); };
    QTest::keyClick(Find("cmdSpeak"), Qt::Key_Space);
    QTest::keyClick(Find("cmdSpeak"), Qt::Key_Return);
    // A press by Enter is shown for a moment before it takes effect.
    EXPECT_TRUE(QTest::qWaitFor([this] { return happened.size() == 2; }));
    QTest::keyClick(Find("cmdSpeak"), Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(happened, (Happened{"click", "click", "up 2"}));
}

TEST_F(FormTest, AButtonsOwnKeysPressItWhateverHasTheFocusUnlessItIsDisabled)
{
    form.cmdOk.Click = Note("click");
    ASSERT_TRUE(QTest::qWaitForWindowActive(Window()));
    Find("txtName")->setFocus();
    QTest::keyClick(Window()->windowHandle(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(happened, Happened{"click"});
    form.cmdOk.Enabled = false;
    QTest::keyClick(Window()->windowHandle(), Qt::Key_P, Qt::ControlModifier);
    EXPECT_EQ(happened, Happened{"click"});
}

TEST_F(FormTest, AScrollBarMovesByArrowPageHomeAndEndKeys)
{
    std::vector<int> values;
    form.scrPitch.Change = [&] { values.push_back(form.scrPitch.Value); };
    for (const auto key : {Qt::Key_Right, Qt::Key_Left, Qt::Key_PageDown, Qt::Key_PageUp, Qt::Key_End, Qt::Key_Home})
        QTest::keyClick(Find("scrPitch"), key);
    EXPECT_EQ(values, (std::vector<int>{41, 40, 60, 40, 400, 40}));
}

TEST_F(FormTest, WhatTheProgramSetsIsShownAndRaisesItsEventOnce)
{
    form.scrPitch.Change = Note("pitch");
    form.chkWhisper.Click = Note("whisper");
    form.txtText.Change = Note("text");
    form.comEngine.Click = Note("engine");
    form.scrPitch.Value = 120;
    form.chkWhisper.Value = 1;
    form.txtText.Text = "Hello";
    form.comEngine.AddItem("One");
    form.comEngine.AddItem("Two");
    form.comEngine.ListIndex = 1;
    EXPECT_EQ(happened, (Happened{"pitch", "whisper", "text"}));
    EXPECT_EQ(Find<QScrollBar>("scrPitch")->value(), 120);
    EXPECT_TRUE(Find<QCheckBox>("chkWhisper")->isChecked());
    EXPECT_EQ(Find<QPlainTextEdit>("txtText")->toPlainText(), "Hello");
    EXPECT_EQ(Find<QComboBox>("comEngine")->currentText(), "Two");
}

// Left whole, a paragraph as long as a book would be laid out completely before a line of it could be shown.
TEST_F(FormTest, AParagraphAsLongAsABookIsShownWholeAtOnce)
{
    std::string text;
    while (text.size() < 10'000'000)
        text += "word Wörter ";
    QElapsedTimer clock;
    clock.start();
    form.txtText.Text = text;
    Window()->repaint();
    QCoreApplication::processEvents();
    EXPECT_LT(clock.elapsed(), 2000);
    EXPECT_EQ(form.txtText.Text.get(), text);
    const auto* box = Find<QPlainTextEdit>("txtText");
    EXPECT_GT(box->blockCount(), 100);
    QString shown = box->toPlainText();
    EXPECT_EQ(shown.remove(u'\n').toStdString(), text);
    for (QTextBlock block = box->document()->begin(); block.next().isValid(); block = block.next())
        ASSERT_TRUE(block.text().endsWith(u' '));
}

TEST_F(FormTest, AWordAsLongAsABookIsShownWithoutTearingItsCharacters)
{
    std::string text = "x";
    for (int i = 0; i < 50000; ++i)
        text += "😀";
    form.txtText.Text = text;
    const QString shown = Find<QPlainTextEdit>("txtText")->toPlainText();
    EXPECT_GT(shown.count(u'\n'), 1);
    for (const QString& line : shown.split(u'\n')) {
        EXPECT_FALSE(line.front().isLowSurrogate());
        EXPECT_FALSE(line.back().isHighSurrogate());
    }
}

TEST_F(FormTest, APastedParagraphIsShownInTheSameWay)
{
    QGuiApplication::clipboard()->setText(QStringLiteral("word ").repeated(20000));
    Find<QPlainTextEdit>("txtText")->paste();
    EXPECT_EQ(Find<QPlainTextEdit>("txtText")->blockCount(), 4);
    EXPECT_EQ(form.txtText.Text.get().size(), 100003u);
}

TEST_F(FormTest, AParagraphOfOrdinaryLengthStaysAsItIs)
{
    const std::string text(30000, 'x');
    form.txtText.Text = text + "\n" + text;
    EXPECT_EQ(Find<QPlainTextEdit>("txtText")->toPlainText().toStdString(), text + "\n" + text);
}

TEST_F(FormTest, WhatTheUserDoesIsStoredAndRaisesItsEventOnce)
{
    form.comEngine.AddItem("One");
    form.comEngine.AddItem("Two");
    form.comEngine.ListIndex = 0;
    form.chkWhisper.Click = Note("whisper");
    form.txtText.Change = Note("text");
    form.txtName.Change = Note("name");
    form.comEngine.Click = Note("engine");
    QTest::mouseClick(Find("chkWhisper"), Qt::LeftButton, {}, QPoint(8, Find("chkWhisper")->height() / 2));
    QTest::keyClick(Find("txtText"), Qt::Key_A);
    QTest::keyClick(Find("txtName"), Qt::Key_B);
    QTest::keyClick(Find("comEngine"), Qt::Key_Down);
    EXPECT_EQ(happened, (Happened{"whisper", "text", "name", "engine"}));
    EXPECT_EQ(form.chkWhisper.Value, 1);
    EXPECT_EQ(form.txtText.Text.get(), "a");
    EXPECT_EQ(form.txtName.Text.get(), "b");
    EXPECT_EQ(form.comEngine.ListIndex, 1);
}

TEST_F(FormTest, AComboBoxThatIsEmptiedAndFilledShowsTheNewList)
{
    form.comEngine.AddItem("One");
    form.comEngine.AddItem("Two");
    form.comEngine.Clear();
    form.comEngine.AddItem("Three");
    EXPECT_EQ(Find<QComboBox>("comEngine")->count(), 1);
    EXPECT_EQ(Find<QComboBox>("comEngine")->itemText(0), "Three");
    EXPECT_EQ(Find<QComboBox>("comEngine")->currentIndex(), -1);
}

TEST_F(FormTest, ALabelKeepsTheRoomItOnceNeeded)
{
    form.lblPitch.Caption = "A long caption";
    const int room = Find("lblPitch")->minimumWidth();
    form.lblPitch.Caption = "P";
    EXPECT_GT(room, 0);
    EXPECT_EQ(Find("lblPitch")->minimumWidth(), room);
}

TEST_F(FormTest, AFormMayGoInItsOwnButtonsClick)
{
    form.cmdOk.Click = [this] {
        form.Unload();
        happened.push_back("unloaded");
    };
    form.cmdOk.MouseUp = [this](int) { happened.push_back("up"); };
    QTest::mouseClick(Find("cmdOk"), Qt::LeftButton);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(happened, Happened{"unloaded"});
    form.Show();
    EXPECT_NE(Find("cmdOk"), nullptr);
}

TEST_F(FormTest, ATimerTicksAndDropsTicksOfItsOwnHandler)
{
    int depth = 0;
    int deepest = 0;
    int ticks = 0;
    form.tmrClock.Tick = [&] {
        ++ticks;
        deepest = std::max(deepest, ++depth);
        QTest::qWait(30);
        --depth;
    };
    form.tmrClock.Interval = 5;
    form.tmrClock.Enabled = true;
    EXPECT_TRUE(QTest::qWaitFor([&] { return ticks >= 3; }));
    form.tmrClock.Enabled = false;
    const int before = ticks;
    QTest::qWait(40);
    EXPECT_EQ(ticks, before);
    EXPECT_EQ(deepest, 1);
}

TEST_F(FormTest, AFormMayGoInItsOwnTimersTick)
{
    form.tmrClock.Tick = [this] {
        happened.push_back("tick");
        form.Unload();
    };
    form.tmrClock.Enabled = true;
    QTest::qWait(60);
    EXPECT_EQ(happened, Happened{"tick"});
}

TEST_F(FormTest, ItemsLoadedIntoAMenuAreShownCheckedAndChosen)
{
    for (const char* name : {"Ada", "Ludo"})
        form.mnuChar.Load("mnuCharItem", name).Click = Note(name);
    form.mnuChar.Items()[1]->Checked = true;
    auto* menu = Find<QMenu>("mnuChar");
    ASSERT_NE(menu, nullptr);
    ASSERT_EQ(menu->actions().size(), 2);
    EXPECT_FALSE(menu->actions()[0]->isChecked());
    EXPECT_TRUE(menu->actions()[1]->isChecked());
    menu->actions()[1]->trigger();
    EXPECT_EQ(happened, Happened{"Ludo"});
    EXPECT_TRUE(menu->actions()[1]->isChecked());
    form.mnuChar.UnloadAll();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(menu->isEmpty());
}

TEST_F(FormTest, AnItemMayUnloadItsOwnMenu)
{
    form.mnuChar.Load("mnuCharItem", "Ada").Click = [this] {
        form.mnuChar.UnloadAll();
        form.mnuChar.Load("mnuCharItem", "Vera");
    };
    Find<QMenu>("mnuChar")->actions().first()->trigger();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    ASSERT_EQ(Find<QMenu>("mnuChar")->actions().size(), 1);
    EXPECT_EQ(Find<QMenu>("mnuChar")->actions().first()->text(), "Vera");
}

TEST_F(FormTest, ARuleIsNoHeading)
{
    const QAction* rule = Find<QMenu>("mnuFile")->actions()[1];
    EXPECT_TRUE(rule->isSeparator());
    EXPECT_EQ(rule->text(), "");
}

TEST_F(FormTest, APopUpMenuReturnsWhenAnItemIsChosenByKeys)
{
    form.mnuChar.Load("mnuCharItem", "Ada").Click = Note("Ada");
    form.mnuChar.Load("mnuCharItem", "Ludo").Click = Note("Ludo");
    QTimer::singleShot(50, &app, [] {
        for (const auto key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return})
            QTest::keyClick(QApplication::activePopupWidget(), key);
    });
    form.PopupMenu(form.mnuChar, &form.cmdSpeak);
    EXPECT_EQ(happened, Happened{"Ludo"});
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

} // namespace voxmate::qt
