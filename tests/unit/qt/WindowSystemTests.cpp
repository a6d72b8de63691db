// Message boxes, uncaught errors, and the stage's measures and timers.
#include "tests/unit/qt/QtFixture.h"

#include "qt/character/QtBalloonWindow.h"
#include "qt/character/QtStage.h"
#include "qt/character/ShapedWindow.h"

#include <QFontDatabase>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>

#include <new>
#include <thread>

namespace voxmate::qt
{

namespace
{

/// Presses a key in the next message box and records the box's title and text.
void AnswerBox(Qt::Key key, std::string& title, std::string& text)
{
    QTimer::singleShot(30, &App(), [key, &title, &text] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        title = box->windowTitle().toStdString();
        text = box->text().toStdString();
        EXPECT_EQ(box->textFormat(), Qt::PlainText);
        QTest::keyClick(box, key);
    });
}

/// Runs `look` on the next message box, then ends it with Escape.
void LookAtBox(const std::function<void(QMessageBox&)>& look)
{
    QTimer::singleShot(30, &App(), [look] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        look(*box);
        QTest::keyClick(box, Qt::Key_Escape);
    });
}

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

std::string Numbered(int lines)
{
    std::string text;
    for (int i = 1; i <= lines; ++i)
        text += "Line " + std::to_string(i) + " of a report with something to say in each of its many lines\r\n";
    return text;
}

/// The character's visible window; nullptr if there is none.
QWidget* CharacterWidget()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QStringLiteral("Voxmate character") && widget->isVisible())
            return widget;
    }
    return nullptr;
}

/// A sound output that takes all samples at once and plays them to the end when told to.
class FakeAudio : public speech::AudioOutput
{
public:
    AudioStatus Check() override { return AudioStatus::Available; }
    bool Ready() override { return ready; }
    std::unique_ptr<speech::AudioStream> Open(int samplesPerSecond, std::shared_ptr<speech::SampleSource> source,
                                              std::function<void()> drained, std::function<void()> /*failed*/) override
    {
        rate = samplesPerSecond;
        heard.clear();
        std::vector<std::int16_t> buffer(3);
        for (bool ended = false; !ended;) {
            const std::size_t count = source->Pull(buffer, ended);
            heard.insert(heard.end(), buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(count));
        }
        finish = std::move(drained);
        return std::make_unique<Stream>(open);
    }
    void Post(std::function<void()>) override {}
    void PostAfter(int, std::function<void()>) override {}

    bool ready = true;
    int rate = 0;
    int open = 0;
    std::vector<std::int16_t> heard;
    std::function<void()> finish;

private:
    class Stream : public speech::AudioStream
    {
    public:
        explicit Stream(int& open) : open_(open) { ++open_; }
        ~Stream() override { --open_; }
        std::int64_t SamplesHeard() override { return 0; }

    private:
        int& open_;
    };
};

/// A RIFF wave file: mono, 16 bits, 8000 samples a second.
std::vector<std::uint8_t> Wave(const std::vector<std::int16_t>& samples)
{
    std::vector<std::uint8_t> file;
    const auto text = [&file](const char* letters) { file.insert(file.end(), letters, letters + 4); };
    const auto number = [&file](std::size_t value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
    };
    text("RIFF");
    number(36 + 2 * samples.size(), 4);
    text("WAVE");
    text("fmt ");
    number(16, 4);
    number(1, 2);
    number(1, 2);
    number(8000, 4);
    number(16000, 4);
    number(2, 2);
    number(16, 2);
    text("data");
    number(2 * samples.size(), 4);
    for (const std::int16_t sample : samples)
        number(static_cast<std::uint16_t>(sample), 2);
    return file;
}

class StageTest : public QtTest
{
protected:
    FakeAudio audio;
    QtStage stage{audio};
};

} // namespace

TEST_F(QtTest, AMessageBoxShowsItsTextAsItIsAndAnswersOK)
{
    std::string title;
    std::string text;
    AnswerBox(Qt::Key_Escape, title, text);
    EXPECT_EQ(windows.MsgBox("First <b>line</b>\r\nSecond line", vbExclamation, "Voxmate - Test"), vbOK);
    EXPECT_EQ(title, "Voxmate - Test");
    EXPECT_EQ(text, "First <b>line</b>\nSecond line");
}

TEST_F(QtTest, EnterMeansYesAndEscapeMeansNo)
{
    std::string title;
    std::string text;
    AnswerBox(Qt::Key_Return, title, text);
    EXPECT_EQ(windows.MsgBox("Go?", vbYesNo | vbCritical, "Voxmate"), vbYes);
    AnswerBox(Qt::Key_Escape, title, text);
    EXPECT_EQ(windows.MsgBox("Go?", vbYesNo | vbCritical, "Voxmate"), vbNo);
}

TEST_F(QtTest, ABoxTallerThanTheScreenStaysOnItAndItsTextScrolls)
{
    const std::string text = Numbered(200);
    LookAtBox([&text](QMessageBox& box) {
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

TEST_F(QtTest, EnterAnswersATallBoxToo)
{
    std::string title;
    std::string text;
    AnswerBox(Qt::Key_Return, title, text);
    EXPECT_EQ(windows.MsgBox(Numbered(80), vbYesNo | vbCritical, "Voxmate"), vbYes);
}

TEST_F(QtTest, ABoxThatFitsTheScreenHasNothingToScrollAndItsOrdinarySize)
{
    QMessageBox ordinary(QMessageBox::NoIcon, QStringLiteral("Voxmate"), QStringLiteral("Wait"), QMessageBox::Ok);
    ordinary.buttons().front()->setIcon({});
    ordinary.show();
    LookAtBox([&ordinary](QMessageBox& box) {
        EXPECT_EQ(box.findChild<QScrollArea*>(), nullptr);
        EXPECT_EQ(box.size(), ordinary.size());
    });
    windows.MsgBox("Wait", vbOKOnly, "Voxmate");
}

TEST_F(QtTest, TimersGoOnWhileABoxIsUp)
{
    int ticks = 0;
    form.tmrClock.Tick = [&ticks] { ++ticks; };
    form.tmrClock.Enabled = true;
    std::string title;
    std::string text;
    QTimer::singleShot(100, &app, [&] { AnswerBox(Qt::Key_Return, title, text); });
    windows.MsgBox("Wait", vbOKOnly, "Voxmate");
    EXPECT_GE(ticks, 3);
}

TEST_F(QtTest, AnErrorThatNobodyCaughtIsShownAndEndsTheProgram)
{
    int ended = 0;
    app.EndProgram = [&ended] { ++ended; };
    form.cmdOk.Click = [] { throw Overflow(); };
    std::string title;
    std::string text;
    AnswerBox(Qt::Key_Return, title, text);
    QTest::mouseClick(Find("cmdOk"), Qt::LeftButton);
    EXPECT_EQ(text, "Run-time error '6':\n\nOverflow");
    EXPECT_EQ(ended, 1);
}

TEST_F(QtTest, AnErrorInAnotherThreadIsShownInTheUserInterfacesThread)
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

TEST_F(QtTest, WhenTheDesktopAsksForTheEndNoWindowIsClosed)
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

TEST_F(QtTest, WhatAnotherThreadPostsRunsInTheEventLoop)
{
    bool done = false;
    std::thread([&] { app.Post([&] { done = QThread::currentThread() == app.thread(); }); }).join();
    EXPECT_FALSE(done);
    EXPECT_TRUE(QTest::qWaitFor([&] { return done; }));
}

TEST_F(StageTest, AFontTheSystemLacksFallsBackToItsOwnSansSerif)
{
    const QFont font = ToQFont({"No Such Font Anywhere", 12, true, false});
    EXPECT_EQ(font.family(), QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
    EXPECT_EQ(font.pointSize(), 12);
    EXPECT_TRUE(font.bold());
}

TEST_F(StageTest, TextIsMeasuredInTheFontAskedFor)
{
    const agent::BalloonFont small{"MS Sans Serif", 8, false, false};
    const agent::BalloonFont large{"MS Sans Serif", 16, false, false};
    EXPECT_GT(stage.TextWidth(small, "Hello"), 0);
    EXPECT_GT(stage.TextWidth(large, "Hello"), stage.TextWidth(small, "Hello"));
    EXPECT_GT(stage.LineHeight(large), stage.LineHeight(small));
    EXPECT_EQ(stage.TextWidth(small, ""), 0);
}

TEST_F(StageTest, ATimerMayBeDestroyedInItsOwnAction)
{
    std::unique_ptr<agent::StageTimer> timer;
    timer = stage.After(5, [&] {
        timer.reset();
        happened.push_back("fired");
    });
    QTest::qWait(40);
    EXPECT_EQ(happened, Happened{"fired"});
}

TEST_F(StageTest, ADestroyedTimerDoesNotFire)
{
    auto timer = stage.After(5, Note("fired"));
    timer.reset();
    QTest::qWait(30);
    EXPECT_EQ(happened, Happened{});
}

TEST_F(StageTest, TheMenuTellsTheNameOfWhatWasChosen)
{
    std::string chosen;
    stage.PopupMenu({{"mnuTime", "Tell the &time"}, {"", "-"}, {"mnuHide", "Hide", false}, {"mnuStop", "Stop"}},
                    {50, 50}, [&chosen](const std::string& name) { chosen = name; });
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    EXPECT_TRUE(menu->actions()[1]->isSeparator());
    EXPECT_FALSE(menu->actions()[2]->isEnabled());
    QTest::keyClick(menu, Qt::Key_Up);
    QTest::keyClick(menu, Qt::Key_Return);
    EXPECT_EQ(chosen, "mnuStop");
}

TEST_F(StageTest, EscapeClosesTheMenuAndChoosesNothing)
{
    std::string chosen = "nothing";
    stage.PopupMenu({{"mnuTime", "Time"}}, {50, 50}, [&chosen](const std::string& name) { chosen = name; });
    QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    EXPECT_EQ(chosen, "nothing");
}

TEST_F(StageTest, ASoundIsPlayedWholeAndItsStreamGoesWhenItHasBeenHeard)
{
    const std::vector<std::int16_t> samples{0, 100, -100, 32767, -32768};
    stage.PlaySound(Wave(samples));
    EXPECT_EQ(audio.rate, 8000);
    EXPECT_EQ(audio.heard, samples);
    EXPECT_EQ(audio.open, 1);
    audio.finish();
    EXPECT_TRUE(QTest::qWaitFor([this] { return audio.open == 0; }));
}

TEST_F(StageTest, TheEndOfOneSoundDoesNotCutTheNextAndStopSoundDoes)
{
    stage.PlaySound(Wave({1}));
    const auto firstEnds = audio.finish;
    stage.PlaySound(Wave({2}));
    firstEnds();
    QTest::qWait(20);
    EXPECT_EQ(audio.open, 1);
    stage.StopSound();
    EXPECT_EQ(audio.open, 0);
}

// If the sound were awaited, the character's picture would freeze until the sound server answers.
TEST_F(StageTest, ASoundIsLeftOutWhileTheOutputIsNotReady)
{
    audio.ready = false;
    stage.PlaySound(Wave({1}));
    EXPECT_EQ(audio.open, 0);
    EXPECT_EQ(audio.rate, 0); // it was not asked for anything
    audio.ready = true;
    stage.PlaySound(Wave({1}));
    EXPECT_EQ(audio.open, 1);
}

TEST_F(StageTest, WhatIsNoWaveFileIsNotPlayed)
{
    stage.PlaySound(std::vector<std::uint8_t>{1, 2, 3});
    EXPECT_EQ(audio.open, 0);
}

TEST_F(StageTest, TheCharacterTakesTheMouseWhileAMessageBoxIsUp)
{
    const auto character = stage.CreateCharacterWindow();
    character->SetFrame(
        {{1}, std::make_shared<const Bitmap>(Bitmap{20, 20, std::vector<std::uint32_t>(400, 0xFF0000FF)})}, {40, 40});
    character->MoveTo({5, 5});
    character->SetVisible(true);
    character->Mouse = [this](const agent::MouseEvent& event) {
        if (event.action == agent::MouseAction::Press)
            happened.push_back("pressed at " + std::to_string(event.at.x) + ", screen " +
                               std::to_string(event.screen.x));
    };
    ASSERT_NE(CharacterWidget(), nullptr);
    QWindow* window = CharacterWidget()->windowHandle();
    std::string title;
    std::string text;
    QTimer::singleShot(30, &app, [&] {
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(10, 12));
        QTest::mouseClick(Window()->windowHandle(), Qt::LeftButton, {}, Find("cmdOk")->mapTo(Window(), QPoint(5, 5)));
        AnswerBox(Qt::Key_Return, title, text);
    });
    form.cmdOk.Click = Note("the form took the mouse, too");
    windows.MsgBox("Wait", vbOKOnly, "Voxmate");
    EXPECT_EQ(happened, Happened{"pressed at 10, screen 15"});
}

TEST_F(StageTest, ACharacterThatTheWindowManagerMovedTellsItsRealPlace)
{
    const auto character = stage.CreateCharacterWindow();
    std::vector<Point> told;
    character->Moved = [&told](Point place) { told.push_back(place); };
    character->SetFrame(
        {{1}, std::make_shared<const Bitmap>(Bitmap{20, 20, std::vector<std::uint32_t>(400, 0xFF0000FF)})}, {40, 40});
    character->MoveTo({5, 5});
    character->SetVisible(true);
    character->MoveTo({50, 60});
    character->MoveTo({55, 66});
    QTest::qWait(300);
    EXPECT_EQ(told, std::vector<Point>{});

    ASSERT_NE(CharacterWidget(), nullptr);
    QWindow* window = CharacterWidget()->windowHandle();
    window->setPosition(200, 210);
    EXPECT_TRUE(QTest::qWaitFor([&told] { return !told.empty(); }));
    EXPECT_EQ(told, (std::vector<Point>{{200, 210}}));
    window->setPosition(55, 66);
    EXPECT_TRUE(QTest::qWaitFor([&told] { return told.size() == 2; }));
    EXPECT_EQ(told, (std::vector<Point>{{200, 210}, {55, 66}}));
}

TEST_F(StageTest, AnOlderPlaceReportedWhileTheCharacterIsBeingMovedIsNotTakenForTheWindowManagers)
{
    const auto character = stage.CreateCharacterWindow();
    std::vector<Point> told;
    character->Moved = [&told](Point place) { told.push_back(place); };
    character->SetFrame(
        {{1}, std::make_shared<const Bitmap>(Bitmap{20, 20, std::vector<std::uint32_t>(400, 0xFF0000FF)})}, {40, 40});
    character->MoveTo({5, 5});
    character->SetVisible(true);
    QTest::qWait(300);
    ASSERT_NE(CharacterWidget(), nullptr);
    QWindow* window = CharacterWidget()->windowHandle();
    character->MoveTo({50, 60});
    character->MoveTo({70, 80});
    window->setPosition(50, 60);
    window->setPosition(70, 80);
    QTest::qWait(300);
    EXPECT_EQ(told, std::vector<Point>{});

    // A position that is still different when things have settled is a real move.
    character->MoveTo({90, 90});
    window->setPosition(70, 80);
    EXPECT_EQ(told, std::vector<Point>{});
    EXPECT_TRUE(QTest::qWaitFor([&told] { return !told.empty(); }));
    EXPECT_EQ(told, (std::vector<Point>{{70, 80}}));
}

TEST_F(StageTest, ChangesOfTheScreensAreToldOnceForAllThatComesTogether)
{
    stage.ScreensChanged = Note("changed");
    QScreen* screen = QGuiApplication::primaryScreen();
    Q_EMIT screen->availableGeometryChanged(screen->availableGeometry());
    Q_EMIT screen->availableGeometryChanged(screen->availableGeometry());
    Q_EMIT app.screenRemoved(screen);
    EXPECT_EQ(happened, Happened{});
    EXPECT_TRUE(QTest::qWaitFor([this] { return !happened.empty(); }));
    QTest::qWait(30);
    EXPECT_EQ(happened, Happened{"changed"});
    Q_EMIT app.screenAdded(screen);
    EXPECT_TRUE(QTest::qWaitFor([this] { return happened.size() == 2; }));
}

TEST_F(StageTest, RandomNumbersStayBelowTheirBound)
{
    std::vector<int> seen(3);
    for (int i = 0; i < 300; ++i)
        ++seen.at(static_cast<std::size_t>(stage.Random(3)));
    for (const int count : seen)
        EXPECT_GT(count, 0);
    EXPECT_EQ(stage.Random(1), 0);
}

TEST_F(StageTest, AWorkAreaIsFoundForAPointOutsideEveryScreen)
{
    EXPECT_EQ(stage.WorkArea({-5000, -5000}), stage.PrimaryWorkArea());
    EXPECT_GT(stage.PrimaryWorkArea().width, 0);
}

TEST(ShapeOf, CoversExactlyThePixelsThatAreHalfOpaqueOrMore)
{
    QImage image(7, 7, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QRegion expected;
    for (const QPoint point :
         {QPoint(1, 0), QPoint(2, 0), QPoint(1, 1), QPoint(2, 1), QPoint(5, 1), QPoint(0, 4), QPoint(0, 6)}) {
        image.setPixel(point, qRgba(0, 0, 0, 128));
        expected += QRect(point, QSize(1, 1));
    }
    image.setPixel(6, 4, qRgba(0, 0, 0, 127));
    EXPECT_EQ(ShapeOf(image), expected);
}

TEST_F(QtTest, EveryIconIsThereAndDrawsItsLinesInTheInk)
{
    const IconSet icons(QStringLiteral(VOXMATE_SHARE_DIR "/icons"));
    for (const char* name : {"voxmate", "speak", "stop", "character", "critical", "exclamation"})
        EXPECT_EQ(icons.Pixmap(QString::fromLatin1(name), 24, 2.0, Qt::white).size(), QSize(48, 48)) << name;
    EXPECT_TRUE(icons.Pixmap(QStringLiteral("no such icon"), 24, 1.0, Qt::white).isNull());
    const QImage dark = icons.Pixmap(QStringLiteral("stop"), 24, 1.0, QColor(10, 20, 30)).toImage();
    // A pixel of the drawn ring.
    EXPECT_EQ(dark.pixelColor(12, 2), QColor(10, 20, 30));
}

} // namespace voxmate::qt
