// The stage's measures, timers, menu and sounds, and its character's window.
#include "tests/fakes/FakeAudioOutput.h"
#include "tests/unit/qt/QtTest.h"

#include "qt/character/QtBalloonWindow.h"
#include "qt/character/QtStage.h"
#include "qt/character/ShapedWindow.h"

#include <QFontDatabase>
#include <QMenu>
#include <QScreen>
#include <QTimer>

namespace voxmate::qt
{

namespace
{

/// The character's visible window; nullptr if there is none.
QWidget* CharacterWidget()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QStringLiteral("Voxmate character") && widget->isVisible())
            return widget;
    }
    return nullptr;
}

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
    fakes::FakeAudioOutput audio;
    QtStage stage{audio};

    /// A blue square of 40 by 40 pixels at (5, 5).
    std::unique_ptr<agent::CharacterWindow> ShownCharacter(std::function<void(Point)> moved = {})
    {
        auto character = stage.CreateCharacterWindow();
        character->Moved = std::move(moved);
        character->SetFrame(
            {{1}, std::make_shared<const Bitmap>(Bitmap{20, 20, std::vector<std::uint32_t>(400, 0xFF0000FF)})},
            {40, 40});
        character->MoveTo({5, 5});
        character->SetVisible(true);
        return character;
    }
};

} // namespace

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
    EXPECT_EQ(audio.openStreams, 1);
    // Two pieces; a third time there is nothing left, which is the end.
    for (int i = 0; i < 3; ++i)
        audio.Play(3);
    EXPECT_EQ(audio.played, samples);
    EXPECT_TRUE(QTest::qWaitFor([this] { return audio.openStreams == 0; }));
}

TEST_F(StageTest, TheEndOfOneSoundDoesNotCutTheNextAndStopSoundDoes)
{
    stage.PlaySound(Wave({1}));
    const auto firstEnds = audio.drained;
    stage.PlaySound(Wave({2}));
    firstEnds();
    QTest::qWait(20);
    EXPECT_EQ(audio.openStreams, 1);
    stage.StopSound();
    EXPECT_EQ(audio.openStreams, 0);
}

// If the sound were awaited, the character's picture would freeze until the sound server answers.

TEST_F(StageTest, ASoundIsLeftOutWhileTheOutputIsNotReady)
{
    audio.state = AudioStatus::NoSupport;
    stage.PlaySound(Wave({1}));
    EXPECT_EQ(audio.openStreams, 0);
    EXPECT_EQ(audio.opens, 0);
    audio.state = AudioStatus::Available;
    stage.PlaySound(Wave({1}));
    EXPECT_EQ(audio.openStreams, 1);
}

TEST_F(StageTest, WhatIsNoWaveFileIsNotPlayed)
{
    stage.PlaySound(std::vector<std::uint8_t>{1, 2, 3});
    EXPECT_EQ(audio.openStreams, 0);
}

TEST_F(StageTest, TheCharacterTakesTheMouseWhileAMessageBoxIsUp)
{
    const auto character = ShownCharacter();
    character->Mouse = [this](const agent::MouseEvent& event) {
        if (event.action == agent::MouseAction::Press)
            happened.push_back("pressed at " + std::to_string(event.at.x) + ", screen " +
                               std::to_string(event.screen.x));
    };
    ASSERT_NE(CharacterWidget(), nullptr);
    QWindow* window = CharacterWidget()->windowHandle();
    QTimer::singleShot(30, &app, [&] {
        QTest::mouseClick(window, Qt::LeftButton, {}, QPoint(10, 12));
        QTest::mouseClick(Window()->windowHandle(), Qt::LeftButton, {}, Find("cmdOk")->mapTo(Window(), QPoint(5, 5)));
        QTimer::singleShot(30, &app, [] { QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return); });
    });
    form.cmdOk.Click = Note("the form took the mouse, too");
    windows.MsgBox("Wait", vbOKOnly, "Voxmate");
    EXPECT_EQ(happened, Happened{"pressed at 10, screen 15"});
}

TEST_F(StageTest, ACharacterThatTheWindowManagerMovedTellsItsRealPlace)
{
    std::vector<Point> told;
    const auto character = ShownCharacter([&told](Point place) { told.push_back(place); });
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
    std::vector<Point> told;
    const auto character = ShownCharacter([&told](Point place) { told.push_back(place); });
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

TEST(ShapeOfTest, CoversExactlyThePixelsThatAreHalfOpaqueOrMore)
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

} // namespace voxmate::qt
