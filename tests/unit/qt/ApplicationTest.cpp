// The application: uncaught errors, the end that the desktop asks for, and what other threads post.
#include "tests/unit/qt/QtTest.h"

#include <QLineEdit>
#include <QMessageBox>
#include <QStyleHints>
#include <QThread>
#include <QTimer>

#include <new>
#include <thread>

namespace voxmate::qt
{

namespace
{

using ApplicationTest = QtTest;

/// Runs `look` on the message box that comes up next, however late, then ends it with Escape.
void LookAtNextBox(const std::function<void(QMessageBox&)>& look)
{
    auto* timer = new QTimer(&App());
    QObject::connect(timer, &QTimer::timeout, timer, [timer, look] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        timer->deleteLater();
        timer->stop();
        look(*box);
        QTest::keyClick(box, Qt::Key_Escape);
    });
    timer->start(5);
}

} // namespace

TEST_F(ApplicationTest, AnErrorThatNobodyCaughtIsShownAndEndsTheProgram)
{
    int ended = 0;
    app.EndProgram = [&ended] { ++ended; };
    form.cmdOk.Click = [] { throw Overflow(); };
    std::string text;
    LookAtNextBox([&text](QMessageBox& box) { text = box.text().toStdString(); });
    QTest::mouseClick(Find("cmdOk"), Qt::LeftButton);
    EXPECT_EQ(text, "Run-time error '6':\n\nOverflow");
    EXPECT_EQ(ended, 1);
}

TEST_F(ApplicationTest, AnErrorInAnotherThreadIsShownInTheUserInterfacesThread)
{
    QThread* endedIn = nullptr;
    app.EndProgram = [&endedIn] { endedIn = QThread::currentThread(); };
    QThread thread;
    thread.start();
    auto* worker = new QObject;
    worker->moveToThread(&thread);
    QMetaObject::invokeMethod(
        worker, [] { throw std::bad_alloc(); }, Qt::QueuedConnection);
    QThread* boxIn = nullptr;
    LookAtNextBox([&](QMessageBox& box) {
        boxIn = box.thread();
        EXPECT_EQ(box.text().toStdString(), "Run-time error '7':\n\nOut of memory");
    });
    EXPECT_TRUE(QTest::qWaitFor([&] { return endedIn != nullptr; }));
    EXPECT_EQ(boxIn, app.thread());
    EXPECT_EQ(endedIn, app.thread());
    QObject::connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
    thread.quit();
    thread.wait();
}

TEST_F(ApplicationTest, WhenTheDesktopAsksForTheEndNoWindowIsClosed)
{
    struct Closing : Form {
        explicit Closing(FormHost& host) : Form(host, "frmClosing") {}
        void Form_QueryUnload(bool& cancel) override
        {
            asked = true;
            cancel = true;
        }
        bool asked = false;
    } closing(windows);
    closing.Show();
    int ended = 0;
    app.EndRequested = [&ended] { ++ended; };
    QEvent quit(QEvent::Quit);
    QCoreApplication::sendEvent(&app, &quit);
    EXPECT_EQ(ended, 1);
    EXPECT_FALSE(closing.asked);
    app.EndRequested = nullptr;
}

TEST_F(ApplicationTest, WhatAnotherThreadPostsRunsInTheEventLoop)
{
    bool done = false;
    std::thread([&] { app.Post([&] { done = QThread::currentThread() == app.thread(); }); }).join();
    EXPECT_FALSE(done);
    EXPECT_TRUE(QTest::qWaitFor([&] { return done; }));
}

TEST_F(ApplicationTest, RestComesOnceAfterTheLastOfSeveralWindowsHasGone)
{
    int rests = 0;
    app.AtRest = [&rests] { ++rests; };
    QWidget first;
    QWidget second;
    first.show();
    second.show();
    first.hide();
    second.hide();
    EXPECT_EQ(rests, 0);
    EXPECT_TRUE(QTest::qWaitFor([&rests] { return rests > 0; }, 60'000));
    EXPECT_EQ(rests, 1);
    app.AtRest = nullptr;
}

TEST_F(ApplicationTest, RestComesAlsoWhileWindowsKeepComingAndGoing)
{
    int rests = 0;
    app.AtRest = [&rests] { ++rests; };
    QWidget window;
    QTimer timer;
    timer.callOnTimeout([&window] { window.setVisible(!window.isVisible()); });
    timer.start(100);
    EXPECT_TRUE(QTest::qWaitFor([&rests] { return rests > 1; }, 20'000));
    app.AtRest = nullptr;
}

TEST_F(ApplicationTest, TheCaretStandsStillInSightAfterAWhileAndBlinksAgainWithTheNextKey)
{
    QLineEdit field;
    field.show();
    field.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&field));
    const int desktops = QGuiApplication::styleHints()->cursorFlashTime();
    ASSERT_GT(desktops, 0);
    ASSERT_TRUE(QTest::qWaitFor([] { return QGuiApplication::styleHints()->cursorFlashTime() == 0; }, 60'000));
    const QImage still = field.grab().toImage();
    // Longer than the caret would be in sight, or out of it.
    EXPECT_FALSE(QTest::qWaitFor([&] { return field.grab().toImage() != still; }, 2 * desktops));
    field.clearFocus();
    EXPECT_NE(field.grab().toImage(), still) << "the caret was not in sight";
    field.setFocus();
    QTest::keyClick(&field, Qt::Key_A);
    EXPECT_EQ(QGuiApplication::styleHints()->cursorFlashTime(), desktops);
}

} // namespace voxmate::qt
