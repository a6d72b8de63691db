// What of the program's windows must not be covered, and when that is told.
#include "qt/alerts/PlacedWindow.h"
#include "qt/character/ShapedWindow.h"
#include "qt/system/QtWindowPlaces.h"
#include "tests/unit/qt/QtTest.h"

#include <QMenuBar>
#include <QTabWidget>

#include <algorithm>
#include <optional>
#include <vector>

namespace voxmate::qt
{

namespace
{

class WindowPlacesTest : public QtTest
{
protected:
    WindowPlacesTest()
    {
        QTest::qWait(50);
        places.Changed = Note("changed");
    }
    /// The entry of that window; nothing when there is none.
    std::optional<WindowPlace> Of(const QWidget& window)
    {
        for (const WindowPlace& place : places.Windows()) {
            if (place.Id == reinterpret_cast<std::uintptr_t>(&window))
                return place;
        }
        return {};
    }
    static Rect OnScreen(const QWidget& widget)
    {
        const QPoint at = widget.mapToGlobal(QPoint(0, 0));
        return {at.x(), at.y(), widget.width(), widget.height()};
    }
    bool Counts(const char* name)
    {
        const std::optional<WindowPlace> place = Of(*Window());
        return place && std::ranges::count(place->Controls, OnScreen(*Find(name))) == 1;
    }

    QtWindowPlaces places;
};

} // namespace

TEST_F(WindowPlacesTest, WhatIsUsedOrReadCounts)
{
    for (const char* name :
         {"txtText", "cmdSpeak", "cmdOk", "txtName", "lblPitch", "scrPitch", "chkWhisper", "comEngine"})
        EXPECT_TRUE(Counts(name)) << name;
}

TEST_F(WindowPlacesTest, WhatOnlyHoldsOthersDoesNot)
{
    EXPECT_FALSE(Counts("Frame1"));
    const QMenuBar* menus = Window()->findChild<QMenuBar*>();
    ASSERT_TRUE(menus);
    const std::vector<Rect> controls = Of(*Window())->Controls;
    const int menusHeight = menus->height();
    EXPECT_EQ(std::ranges::count(controls, OnScreen(*menus)), 0) << "the bar's empty part";
    EXPECT_EQ(std::ranges::count_if(
                  controls, [&](const Rect& rect) { return rect.y < menus->mapToGlobal(QPoint(0, menusHeight)).y(); }),
              1)
        << "its only menu";
}

TEST_F(WindowPlacesTest, WhatIsHiddenDoesNotCount)
{
    Find("cmdOk")->hide();
    EXPECT_FALSE(Counts("cmdOk"));
    QWidget* const window = Window();
    window->hide();
    EXPECT_FALSE(Of(*window));
}

TEST_F(WindowPlacesTest, AnAlertCountsAsAWhole)
{
    PlacedWindow alert;
    alert.Place({300, 200, 160, 133});
    alert.Display();
    const std::optional<WindowPlace> place = Of(alert);
    ASSERT_TRUE(place);
    EXPECT_TRUE(place->Alert);
    EXPECT_EQ(place->Controls, (std::vector<Rect>{{300, 200, 160, 133}}));
    EXPECT_FALSE(Of(*Window())->Alert);
}

TEST_F(WindowPlacesTest, TellsOfAnAlertAtOnce)
{
    PlacedWindow alert;
    alert.Place({300, 200, 160, 133});
    QTest::qWait(20);
    happened.clear();
    alert.Display();
    EXPECT_EQ(happened, Happened{"changed"});
}

TEST_F(WindowPlacesTest, TellsThatAWindowTurnsToAnotherTab)
{
    QTabWidget tabs;
    tabs.addTab(new QWidget, QStringLiteral("One"));
    tabs.addTab(new QWidget, QStringLiteral("Two"));
    tabs.show();
    QTest::qWait(50);
    const int before = Of(tabs)->Page;
    happened.clear();
    tabs.setCurrentIndex(1);
    QTest::qWait(20);
    EXPECT_EQ(happened, Happened{"changed"});
    EXPECT_NE(Of(tabs)->Page, before);
}

TEST_F(WindowPlacesTest, TheCharacterMenusAndTipsDoNotCount)
{
    ShapedWindow character(QString::fromLatin1(CharacterTitle));
    character.Display(true);
    QWidget list(nullptr, Qt::Popup);
    list.show();
    QWidget tip(nullptr, Qt::ToolTip);
    tip.show();
    EXPECT_FALSE(Of(character));
    EXPECT_FALSE(Of(list));
    EXPECT_FALSE(Of(tip));
}

TEST_F(WindowPlacesTest, TellsOnceOfSeveralChangesOfAWindow)
{
    Window()->move(40, 50);
    Window()->resize(Window()->size() + QSize(10, 10));
    EXPECT_EQ(happened, Happened{});
    QTest::qWait(20);
    EXPECT_EQ(happened, Happened{"changed"});
    happened.clear();
    Window()->hide();
    QTest::qWait(20);
    EXPECT_EQ(happened, Happened{"changed"});
}

TEST_F(WindowPlacesTest, DoesNotTellOfTheCharactersWay)
{
    ShapedWindow character(QString::fromLatin1(CharacterTitle));
    character.Display(true);
    QTest::qWait(50);
    happened.clear();
    character.Place({30, 40});
    QTest::qWait(20);
    EXPECT_EQ(happened, Happened{});
    character.Display(false);
    QTest::qWait(20);
    EXPECT_EQ(happened, Happened{"changed"});
}

} // namespace voxmate::qt
