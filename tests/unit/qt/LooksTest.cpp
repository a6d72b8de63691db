// Drawings are visible and readable in light and dark themes, and no window cuts off its content.
#include "forms/frmAbout.h"
#include "forms/frmMain.h"
#include "forms/frmOptions.h"
#include "forms/frmReminder.h"
#include "forms/frmShowRem.h"
#include "forms/frmSplash.h"
#include "forms/frmTip.h"
#include "modules/Program.h"
#include "qt/widgets/ReadableStyle.h"
#include "tests/fakes/FakeMainWindow.h"
#include "tests/fakes/FakePlatform.h"
#include "tests/unit/qt/QtTest.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QFontInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QStyleOptionMenuItem>
#include <QTabBar>
#include <QTimer>
#include <QTreeView>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace voxmate::qt
{

namespace
{

/// The colours a desktop gives the toolkit, before the style changes them.
struct Theme {
    const char* name;
    QColor window, button, base, text, disabled, selection, selected;
};

const Theme Themes[] = {
    {"light", "#efefef", "#efefef", "#ffffff", "#000000", "#bebebe", "#308cc6", "#ffffff"},
    {"dark", "#31363b", "#31363b", "#232629", "#eff0f1", "#62666b", "#3daee9", "#eff0f1"},
    {"black", "#000000", "#1a1a1a", "#000000", "#ffffff", "#303030", "#800080", "#ffffff"},
    {"pale", "#d6d2d0", "#dddfe4", "#ffffff", "#333333", "#b4b0ae", "#7ac0f0", "#000000"},
    {"stone", "#d6d2d0", "#dfdcd9", "#ffffff", "#000000", "#bebebe", "#308cc6", "#ffffff"},
};

QPalette PaletteOf(const Theme& theme)
{
    QPalette palette(theme.text, theme.button, Qt::white, Qt::black, Qt::gray, theme.text, Qt::white, theme.base,
                     theme.window);
    palette.setColor(QPalette::Highlight, theme.selection);
    palette.setColor(QPalette::HighlightedText, theme.selected);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, theme.disabled);
    ReadableStyle().polish(palette);
    return palette;
}

class LooksTest : public ::testing::TestWithParam<Theme>
{
protected:
    QtApplication& app = App();
    const QPalette palette = PaletteOf(GetParam());

    /// The widget, without focus, in the middle of a window, drawn at `ratio` pixels to a unit.
    QImage Picture(QWidget& widget, qreal ratio) const
    {
        widget.setAttribute(Qt::WA_DontShowOnScreen);
        widget.setPalette(palette);
        widget.resize(widget.sizeHint().expandedTo({60, 24}));
        widget.show();
        QImage image((QSizeF(widget.size() + QSize(20, 20)) * ratio).toSize(), QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(palette.color(QPalette::Window));
        QPainter painter(&image);
        widget.render(&painter, QPoint(10, 10));
        painter.end();
        widget.hide();
        return image;
    }
    /// The strongest contrast with the window on the way from outside to inside the widget's left edge, at half its
    /// height.
    static qreal EdgeContrast(const QImage& image)
    {
        const int ratio = qRound(image.devicePixelRatio());
        const int y = image.height() / 2;
        const QColor window = image.pixelColor(0, y);
        qreal most = 1;
        for (int x = 0; x < 13 * ratio; ++x)
            most = std::max(most, Contrast(image.pixelColor(x, y), window));
        return most;
    }
};

std::string NameOf(const ::testing::TestParamInfo<Theme>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Of, LooksTest, ::testing::ValuesIn(Themes), NameOf);

/// Names the parts of a window that are smaller than their content or not all within their parent.
std::string Cut(const QWidget& window)
{
    std::string cut;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const auto* button = qobject_cast<const QAbstractButton*>(widget);
        const bool counts = label || button || qobject_cast<const QTabBar*>(widget) ||
                            qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QComboBox*>(widget) ||
                            qobject_cast<const QGroupBox*>(widget);
        if (!counts || !widget->isVisible() || (label && label->movie()))
            continue;
        QSize needed = widget->minimumSizeHint();
        if (label && label->wordWrap())
            needed = {0, label->heightForWidth(label->width())};
        else if (button && button->objectName().isEmpty()) // a calendar's button, which has no edge
            needed = button->fontMetrics().size(0, button->text());
        if (widget->width() < needed.width() || widget->height() < needed.height() ||
            !widget->parentWidget()->rect().contains(widget->geometry()))
            cut += (!widget->objectName().isEmpty() ? widget->objectName()
                    : button                        ? button->text()
                                                    : widget->accessibleName())
                       .toStdString() +
                   ' ';
    }
    return cut;
}

/// The visible window of a form.
QWidget* WindowOf(const char* name)
{
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->objectName() == QLatin1String(name) && window->isVisible())
            return window;
    }
    throw std::logic_error(std::string("no window ") + name);
}

} // namespace

TEST(ContrastTest, IsThatOfTheGuidelines)
{
    EXPECT_NEAR(Contrast(Qt::black, Qt::white), 21, 0.001);
    EXPECT_NEAR(Contrast(QColor("#767676"), Qt::white), 4.54, 0.005);
    EXPECT_NEAR(Contrast(Qt::white, QColor("#767676")), 4.54, 0.005);
    EXPECT_DOUBLE_EQ(Contrast(Qt::red, Qt::red), 1);
}

TEST(ContrastTest, AColourMovesNoFurtherThanItMust)
{
    EXPECT_EQ(Readable(Qt::black, Qt::white, {QColor(Qt::white)}, 4.5), QColor(Qt::black));
    const QColor mended = Readable(QColor("#cccccc"), Qt::black, {QColor(Qt::white)}, 4.5);
    EXPECT_GE(Contrast(mended, Qt::white), 4.5);
    EXPECT_LT(Contrast(mended, Qt::white), 4.8);
    EXPECT_EQ(Readable(QColor("#808080"), QColor("#909090"), {QColor("#808080")}, 4.5), QColor("#909090"));
}

TEST_P(LooksTest, WhatIsReadHasAContrastOfFourAndAHalf)
{
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const auto color = [&](QPalette::ColorRole role) { return palette.color(group, role); };
        EXPECT_GE(Contrast(color(QPalette::PlaceholderText), color(QPalette::Base)), 4.5);
        EXPECT_LT(Contrast(color(QPalette::PlaceholderText), color(QPalette::Base)),
                  Contrast(color(QPalette::Text), color(QPalette::Base)));
        EXPECT_GE(Contrast(color(QPalette::HighlightedText), color(QPalette::Highlight)), 4.5);
    }
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        const QColor disabled = palette.color(QPalette::Disabled, role);
        EXPECT_GE(Contrast(disabled, palette.color(QPalette::Window)), 2.5);
        EXPECT_LT(Contrast(disabled, palette.color(QPalette::Window)), 4.5);
    }
}

TEST_P(LooksTest, WhatIsFilledInOrPressedHasAnOutlineThatCanBeSeen)
{
    QCheckBox check;
    QRadioButton option;
    QLineEdit line;
    QPlainTextEdit text;
    QTreeView list;
    QSpinBox number;
    QComboBox choice;
    QPushButton button;
    button.setAutoDefault(false);
    // The program's own drop-down lists are set so: their open lists scroll.
    choice.setStyleSheet(QStringLiteral("combobox-popup: 0"));
    for (QWidget* widget :
         std::initializer_list<QWidget*>{&check, &option, &line, &text, &list, &number, &choice, &button}) {
        for (const qreal ratio : {1.0, 2.0})
            EXPECT_GE(EdgeContrast(Picture(*widget, ratio)), 3) << widget->metaObject()->className() << " at " << ratio;
    }
}

TEST_P(LooksTest, SoHasWhatIsInAFrameWithATitle)
{
    QGroupBox frame(QStringLiteral("Shape"));
    QVBoxLayout column(&frame);
    QCheckBox check;
    QRadioButton option;
    for (QWidget* widget : std::initializer_list<QWidget*>{&check, &option})
        column.addWidget(widget);
    const QImage image = Picture(frame, 1);
    for (const QWidget* widget : std::initializer_list<QWidget*>{&check, &option}) {
        // Picture draws the frame at (10, 10).
        const QPoint middle = widget->geometry().center() + QPoint(10, 10);
        const int left = widget->x() + 10;
        const QColor ground = image.pixelColor(left - 3, middle.y());
        qreal most = 1;
        for (int x = left - 3; x < left + 10; ++x)
            most = std::max(most, Contrast(image.pixelColor(x, middle.y()), ground));
        EXPECT_GE(most, 3) << widget->metaObject()->className();
    }
}

TEST_P(LooksTest, AMenusFrameAndRulesCanBeSeen)
{
    QMenu menu;
    menu.addAction(QStringLiteral("One"));
    menu.addSeparator();
    menu.addAction(QStringLiteral("Two"));
    menu.setPalette(palette);
    menu.resize(menu.sizeHint());
    QImage image(menu.size(), QImage::Format_RGB32);
    menu.render(&image);
    const QColor ground = image.pixelColor(8, 4);
    EXPECT_GE(Contrast(image.pixelColor(0, image.height() / 2), ground), 3);
    qreal rule = 1;
    for (int y = image.height() / 2 - 4; y < image.height() / 2 + 4; ++y)
        rule = std::max(rule, Contrast(image.pixelColor(8, y), ground));
    EXPECT_GE(rule, 1.8);
}

TEST(WindowsTest, NoWindowCutsWhatItHoldsWhateverTheFontsSize)
{
    QtApplication& app = App();
    const QFont usual = app.font();
    for (const double size : {1.0, 1.5}) {
        QFont font = usual;
        font.setPointSizeF(usual.pointSizeF() * size);
        app.setFont(font);
        fakes::FakePlatform fake;
        fakes::FakeMainWindow main(fake.log);
        QtWindowSystem windows{VOXMATE_SHARE_DIR};
        Platform platform{fake.store, fake.agent,   fake.speech, windows,
                          fake.files, fake.process, fake.clock,  fake.word};
        Program program(platform);
        program.Main = &main;
        fake.StoreDefaults();
        LoadSettings(program);
        const auto check = [&](
                               const char* name, const std::function<void()>& each = [] {}) {
            QCoreApplication::processEvents();
            for (QWidget* window : QApplication::topLevelWidgets()) {
                if (window->objectName() == QLatin1String(name) && window->isVisible()) {
                    each();
                    EXPECT_EQ(Cut(*window), "") << name << " at " << size;
                    return;
                }
            }
            ADD_FAILURE() << "no window " << name;
        };
        {
            frmMain form(program);
            form.Show();
            check("frmMain");
        }
        program.Main = &main;
        {
            frmOptions form(program);
            form.Show();
            for (int tab = 0; tab < 4; ++tab) {
                form.SSTab1.Tab = tab;
                check("frmOptions");
            }
        }
        {
            frmTip form(program);
            form.Show();
            check("frmTip");
        }
        {
            frmAbout form(program);
            form.Show();
            check("frmAbout");
        }
        {
            frmReminder form(program);
            form.Show();
            check("frmReminder");
        }
        {
            frmShowRem form(program);
            form.ShowNotice({"Missed Reminder", 1, "Call the bank", "03/07/26", "09:05", "About the new card"});
            check("frmShowRem");
        }
        {
            frmSplash form(program);
            form.Show();
            check("frmSplash");
        }
    }
    app.setFont(usual);
}

using Lines = std::vector<std::string>;

/// The most frequent colour and the font of every visible widget of a window.
Lines LooksOf(QWidget& window)
{
    QCoreApplication::processEvents();
    Lines looks;
    for (QWidget* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->objectName().isEmpty() || widget->size().isEmpty())
            continue;
        const QImage image = widget->grab().toImage();
        std::map<QRgb, int> pixels;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x)
                ++pixels[image.pixel(x, y)];
        }
        const auto most = std::max_element(pixels.begin(), pixels.end(),
                                           [](const auto& a, const auto& b) { return a.second < b.second; });
        looks.push_back(widget->objectName().toStdString() + ' ' + QColor(most->first).name().toStdString() + ' ' +
                        widget->font().family().toStdString() + ' ' + std::to_string(widget->font().pointSizeF()));
    }
    return looks;
}

/// Shows each of the program's windows and passes it to `look`.
void ShowEach(Program& program, const std::function<void(const char* name)>& look)
{
    const auto show = [&](auto& form) {
        form.Show();
        look(form.Name.c_str());
    };
    frmMain main(program);
    show(main);
    frmOptions options(program);
    show(options);
    frmTip tip(program);
    show(tip);
    frmAbout about(program);
    show(about);
    frmReminder editor(program);
    show(editor);
    frmShowRem notice(program);
    notice.ShowNotice({"Missed Reminder", 1, "Call the bank", "03/07/26", "09:05", "About the new card"});
    look("frmShowRem");
    frmSplash splash(program);
    show(splash);
}

// The toolkit keeps a note of each picture that it has drawn, so these must not be new ones each time.
TEST(StyleTest, StandardIconsAreTheSameEachTimeAndSpacersInHeadingsAreNotDrawn)
{
    App();
    ReadableStyle style;
    for (const auto icon : {QStyle::SP_DirIcon, QStyle::SP_FileIcon, QStyle::SP_FileDialogToParent}) {
        ASSERT_FALSE(style.standardIcon(icon, nullptr, nullptr).isNull());
        EXPECT_EQ(style.standardIcon(icon, nullptr, nullptr).cacheKey(),
                  style.standardIcon(icon, nullptr, nullptr).cacheKey());
    }
    const auto drawn = [&style](const QSize& size) {
        QPixmap red(size);
        red.fill(Qt::red);
        QStyleOptionHeader header;
        header.rect = QRect(0, 0, 100, 30);
        header.icon = QIcon(red);
        QImage image(100, 30, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        style.drawControl(QStyle::CE_HeaderLabel, &header, &painter, nullptr);
        painter.end();
        QImage white(image.size(), image.format());
        white.fill(Qt::white);
        return image != white;
    };
    EXPECT_TRUE(drawn({16, 16}));
    EXPECT_FALSE(drawn({16, 1}));
}

// A window that is open while the desktop's theme and font change looks afterwards like one opened later.
TEST(WindowsTest, EveryOpenWindowFollowsAChangeOfColoursAndFont)
{
    QtApplication& app = App();
    const QFont usual = app.font();
    const QPalette before = app.palette();
    QFont font(QStringLiteral("DejaVu Serif"));
    font.setPointSizeF(usual.pointSizeF() * 1.5);
    ASSERT_NE(QFontInfo(font).family(), QFontInfo(usual).family());
    const auto change = [&](bool there) {
        app.setPalette(there ? PaletteOf(Themes[1]) : before);
        app.setFont(there ? font : usual);
        QCoreApplication::processEvents();
    };
    fakes::FakePlatform fake;
    fakes::FakeMainWindow main(fake.log);
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    Platform platform{fake.store, fake.agent, fake.speech, windows, fake.files, fake.process, fake.clock, fake.word};
    Program program(platform);
    program.Main = &main;
    fake.StoreDefaults();
    LoadSettings(program);
    std::map<std::string, Lines> fresh;
    std::map<std::string, std::string> cut; ///< with this font, fields for few characters count as cut
    change(true);
    ShowEach(program, [&](const char* name) {
        fresh[name] = LooksOf(*WindowOf(name));
        cut[name] = Cut(*WindowOf(name));
    });
    change(false);
    ShowEach(program, [&](const char* name) {
        EXPECT_NE(LooksOf(*WindowOf(name)), fresh[name]) << name << " tells nothing apart";
        change(true);
        QWidget* window = WindowOf(name);
        EXPECT_TRUE(QTest::qWaitFor([&] { return Cut(*window) == cut[name]; }, 2000))
            << name << ": " << Cut(*window) << "instead of " << cut[name];
        EXPECT_EQ(LooksOf(*window), fresh[name]) << name;
        change(false);
    });
}

TEST(WindowsTest, TheTipBeginsOnTheButtonThatEnterPressesAndEnterClosesIt)
{
    App();
    fakes::FakePlatform fake;
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    Platform platform{fake.store, fake.agent, fake.speech, windows, fake.files, fake.process, fake.clock, fake.word};
    Program program(platform);
    frmTip form(program);
    form.Show();
    QWidget* window = WindowOf("frmTip");
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    const auto* ok = window->findChild<QPushButton*>(QStringLiteral("cmdOK"));
    EXPECT_TRUE(ok->hasFocus());
    EXPECT_TRUE(ok->isDefault());
    QTest::keyClick(window->windowHandle(), Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !form.IsShown(); }));
}

// With a large font the main window is wider than the numbers of an icon's mouse messages.
TEST(WindowsTest, ThePointerOverTheMainWindowPopsUpNothingAndShowsNothing)
{
    QtApplication& app = App();
    const QFont usual = app.font();
    int widest = 0;
    for (const int size : {9, 14, 18}) {
        QFont font = usual;
        font.setPointSize(size);
        app.setFont(font);
        fakes::FakePlatform fake;
        fakes::FakeMainWindow main(fake.log);
        QtWindowSystem windows{VOXMATE_SHARE_DIR};
        Platform platform{fake.store, fake.agent,   fake.speech, windows,
                          fake.files, fake.process, fake.clock,  fake.word};
        Program program(platform);
        program.Main = &main;
        {
            frmMain form(program);
            form.Show();
            QWidget* window = WindowOf("frmMain");
            widest = std::max(widest, window->width());
            int popUps = 0;
            QTimer closer;
            QObject::connect(&closer, &QTimer::timeout, [&popUps] {
                if (QWidget* popUp = QApplication::activePopupWidget()) {
                    ++popUps;
                    popUp->close();
                }
            });
            closer.start(1);
            for (int y = 0; y < window->height(); ++y) {
                for (int x = WM_LBUTTONDBLCLK - 1; x < std::min(window->width(), WM_RBUTTONUP + 2); ++x)
                    QTest::mouseMove(window->windowHandle(), QPoint(x, y));
            }
            EXPECT_EQ(popUps, 0) << "at " << size << " points, " << window->width() << " pixels";
        }
    }
    app.setFont(usual);
    EXPECT_GT(widest, WM_RBUTTONUP) << "no window was wide enough for the test";
}

TEST(WindowsTest, TheTipHasAllTheWidthBesideItsPicture)
{
    App();
    fakes::FakePlatform fake;
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    Platform platform{fake.store, fake.agent, fake.speech, windows, fake.files, fake.process, fake.clock, fake.word};
    Program program(platform);
    frmTip form(program);
    form.Show();
    const auto part = [](const char* name) {
        const QWidget* window = WindowOf("frmTip");
        const auto* widget = window->findChild<QWidget*>(QLatin1String(name));
        return QRect(widget->mapTo(window, QPoint(0, 0)), widget->size());
    };
    const QRect pane = part("Picture1");
    EXPECT_EQ(part("lblTipText").left() - part("imgTip").right() - 1, 14);
    EXPECT_EQ(pane.right() - part("lblTipText").right(), part("imgTip").left() - pane.left());
}

using IconsTest = QtTest;

TEST_F(IconsTest, EveryIconIsThereAndDrawsItsLinesInTheInk)
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
