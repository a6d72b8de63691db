// The alert window: every call it makes, tick by tick.
#include "forms/frmAlertWindow.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/ProgramTest.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace voxmate
{

namespace
{

using Lines = std::vector<std::string>;

constexpr std::int32_t Yellow = 0xC0FFFF;
constexpr std::int16_t PreviewId = 9999;

struct Style {
    std::int32_t seconds = 4;
    bool fade = false;
    bool fit = false;
    bool square = true;
    std::int32_t color = Yellow;
    bool tube = false;
};

/// The screen is 1024 x 768 pixels with a panel of 30 at its foot: the work area ends at 11070 twips.
class AlertWindowTest : public ProgramTest
{
protected:
    fakes::FakeMainWindow mainWindow{fake.log};
    frmAlertWindow form{program};

    AlertWindowTest()
    {
        program.Main = &mainWindow;
        AlertSlotMask = 0;
        ReminderFilePath = "C:\\Voxmate\\VoxmateReminders.txt";
        ReminderTempPath = "C:\\Voxmate\\VoxmateReminders.tmp";
    }

    static void Preview(frmAlertWindow& window, const Style& style, const std::string& text = "Tea")
    {
        window.DisplayMessage(text, PreviewId, true, style.seconds, style.fade, style.fit, style.square, style.color,
                              style.tube);
    }
    void Preview(const Style& style, const std::string& text = "Tea") { Preview(form, style, text); }

    Lines Taken()
    {
        Lines taken;
        taken.swap(fake.log);
        return taken;
    }
    /// What the next tick does.
    Lines Tick()
    {
        fake.log.clear();
        form.Timer1.Fire();
        return Taken();
    }
    /// Ticks until the window has gone, 100,000 times at most; how often that was.
    static int TicksUntilGone(frmAlertWindow& window)
    {
        int ticks = 0;
        while (window.IsLoaded() && ticks < 100'000) {
            window.Timer1.Fire();
            ++ticks;
        }
        return ticks;
    }
    void Tick(int times)
    {
        for (int i = 0; i < times; ++i)
            form.Timer1.Fire();
    }
    /// Puts reminders with these titles into the file and the list.
    void Remind(const std::vector<std::string>& titles)
    {
        for (const std::string& title : titles) {
            AppendReminder({title, 7, 3, 2004, 14, 30, "", false});
            LoadReminders(false, 0);
        }
    }
    std::string Marks() const
    {
        std::string marks;
        for (std::size_t i = 1; i < RemDone.size(); ++i)
            marks += RemDone[i];
        return marks;
    }
};

const Lines OnTop{"SetWindowPos -1 0 0 0 0 0x273"};
const Lines NotOnTop{"SetWindowPos -2 0 0 0 0 0x273"};

Lines Transparency(int alpha)
{
    return {"GetWindowLongA -20", "SetWindowLongA -20 0x80000",
            "SetLayeredWindowAttributes 0 " + std::to_string(alpha) + " 2"};
}

/// 255 times `percent` hundredths, halves to the even number.
int Opacity(int percent)
{
    const int whole = 255 * percent / 100;
    const int rest = 255 * percent % 100;
    return rest > 50 || (rest == 50 && whole % 2 == 1) ? whole + 1 : whole;
}

} // namespace

TEST_F(AlertWindowTest, IsMadeAsItIsStored)
{
    EXPECT_EQ(form.Name, "frmAlertWindow");
    EXPECT_EQ(form.Caption, "frmAlert");
    EXPECT_EQ(form.lblMessage.Font.get(), (FontSpec{"Tahoma", 8.25, false}));
    EXPECT_EQ(form.Timer1.Interval.get(), 1);
    EXPECT_TRUE(form.Timer1.Enabled.get());
    EXPECT_FALSE(form.ShowActivated);
}

TEST_F(AlertWindowTest, LoadsBelowTheRightEndOfTheWorkArea)
{
    form.Load();
    EXPECT_EQ(fake.log, (Lines{"GetVersionExA 148", "SystemParametersInfoA 48 0 0"}));
    EXPECT_EQ(form.Left(), 1024 * 15 - 2400);
    EXPECT_EQ(form.Top(), 738 * 15);
    EXPECT_EQ(form.Width(), 2400);
    EXPECT_EQ(form.Height(), 2000);
    EXPECT_EQ(AlertSlotMask, 1);
    EXPECT_FALSE(form.Visible());
}

TEST_F(AlertWindowTest, RoundsTheWorkAreaToWholeTwips)
{
    fake.windows.twipsPerPixel = 12.7;
    fake.windows.twipsPerPixelY = 11.25;
    form.Load();
    EXPECT_EQ(form.Left(), 13005 - 2400); // 13004.8
    EXPECT_EQ(form.Top(), 8302);          // 8302.5
}

TEST_F(AlertWindowTest, ShowsASlidingMessageWithTheseCallsInThisOrder)
{
    Preview({});
    EXPECT_EQ(
        fake.log,
        (Lines{"GetVersionExA 148", "SystemParametersInfoA 48 0 0", "TextHeight Tahoma 8.25 150", "AutoRedraw True",
               "GradientFill 2 (0,0 -256,-256,-256,0) (160,0 -256,-256,-256,0) (160,133 -256,-256,-16384,0) "
               "(0,133 -256,-256,-256,0)  0-1-2 0-2-3",
               "Line 159 132 159 0 0x8000000F", "Line 159 132 0 132 0x8000000F", "Line 159 0 0 0 0x8000000F",
               "Line 0 132 0 0 0x8000000F", "Line 158 131 158 1 0xC0FFFF", "Line 158 131 1 131 0xC0FFFF",
               "Line 158 1 1 1 0xC0FFFF", "Line 1 131 1 1 0xC0FFFF", "Window frmAlertWindow shown",
               "SetWindowPos -1 0 0 0 0 0x273"}));
    for (const WindowHandle window : fake.windows.named)
        EXPECT_EQ(window, form.Handle());
    EXPECT_EQ(form.Top(), 11070);
    EXPECT_TRUE(form.Visible());
    EXPECT_TRUE(form.Timer1.Enabled.get());
}

TEST_F(AlertWindowTest, ShowsAFadingRoundTubeWithTheseCallsInThisOrder)
{
    Preview({.fade = true, .square = false, .color = 0xFFC3A0, .tube = true});
    EXPECT_EQ(fake.log,
              (Lines{"GetVersionExA 148", "SystemParametersInfoA 48 0 0", "TextHeight Tahoma 8.25 150",
                     "GetWindowLongA -20", "SetWindowLongA -20 0x80000", "SetLayeredWindowAttributes 0 0 2",
                     "AutoRedraw True", "GradientFill 1 (0,0 -24576,-15616,-256,0) (160,66 -256,-256,-256,0)  0-1",
                     "GradientFill 1 (0,66 -256,-256,-256,0) (160,133 -24576,-15616,-256,0)  0-1",
                     "ForeColor 0x8000000F", "RoundRect 0 0 159 132 20 20", "ForeColor 0xFFC3A0",
                     "RoundRect 1 1 158 131 18 18", "CreateRoundRectRgn 0 0 160 133 19 19", "SetWindowRgn 55 True",
                     "Window frmAlertWindow shown", "SetWindowPos -1 0 0 0 0 0x273"}));
    EXPECT_EQ(form.Top(), 11070 - 2000);
}

TEST_F(AlertWindowTest, DrawsEveryStyleInItsColoursAndSize)
{
    struct Case {
        std::int32_t color;
        const char* channels;
        const char* hex;
    };
    const Case colors[] = {{0xC0FFFF, "-256,-256,-16384,0", "0xC0FFFF"},
                           {0xFFC3A0, "-24576,-15616,-256,0", "0xFFC3A0"},
                           {0xC8C8FF, "-256,-14336,-14336,0", "0xC8C8FF"},
                           {0xC8FFC8, "-14336,-256,-14336,0", "0xC8FFC8"}};
    const std::string white = "-256,-256,-256,0";
    for (const bool tube : {false, true}) {
        for (const bool square : {false, true}) {
            for (const auto& [color, channels, hex] : colors) {
                SCOPED_TRACE(std::string(tube ? "tube " : "corner ") + (square ? "square " : "round ") + hex);
                frmAlertWindow window(program);
                window.Load();
                fake.log.clear();
                // 10 pixels above the text, its 13 and 15 below it.
                Preview(window, {.fit = true, .square = square, .color = color, .tube = tube});
                Lines expected{"TextHeight Tahoma 8.25 150", "AutoRedraw True"};
                if (tube) {
                    expected.push_back(std::string("GradientFill 1 (0,0 ") + channels + ") (160,19 " + white +
                                       ")  0-1");
                    expected.push_back("GradientFill 1 (0,19 " + white + ") (160,38 " + channels + ")  0-1");
                } else {
                    expected.push_back("GradientFill 2 (0,0 " + white + ") (160,0 " + white + ") (160,38 " + channels +
                                       ") (0,38 " + white + ")  0-1-2 0-2-3");
                }
                if (square) {
                    for (const char* line : {"159 37 159 0 ", "159 37 0 37 ", "159 0 0 0 ", "0 37 0 0 "})
                        expected.push_back(std::string("Line ") + line + "0x8000000F");
                    for (const char* line : {"158 36 158 1 ", "158 36 1 36 ", "158 1 1 1 ", "1 36 1 1 "})
                        expected.push_back(std::string("Line ") + line + hex);
                } else {
                    expected.insert(expected.end(), {"ForeColor 0x8000000F", "RoundRect 0 0 159 37 20 20",
                                                     std::string("ForeColor ") + hex, "RoundRect 1 1 158 36 18 18",
                                                     "CreateRoundRectRgn 0 0 160 38 19 19", "SetWindowRgn 55 True"});
                }
                expected.insert(expected.end(), {"Window frmAlertWindow shown", OnTop[0]});
                EXPECT_EQ(fake.log, expected);
                window.Unload();
            }
        }
    }
}

TEST_F(AlertWindowTest, KeepsEachChannelOfAColourInTheUpperByteOfASignedNumber)
{
    TriVertex vertex{7, 8, 1, 1, 1, 1};
    ColorToVertex(vertex, 0x7F80FF);
    EXPECT_EQ(vertex, (TriVertex{7, 8, -256, -32768, 0x7F00, 0}));
    ColorToVertex(vertex, 0);
    EXPECT_EQ(vertex, (TriVertex{7, 8, 0, 0, 0, 0}));
}

TEST_F(AlertWindowTest, WhatTheSystemCanDrawIsToldByItsVersion)
{
    struct Case {
        bool known;
        std::uint32_t platform;
        std::uint32_t major;
        std::uint32_t minor;
        int level;
    };
    for (const auto& [known, platform, major, minor, level] :
         {Case{true, 1, 4, 0, 0}, Case{true, 1, 4, 9, 0}, Case{true, 1, 4, 10, 1}, Case{true, 1, 4, 90, 1},
          Case{true, 2, 4, 0, 0}, Case{true, 2, 4, 90, 0}, Case{true, 2, 5, 0, 2}, Case{true, 2, 10, 0, 2},
          Case{true, 0, 5, 10, 0}, Case{true, 3, 5, 10, 0}, Case{false, 2, 5, 0, 0}}) {
        SCOPED_TRACE(std::to_string(platform) + " " + std::to_string(major) + "." + std::to_string(minor));
        fake.windows.versionKnown = known;
        fake.windows.platformId = platform;
        fake.windows.majorVersion = major;
        fake.windows.minorVersion = minor;
        for (const bool tube : {false, true}) {
            frmAlertWindow window(program);
            window.Load();
            fake.log.clear();
            Preview(window, {.fade = true, .tube = tube});
            int layered = 0;
            int gradients = 0;
            int plain = 0;
            int kept = 0;
            for (const std::string& call : Taken()) {
                layered += call == "SetLayeredWindowAttributes 0 0 2";
                gradients += call.starts_with("GradientFill");
                plain += call == "BackColor 0xC0FFFF";
                kept += call == "AutoRedraw True";
            }
            EXPECT_EQ(layered, level == 2);
            EXPECT_EQ(gradients, level == 0 ? 0 : tube ? 2 : 1);
            EXPECT_EQ(plain, level == 0);
            EXPECT_EQ(kept, level != 0);
        }
    }
}

TEST_F(AlertWindowTest, AMessageThatClosesByItselfStandsTenPixelsBelowTheEdge)
{
    Preview({.seconds = 1}, "Tea\r\nis ready");
    EXPECT_EQ(form.lblMessage.Caption.get(), "Tea\r\nis ready");
    EXPECT_EQ(form.lblMessage.Place.get(), (Rect{5, 10, 150, 26}));
}

TEST_F(AlertWindowTest, OneThatWaitsForAClickSaysSoAboveTheMessage)
{
    Preview({.seconds = 0});
    EXPECT_EQ(form.lblMessage.Caption.get(), "(CLICK TO CLOSE)\r\n\r\nTea");
    EXPECT_EQ(form.lblMessage.Place.get(), (Rect{5, 5, 150, 39}));
    Tick(5000);
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(form.Top(), 9070);
    form.UserClick();
    EXPECT_EQ(Tick(), NotOnTop);
    EXPECT_EQ(form.Top(), 9120);
}

TEST_F(AlertWindowTest, OneThatIsKeptSaysNothingAndGoesOnlyWhenItIsTold)
{
    Preview({.seconds = -1});
    EXPECT_EQ(form.lblMessage.Caption.get(), "Tea");
    EXPECT_EQ(form.lblMessage.Place.get(), (Rect{5, 5, 150, 13}));
    Tick(5000);
    form.UserClick();
    form.lblMessage.UserClick();
    form.SetCloseActivate(false);
    EXPECT_EQ(Tick(), Lines{});
    EXPECT_EQ(form.Top(), 9070);
    form.SetCloseActivate(true);
    EXPECT_FALSE(form.CloseActivate());
    EXPECT_EQ(Tick(), NotOnTop);
    EXPECT_EQ(form.Top(), 9120);
}

TEST_F(AlertWindowTest, WhileItOnlyWaitsToBeSentAwayItDoesNotTick)
{
    for (const bool fade : {false, true}) {
        for (const bool click : {false, true}) {
            SCOPED_TRACE(std::string(fade ? "fading" : "sliding") + (click ? ", clicked" : ", told"));
            frmAlertWindow window(program);
            Preview(window, {.seconds = click ? 0 : -1, .fade = fade});
            int ticks = 0;
            while (window.Timer1.Enabled && ticks < 1000) {
                window.Timer1.Fire();
                ++ticks;
            }
            // 40 steps up or 50 of transparency, and the tick that finds nothing left to do.
            EXPECT_EQ(ticks, fade ? 51 : 41);
            EXPECT_EQ(window.Top(), 9070);
            window.SetCloseActivate(false);
            EXPECT_FALSE(window.Timer1.Enabled.get());
            if (click)
                window.UserClick();
            else
                window.SetCloseActivate(true);
            EXPECT_TRUE(window.Timer1.Enabled.get());
            EXPECT_EQ(TicksUntilGone(window), fade ? 52 : 51);
            // The next announcement moves again.
            Preview(window, {.seconds = 0, .fade = fade});
            EXPECT_TRUE(window.Timer1.Enabled.get());
        }
    }
}

TEST_F(AlertWindowTest, AClickThatSendsNothingAwayStartsNoTicks)
{
    Preview({.seconds = -1});
    Tick(100);
    form.UserClick();
    form.lblMessage.UserClick();
    EXPECT_FALSE(form.Timer1.Enabled.get());
}

TEST_F(AlertWindowTest, OnlyTheLowestWindowGrowsOrShrinksToItsText)
{
    frmAlertWindow second(program);
    frmAlertWindow unasked(program);
    const std::string text = "1\r\n2\r\n3\r\n4\r\n5\r\n6\r\n7\r\n8\r\n9\r\n10\r\n11\r\n12";
    Preview({.fit = true}, text);
    Preview(second, {.fit = true}, text);
    EXPECT_EQ(form.Height(), (10 + 12 * 13 + 15) * 15);
    EXPECT_EQ(second.Height(), 2000);
    form.Unload();
    Preview(unasked, {.fit = false}, text);
    EXPECT_EQ(unasked.Height(), 2000);
}

TEST_F(AlertWindowTest, FadesInAndOutWithinTheseTicks)
{
    Preview({.fade = true});
    EXPECT_EQ(form.Top(), 11070 - 2000);
    for (int i = 1; i <= 50; ++i)
        EXPECT_EQ(Tick(), Transparency(Opacity(2 * i))) << i;
    for (int i = 1; i < 400; ++i)
        EXPECT_EQ(Tick(), Lines{}) << i;
    for (int i = 1; i <= 50; ++i)
        EXPECT_EQ(Tick(), Transparency(Opacity(100 - 2 * i))) << i;
    EXPECT_EQ(Tick(), Lines{}); // 102 percent
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(Tick(), Lines{"Window frmAlertWindow hidden"});
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_FALSE(form.Visible());
}

TEST_F(AlertWindowTest, OpacityRoundsHalvesToTheEvenNumber)
{
    Preview({.fade = true});
    std::vector<std::string> seen;
    for (int i = 1; i <= 50; ++i)
        seen.push_back(Tick().back());
    // 25.5, 76.5, 127.5, 178.5 and 229.5.
    EXPECT_EQ(seen[4], "SetLayeredWindowAttributes 0 26 2");
    EXPECT_EQ(seen[14], "SetLayeredWindowAttributes 0 76 2");
    EXPECT_EQ(seen[24], "SetLayeredWindowAttributes 0 128 2");
    EXPECT_EQ(seen[34], "SetLayeredWindowAttributes 0 178 2");
    EXPECT_EQ(seen[44], "SetLayeredWindowAttributes 0 230 2");
    EXPECT_EQ(seen[49], "SetLayeredWindowAttributes 0 255 2");
}

TEST_F(AlertWindowTest, FadingKeepsTheWindowsOtherExtendedStyles)
{
    fake.windows.extendedStyle[form.Handle()] = 0x88;
    Preview({.fade = true});
    EXPECT_EQ(fake.windows.extendedStyle[form.Handle()], 0x80088);
}

TEST_F(AlertWindowTest, WithoutTransparencyAFadingWindowStaysAsLongAndSimplyGoes)
{
    fake.windows.platformId = 1;
    fake.windows.majorVersion = 4;
    fake.windows.minorVersion = 10;
    Preview({.seconds = 1, .fade = true});
    EXPECT_EQ(form.Top(), 11070 - 2000);
    fake.log.clear();
    EXPECT_EQ(TicksUntilGone(form), 50 + 100 + 51);
    EXPECT_EQ(fake.log, Lines{"Window frmAlertWindow hidden"});
}

TEST_F(AlertWindowTest, SlidesUpStaysAndSlidesDownWithinTheseTicks)
{
    Preview({.seconds = 1});
    for (int i = 1; i <= 40; ++i) {
        EXPECT_EQ(Tick(), Lines{});
        EXPECT_EQ(form.Top(), 11070 - 50 * i);
    }
    EXPECT_EQ(Tick(), OnTop); // the first of the second's 100 ticks
    for (int i = 2; i < 100; ++i)
        EXPECT_EQ(Tick(), Lines{}) << i;
    EXPECT_EQ(form.Top(), 9070);
    EXPECT_EQ(Tick(), NotOnTop);
    EXPECT_EQ(form.Top(), 9120);
    for (int i = 2; i <= 50; ++i) {
        EXPECT_EQ(Tick(), Lines{});
        EXPECT_EQ(form.Top(), 9070 + 50 * i);
    }
    // 11570 is the first that lies below the screen's 11520.
    EXPECT_EQ(Tick(), Lines{"Window frmAlertWindow hidden"});
    EXPECT_FALSE(form.IsLoaded());
}

TEST_F(AlertWindowTest, HigherWindowsSlideTwiceAsFast)
{
    frmAlertWindow lowest(program);
    Preview(lowest, {.seconds = 0});
    Preview({.seconds = 1});
    Tick(40);
    EXPECT_EQ(form.Top(), 11070 - 4000);
    EXPECT_EQ(Tick(), OnTop);
    Tick(99);
    EXPECT_EQ(form.Top(), 7170);
}

TEST_F(AlertWindowTest, AStepPastThePlaceIsTakenBack)
{
    Preview({.fit = true}); // 38 pixels: 570 twips
    Tick(12);
    EXPECT_EQ(form.Top(), 11070 - 600);
    EXPECT_EQ(Tick(), OnTop);
    EXPECT_EQ(form.Top(), 11070 - 570);
}

TEST_F(AlertWindowTest, AWindowHigherThanTheWorkAreaStopsAtTheScreensTop)
{
    fake.windows.workArea.bottom = 100;
    Preview({});
    Tick(30);
    EXPECT_EQ(form.Top(), 0);
    EXPECT_EQ(Tick(), OnTop);
    EXPECT_EQ(form.Top(), 0);
    frmAlertWindow fading(program);
    Preview(fading, {.fade = true});
    EXPECT_EQ(fading.Top(), 0);
}

TEST_F(AlertWindowTest, AClickWhileItSlidesInTurnsItRoundAtOnce)
{
    Preview({});
    Tick(10);
    form.lblMessage.UserClick();
    EXPECT_EQ(Tick(), Lines{}); // it has not been held on top yet
    EXPECT_EQ(form.Top(), 11070 - 500 + 50);
    EXPECT_EQ(TicksUntilGone(form), 19 + 1); // 10620 to 11570
}

TEST_F(AlertWindowTest, AClickWhileItFadesInTurnsItRoundAtOnce)
{
    Preview({.fade = true});
    Tick(10);
    form.UserClick();
    EXPECT_EQ(Tick(), Transparency(Opacity(18)));
    EXPECT_EQ(TicksUntilGone(form), 9 + 1 + 1); // to 100, 102 and gone
}

TEST_F(AlertWindowTest, AClickWhileItStandsThereSendsItAwayAndAnotherChangesNothing)
{
    Preview({.seconds = 999});
    Tick(60);
    form.lblMessage.UserClick();
    EXPECT_EQ(Tick(), NotOnTop);
    form.UserClick();
    EXPECT_EQ(Tick(), Lines{});
    EXPECT_EQ(TicksUntilGone(form), 48 + 1);
}

TEST_F(AlertWindowTest, NineWindowsTakeEightPlacesAndTheLastTwoLieOnOneAnother)
{
    fake.windows.workArea.bottom = 1200;
    std::vector<std::unique_ptr<frmAlertWindow>> windows;
    std::vector<std::int32_t> tops;
    std::vector<int> masks;
    for (int i = 0; i < 9; ++i) {
        windows.push_back(std::make_unique<frmAlertWindow>(program));
        Preview(*windows.back(), {.fade = true});
        tops.push_back(windows.back()->Top());
        masks.push_back(AlertSlotMask);
    }
    EXPECT_EQ(tops, (std::vector<std::int32_t>{16000, 14000, 12000, 10000, 8000, 6000, 4000, 2000, 2000}));
    EXPECT_EQ(masks, (std::vector<int>{0x01, 0x03, 0x07, 0x0F, 0x1F, 0x3F, 0x7F, 0xFF, 0xFF}));

    // The first of the two in place 8 frees it, the second takes it again, though nobody stands there.
    windows[7]->Unload();
    EXPECT_EQ(AlertSlotMask, 0x7F);
    windows[8]->Unload();
    EXPECT_EQ(AlertSlotMask, 0xFF);

    // The lowest free place is taken first.
    windows[4]->Unload();
    windows[1]->Unload();
    EXPECT_EQ(AlertSlotMask, 0xED);
    Preview(*windows[8], {.fade = true});
    EXPECT_EQ(windows[8]->Top(), 14000);
    Preview(*windows[7], {.fade = true});
    EXPECT_EQ(windows[7]->Top(), 8000);
    EXPECT_EQ(AlertSlotMask, 0xFF);
}

TEST_F(AlertWindowTest, APreviewLeavesTheReminderFileAlone)
{
    Remind({"Call", "Bank"});
    fake.files.log = &fake.log;
    form.DisplayMessage("Call", 1, true, 1, true, true, true, Yellow, false);
    fake.log.clear();
    TicksUntilGone(form);
    EXPECT_EQ(Marks(), "NN");
    EXPECT_EQ(fake.log.back(), "Window frmAlertWindow hidden");
    for (const std::string& call : fake.log)
        EXPECT_EQ(call.find("File"), std::string::npos) << call;
    EXPECT_EQ(AlertSlotMask, 0);
}

TEST_F(AlertWindowTest, TheReminderItHasShownIsMarkedWhenItGoes)
{
    Remind({"Call", "Bank", "Dentist"});
    form.DisplayMessage("Bank", 2, false, 1, true, true, true, Yellow, false);
    Tick(50 + 100 + 50);
    EXPECT_EQ(Marks(), "NNN");
    EXPECT_EQ(AlertSlotMask, 1);
    Tick(1);
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(Marks(), "NYN");
    EXPECT_EQ(AlertSlotMask, 0);
    // What the file holds, not only what is in memory.
    LoadReminders(false, 0);
    EXPECT_EQ(Marks(), "NYN");
    EXPECT_EQ(RemTitles[2], "Bank");
}

TEST_F(AlertWindowTest, WithdrawnItGoesWithoutMarkingItsReminder)
{
    Remind({"Call", "Bank"});
    form.DisplayMessage("Bank", 2, false, 0, true, true, true, Yellow, false);
    Tick(50 + 10);
    EXPECT_FALSE(form.Timer1.Enabled);
    form.Withdraw();
    EXPECT_TRUE(form.Timer1.Enabled);
    EXPECT_EQ(TicksUntilGone(form), 52);
    EXPECT_EQ(Marks(), "NN");
    EXPECT_EQ(AlertSlotMask, 0);
    // The next announcement is marked as ever.
    form.DisplayMessage("Call", 1, false, 1, true, true, true, Yellow, false);
    TicksUntilGone(form);
    EXPECT_EQ(Marks(), "YN");
}

TEST_F(AlertWindowTest, AReminderThatIsNoLongerThereIsNotMarked)
{
    Remind({"Call"});
    form.DisplayMessage("Bank", 2, false, 1, true, true, true, Yellow, false);
    form.Unload();
    EXPECT_EQ(Marks(), "N");
    EXPECT_EQ(fake.windows.boxes.size(), 0U);
}

TEST_F(AlertWindowTest, AFailedSaveIsToldAndTheWindowGoesAllTheSame)
{
    Remind({"Call"});
    fake.files.failures.emplace("OpenRandom " + ReminderTempPath + " 128", DiskFull());
    form.DisplayMessage("Call", 1, false, 1, true, true, true, Yellow, false);
    TicksUntilGone(form);
    ASSERT_EQ(fake.windows.boxes.size(), 1U);
    EXPECT_EQ(fake.windows.boxes[0].title, "Voxmate - Reminders");
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(Marks(), "Y"); // kept in memory until it can be saved
    EXPECT_EQ(AlertSlotMask, 0);
}

TEST_F(AlertWindowTest, AWindowThatHasGoneComesAgainAsANewOne)
{
    Preview({.seconds = -1, .fade = true});
    form.SetCloseActivate(true);
    TicksUntilGone(form);
    fake.windows.workArea.bottom = 700;
    fake.windows.versionKnown = false;
    fake.log.clear();
    Preview({.seconds = 1}, "Bank");
    EXPECT_EQ(std::count(fake.log.begin(), fake.log.end(), "BackColor 0xC0FFFF"), 1);
    EXPECT_EQ(form.Top(), 10500);
    EXPECT_EQ(form.lblMessage.Caption.get(), "Bank");
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(AlertSlotMask, 1);
    EXPECT_EQ(TicksUntilGone(form), 40 + 100 + 61); // 8500 to 11550 below the screen's 11520, and gone
}

TEST_F(AlertWindowTest, OneThatIsDoneAwayWithGivesItsPlaceBackAndMarksNothing)
{
    Remind({"Call"});
    {
        frmAlertWindow window(program);
        window.DisplayMessage("Call", 1, false, 1, true, true, true, Yellow, false);
        EXPECT_EQ(AlertSlotMask, 1);
    }
    EXPECT_EQ(AlertSlotMask, 0);
    EXPECT_EQ(Marks(), "N");
}

} // namespace voxmate
