// Edit fields as widgets: how many characters they take, which keys, and how they look when locked or grey. Also
// labels' fonts, and the buttons that Enter and Escape press.
#include "tests/unit/qt/QtTest.h"

#include <QClipboard>
#include <QFontDatabase>
#include <QInputMethodEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace voxmate::qt
{

namespace
{

class FieldForm : public Form
{
public:
    explicit FieldForm(WindowSystem& windows) : Form(windows, "frmFields")
    {
        txtShort.MaxLength = 5;
        txtLong.MaxLength = 6;
        txtLong.MultiLine = true;
        lblHeading.Font = FontSpec{"No Such Font", 20, true};
        cmdOk.IsDefault = true;
        cmdCancel.IsCancel = true;
        const auto digits = [](int& key) {
            if ((key < '0' || key > '9') && key != 8 && key != 13)
                key = 0;
        };
        txtDigits.KeyPress = digits;
        txtDigitLines.KeyPress = digits;
        txtDigitLines.MultiLine = true;
        Arrangement = Column({Item(lblHeading), Item(lblPlain), Item(txtShort), Item(txtLong), Item(txtDigits),
                              Item(txtDigitLines), Item(cmdOk), Item(cmdCancel)});
    }

    TextBox txtShort{this, "txtShort"};
    TextBox txtLong{this, "txtLong"};
    TextBox txtDigits{this, "txtDigits"};
    TextBox txtDigitLines{this, "txtDigitLines"};
    Label lblHeading{this, "lblHeading", "Heading"};
    Label lblPlain{this, "lblPlain", "Tom & Jerry"};
    CommandButton cmdOk{this, "cmdOk", "OK"};
    CommandButton cmdCancel{this, "cmdCancel", "Cancel"};
};

class FieldTest : public testing::Test
{
protected:
    FieldTest()
    {
        form.Show();
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == QStringLiteral("frmFields") && window->isVisible())
                window_ = window;
        }
    }
    template <class W = QWidget>
    W* Find(const char* name) const
    {
        return window_->findChild<W*>(QString::fromLatin1(name));
    }
    static void Paste(QWidget* field, const QString& text)
    {
        QApplication::clipboard()->setText(text);
        QTest::keySequence(field, QKeySequence::Paste);
    }
    static void Compose(QWidget* field, const QString& text)
    {
        QInputMethodEvent event;
        event.setCommitString(text);
        QApplication::sendEvent(field, &event);
    }

    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    FieldForm form{windows};
    QWidget* window_ = nullptr;
};

const QString grin = QString::fromUcs4(U"\U0001F600");

} // namespace

TEST_F(FieldTest, ANewTextIsSelectedWhereThatIsWantedAndTheKeyboardIsThere)
{
    auto* const field = ChildOf<QLineEdit>(window_, "txtDigits");
    field->setFocus();
    form.txtDigits.Text = "1";
    EXPECT_EQ(field->selectedText(), "");
    form.txtDigits.SelectsNewText = true;
    form.txtDigits.Text = "23";
    EXPECT_EQ(field->selectedText(), "23");
    ChildOf<QLineEdit>(window_, "txtShort")->setFocus();
    form.txtDigits.Text = "4";
    EXPECT_EQ(field->selectedText(), "");
}

TEST_F(FieldTest, AFieldTakesNoMoreThanItsCharactersFromTheKeyboard)
{
    int changes = 0;
    form.txtShort.Change = [&] { ++changes; };
    QTest::keyClicks(Find("txtShort"), "1234567");
    EXPECT_EQ(form.txtShort.Text.get(), "12345");
    EXPECT_EQ(Find<QLineEdit>("txtShort")->text(), "12345");
    EXPECT_EQ(changes, 5);
    QTest::keyClicks(Find("txtLong"), "12345678");
    EXPECT_EQ(form.txtLong.Text.get(), "123456");
}

TEST_F(FieldTest, WhatDoesNotFitIsCutFromTheEndOfWhatIsPasted)
{
    auto* line = Find<QLineEdit>("txtShort");
    Paste(line, "abcdefgh");
    EXPECT_EQ(form.txtShort.Text.get(), "abcde");
    line->setSelection(1, 2);
    Paste(line, "WXYZ");
    EXPECT_EQ(form.txtShort.Text.get(), "aWXde");
    EXPECT_EQ(line->cursorPosition(), 3);
    auto* lines = Find<QPlainTextEdit>("txtLong");
    Paste(lines, "abcdefgh");
    EXPECT_EQ(form.txtLong.Text.get(), "abcdef");
    lines->selectAll();
    Paste(lines, "12\r\n45678");
    EXPECT_EQ(form.txtLong.Text.get(), "12\n456");
}

TEST_F(FieldTest, ACharacterBeyondTheBasicPlaneCountsAsOne)
{
    Paste(Find("txtShort"), grin.repeated(7));
    EXPECT_EQ(form.txtShort.Text.get(), grin.repeated(5).toStdString());
    Paste(Find("txtLong"), grin.repeated(7));
    EXPECT_EQ(form.txtLong.Text.get(), grin.repeated(6).toStdString());
}

TEST_F(FieldTest, TypingIntoAFullFieldLeavesItsUndoAsItWas)
{
    auto* line = Find<QLineEdit>("txtShort");
    QTest::keyClicks(line, "12345");
    QTest::keyClick(line, Qt::Key_Home);
    QTest::keyClicks(line, "678");
    EXPECT_EQ(line->text(), "12345");
    QTest::keySequence(line, QKeySequence::Undo);
    EXPECT_NE(line->text(), "12345");
    EXPECT_EQ(form.txtShort.Text.get(), line->text().toStdString());
}

TEST_F(FieldTest, ALongerTextFromTheProgramIsShownWholeAndCanBeShortened)
{
    form.txtShort.Text = "12345678";
    auto* line = Find<QLineEdit>("txtShort");
    EXPECT_EQ(line->text(), "12345678");
    QTest::keyClick(line, Qt::Key_Backspace);
    EXPECT_EQ(form.txtShort.Text.get(), "1234567");
    QTest::keyClicks(line, "9");
    EXPECT_EQ(form.txtShort.Text.get(), "1234567");
}

TEST_F(FieldTest, KeysThatAreSwallowedDoNothingAndPastedTextIsNotFiltered)
{
    for (const char* name : {"txtDigits", "txtDigitLines"}) {
        QTest::keyClicks(Find(name), "a1b2.");
        Paste(Find(name), "xy");
        QTest::keyClick(Find(name), Qt::Key_Backspace);
    }
    EXPECT_EQ(form.txtDigits.Text.get(), "12x");
    EXPECT_EQ(form.txtDigitLines.Text.get(), "12x");
}

TEST_F(FieldTest, KeysTellTheirCharactersAndCommandsTellNone)
{
    std::vector<int> keys;
    form.txtLong.KeyPress = [&](int& key) { keys.push_back(key); };
    QWidget* field = Find("txtLong");
    QTest::keyClick(field, 'A');
    QTest::keyClick(field, Qt::Key_Backspace);
    QTest::keyClick(field, Qt::Key_Return);
    QTest::keyClick(field, Qt::Key_Enter);
    for (const auto key : {Qt::Key_Left, Qt::Key_Delete, Qt::Key_Home, Qt::Key_F5, Qt::Key_Shift, Qt::Key_Escape})
        QTest::keyClick(field, key);
    QTest::keySequence(field, QKeySequence::SelectAll);
    QTest::keySequence(field, QKeySequence::Copy);
    EXPECT_EQ(keys, (std::vector<int>{'A', 8, 13, 13}));
}

TEST_F(FieldTest, AFullFieldStillTellsOfItsKeys)
{
    std::vector<int> keys;
    for (TextBox* box : {&form.txtLong, &form.txtShort}) {
        box->Text = "1234567";
        box->KeyPress = [&](int& key) { keys.push_back(key); };
    }
    QTest::keyClick(Find("txtLong"), Qt::Key_A);
    QTest::keyClick(Find("txtShort"), Qt::Key_B);
    EXPECT_EQ(keys, (std::vector<int>{'a', 'b'}));
    EXPECT_EQ(form.txtLong.Text.get(), "1234567");
}

TEST_F(FieldTest, ComposedCharactersAreFilteredAndLimitedToo)
{
    Compose(Find("txtDigits"), "1a2");
    EXPECT_EQ(form.txtDigits.Text.get(), "12");
    Compose(Find("txtDigitLines"), QStringLiteral("3\u00E44"));
    EXPECT_EQ(form.txtDigitLines.Text.get(), "34");
    Compose(Find("txtLong"), "abcdefgh");
    EXPECT_EQ(form.txtLong.Text.get(), "abcdef");
    Compose(Find("txtShort"), "abcdefgh");
    EXPECT_EQ(form.txtShort.Text.get(), "abcde");
}

TEST_F(FieldTest, ALockedFieldCanBeReadAndCopiedFromButNotChanged)
{
    form.txtShort.Text = "one";
    form.txtLong.Text = "two";
    form.txtShort.Locked = true;
    form.txtLong.Locked = true;
    for (const char* name : {"txtShort", "txtLong"}) {
        QTest::keyClicks(Find(name), "x");
        QTest::keyClick(Find(name), Qt::Key_Backspace);
        Paste(Find(name), "x");
    }
    EXPECT_EQ(form.txtShort.Text.get(), "one");
    EXPECT_EQ(form.txtLong.Text.get(), "two");
    for (const char* name : {"txtShort", "txtLong"}) {
        QApplication::clipboard()->clear();
        QTest::keySequence(Find(name), QKeySequence::SelectAll);
        QTest::keySequence(Find(name), QKeySequence::Copy);
        EXPECT_EQ(QApplication::clipboard()->text(), name == std::string("txtShort") ? "one" : "two");
    }
    form.txtLong.Locked = false;
    Find<QPlainTextEdit>("txtLong")->moveCursor(QTextCursor::End);
    QTest::keyClicks(Find("txtLong"), "x");
    EXPECT_EQ(form.txtLong.Text.get(), "twox");
}

TEST_F(FieldTest, AGreyFieldHasTheWindowsGroundAndFollowsTheTheme)
{
    const QPalette before = QApplication::palette();
    for (const char* name : {"txtShort", "txtLong"}) {
        const auto ground = [this, name] { return Find(name)->palette().color(QPalette::Base); };
        TextBox& box = name == std::string("txtShort") ? form.txtShort : form.txtLong;
        EXPECT_EQ(ground(), before.color(QPalette::Base));
        box.BackColor = vbButtonFace;
        EXPECT_EQ(ground(), before.color(QPalette::Window));
        QPalette dark = before;
        dark.setColor(QPalette::Window, QColor(40, 41, 42));
        QApplication::setPalette(dark);
        QCoreApplication::processEvents();
        EXPECT_EQ(ground(), QColor(40, 41, 42));
        QApplication::setPalette(before);
        QCoreApplication::processEvents();
        box.BackColor = vbWindowBackground;
        EXPECT_EQ(ground(), before.color(QPalette::Base));
    }
}

TEST_F(FieldTest, ALabelsFontIsAsAskedForAndAFamilyThatIsMissingIsLeftOut)
{
    const QLabel* label = Find<QLabel>("lblHeading");
    EXPECT_EQ(label->font().pointSizeF(), 20);
    EXPECT_TRUE(label->font().bold());
    EXPECT_EQ(label->font().family(), QApplication::font().family());
    const QStringList families = QFontDatabase::families();
    ASSERT_FALSE(families.isEmpty());
    form.lblHeading.Font = FontSpec{families.first().toStdString(), 0, false};
    EXPECT_EQ(label->font().family(), families.first());
    EXPECT_EQ(label->font().pointSizeF(), QApplication::font().pointSizeF());
    EXPECT_FALSE(label->font().bold());
}

TEST_F(FieldTest, ALabelThatNamesNothingIsReadWithItsAmpersands)
{
    EXPECT_EQ(Find<QLabel>("lblPlain")->text(), "Tom & Jerry");
    EXPECT_EQ(Find("lblPlain")->accessibleName(), "Tom & Jerry");
}

TEST_F(FieldTest, EnterPressesTheDefaultButtonAndEscapeTheCancelButton)
{
    Happened happened;
    form.cmdOk.Click = [&] { happened.push_back("ok"); };
    form.cmdCancel.Click = [&] { happened.push_back("cancel"); };
    QTest::keyClick(Find("txtShort"), Qt::Key_Return);
    QTest::keyClick(Find("txtShort"), Qt::Key_Escape);
    QTest::keyClick(Find("txtLong"), Qt::Key_Escape);
    form.txtLong.Locked = true;
    QTest::keyClick(Find("txtLong"), Qt::Key_Return);
    EXPECT_EQ(happened, (Happened{"ok", "cancel", "cancel", "ok"}));
    EXPECT_TRUE(window_->isVisible());
}

TEST_F(FieldTest, TheButtonThatEnterPressesIsTheOneThatLooksSo)
{
    const auto* ok = Find<QPushButton>("cmdOk");
    const auto* cancel = Find<QPushButton>("cmdCancel");
    ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
    EXPECT_TRUE(ok->isDefault());
    EXPECT_FALSE(cancel->isDefault());
    Find("cmdCancel")->setFocus();
    EXPECT_FALSE(ok->isDefault());
    EXPECT_TRUE(cancel->isDefault());
    Find("txtShort")->setFocus();
    EXPECT_TRUE(ok->isDefault());
    EXPECT_FALSE(cancel->isDefault());
}

TEST_F(FieldTest, AnEnterThatAFieldSwallowsPressesNothing)
{
    Happened happened;
    form.cmdOk.Click = [&] { happened.push_back("ok"); };
    form.txtShort.KeyPress = [](int& key) { key = 0; };
    QTest::keyClick(Find("txtShort"), Qt::Key_Return);
    EXPECT_EQ(happened, Happened{});
}

TEST_F(FieldTest, AFormMayGoInItsOwnFieldsKey)
{
    form.txtShort.KeyPress = [this](int&) { form.Unload(); };
    QTest::keyClick(Find("txtShort"), Qt::Key_1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(form.IsLoaded());
}

} // namespace voxmate::qt
