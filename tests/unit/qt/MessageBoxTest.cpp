// Message boxes: what they show, their keys and buttons, and boxes taller than the screen.
#include "tests/unit/qt/QtTest.h"

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>

namespace voxmate::qt
{

namespace
{

using MessageBoxTest = QtTest;

/// Runs `look` on the next message box, then presses a key in it.
void AnswerBox(Qt::Key key, const std::function<void(QMessageBox&)>& look = {})
{
    QTimer::singleShot(30, &App(), [key, look] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
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

std::string Numbered(int lines)
{
    std::string text;
    for (int i = 1; i <= lines; ++i)
        text += "Line " + std::to_string(i) + " of a report with something to say in each of its many lines\r\n";
    return text;
}

} // namespace

TEST_F(MessageBoxTest, AMessageBoxShowsItsTextAsItIsAndAnswersOK)
{
    std::string title;
    std::string text;
    AnswerBox(Qt::Key_Escape, [&](QMessageBox& box) {
        title = box.windowTitle().toStdString();
        text = box.text().toStdString();
    });
    EXPECT_EQ(windows.MsgBox("First <b>line</b>\r\nSecond line", vbExclamation, "Voxmate - Test"), vbOK);
    EXPECT_EQ(title, "Voxmate - Test");
    EXPECT_EQ(text, "First <b>line</b>\nSecond line");
}

TEST_F(MessageBoxTest, EnterMeansYesAndEscapeMeansNo)
{
    AnswerBox(Qt::Key_Return);
    EXPECT_EQ(windows.MsgBox("Go?", vbYesNo | vbCritical, "Voxmate"), vbYes);
    AnswerBox(Qt::Key_Escape);
    EXPECT_EQ(windows.MsgBox("Go?", vbYesNo | vbCritical, "Voxmate"), vbNo);
}

TEST_F(MessageBoxTest, ABoxTallerThanTheScreenStaysOnItAndItsTextScrolls)
{
    const std::string text = Numbered(200);
    AnswerBox(Qt::Key_Escape, [&text](QMessageBox& box) {
        ASSERT_TRUE(QTest::qWaitForWindowActive(&box));
        const QRect area = box.screen()->availableGeometry();
        EXPECT_TRUE(area.contains(box.frameGeometry()));
        for (const QAbstractButton* button : box.buttons()) {
            EXPECT_TRUE(button->isVisible());
            EXPECT_TRUE(area.contains(QRect(button->mapToGlobal(QPoint(0, 0)), button->size())));
        }
        auto* scroll = box.findChild<QScrollArea*>();
        ASSERT_NE(scroll, nullptr);
        const auto labels = scroll->findChildren<QLabel*>();
        ASSERT_EQ(labels.size(), 1);
        QString shown = QString::fromStdString(text);
        EXPECT_EQ(labels[0]->text(), shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")));
        EXPECT_EQ(box.text(), shown);
        EXPECT_FALSE(scroll->horizontalScrollBar()->isVisible());
        EXPECT_EQ(labels[0]->width(), scroll->viewport()->width());

        // The text scrolls by page and to its end while a button has the focus, by line in the text itself, and by the
        // wheel.
        const QScrollBar& bar = *scroll->verticalScrollBar();
        ASSERT_TRUE(bar.isVisible());
        EXPECT_TRUE(box.defaultButton()->hasFocus());
        QTest::keyClick(box.focusWidget(), Qt::Key_PageDown);
        EXPECT_EQ(bar.value(), bar.pageStep());
        QTest::keyClick(box.focusWidget(), Qt::Key_End);
        EXPECT_EQ(bar.value(), bar.maximum());
        QTest::keyClick(box.focusWidget(), Qt::Key_PageUp);
        EXPECT_EQ(bar.value(), bar.maximum() - bar.pageStep());
        QTest::keyClick(box.focusWidget(), Qt::Key_Home);
        EXPECT_EQ(bar.value(), 0);
        QTest::keyClick(box.focusWidget(), Qt::Key_Down);
        EXPECT_EQ(bar.value(), bar.singleStep());
        EXPECT_TRUE(box.defaultButton()->hasFocus());
        QTest::keyClick(box.focusWidget(), Qt::Key_Up);
        EXPECT_EQ(bar.value(), 0);
        const QPoint middle = scroll->viewport()->rect().center();
        QWheelEvent wheel(QPointF(middle), QPointF(scroll->viewport()->mapToGlobal(middle)), QPoint(), QPoint(0, -120),
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(scroll->viewport(), &wheel);
        EXPECT_GT(bar.value(), 0);
    });
    EXPECT_EQ(windows.MsgBox(text, vbExclamation, "Voxmate - Test"), vbOK);
}

TEST_F(MessageBoxTest, EnterAnswersATallBoxToo)
{
    AnswerBox(Qt::Key_Return);
    EXPECT_EQ(windows.MsgBox(Numbered(80), vbYesNo | vbCritical, "Voxmate"), vbYes);
}

TEST_F(MessageBoxTest, ABoxThatFitsTheScreenHasNothingToScrollAndItsOrdinarySize)
{
    QMessageBox ordinary(QMessageBox::NoIcon, QStringLiteral("Voxmate"), QStringLiteral("Wait"), QMessageBox::Ok);
    ordinary.buttons().front()->setIcon({});
    ordinary.show();
    AnswerBox(Qt::Key_Escape, [&ordinary](QMessageBox& box) {
        EXPECT_EQ(box.findChild<QScrollArea*>(), nullptr);
        EXPECT_EQ(box.size(), ordinary.size());
    });
    windows.MsgBox("Wait", vbOKOnly, "Voxmate");
}

TEST_F(MessageBoxTest, TimersGoOnWhileABoxIsUp)
{
    int ticks = 0;
    form.tmrClock.Tick = [&ticks] { ++ticks; };
    form.tmrClock.Enabled = true;
    QTimer::singleShot(100, &app, [] { AnswerBox(Qt::Key_Return); });
    windows.MsgBox("Wait", vbOKOnly, "Voxmate");
    EXPECT_GE(ticks, 3);
}

TEST_F(MessageBoxTest, ABoxOfYesNoAndCancelAnswersEachAndEscapeMeansCancel)
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

TEST_F(MessageBoxTest, TheSecondButtonCanBeTheDefault)
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

TEST_F(MessageBoxTest, EachIconIsItsOwnAndStyleZeroHasNone)
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
