// What grows with the desktop's font.
#include "qt/widgets/FontScale.h"
#include "qt/forms/ControlPeers.h"
#include "qt/system/QtTray.h"
#include "qt/widgets/MonthCalendar.h"
#include "qt/widgets/ReadableStyle.h"
#include "qt/widgets/Widgets.h"
#include "tests/unit/qt/QtTest.h"

namespace voxmate::qt
{

namespace
{

class FontScaleTest : public QtTest
{
protected:
    ~FontScaleTest() override { QApplication::setFont(before_); }

    static void SetPoints(qreal points)
    {
        QFont font = QApplication::font();
        font.setPointSizeF(points);
        QApplication::setFont(font);
    }

private:
    const QFont before_ = QApplication::font();
};

TEST_F(FontScaleTest, NothingShrinksBelowItsUsualSize)
{
    for (const qreal points : {6.0, 9.0, 10.0}) {
        SetPoints(points);
        EXPECT_DOUBLE_EQ(FontScale(), 1.0) << points;
        EXPECT_EQ(Scaled(24), 24) << points;
        EXPECT_DOUBLE_EQ(TwipsPerPixel(), 15.0) << points;
    }
}

TEST_F(FontScaleTest, SizesGrowAsTheFontDoes)
{
    Button button(windows.Icons(), QStringLiteral("speak"), CommandButton::Role::Act, nullptr);
    MonthCalendar calendar(nullptr);
    const ReadableStyle style;
    SetPoints(10);
    const QSize side = button.sizeHint();
    const int mark = style.pixelMetric(QStyle::PM_IndicatorWidth, nullptr, nullptr);
    SetPoints(30);
    QCoreApplication::processEvents();
    EXPECT_NEAR(FontScale(), 3.0, 0.05);
    EXPECT_NEAR(button.sizeHint().width(), 3 * side.width(), 3);
    EXPECT_GT(calendar.sizeHint().width(), 7 * calendar.fontMetrics().horizontalAdvance(QStringLiteral("00")));
    EXPECT_NEAR(style.pixelMetric(QStyle::PM_IndicatorWidth, nullptr, nullptr), 3 * mark, 2);
    EXPECT_NEAR(ToQFont({"", 11}, QFont()).pointSizeF(), 33, 0.6);
    EXPECT_NEAR(TwipsPerPixel(), 5.0, 0.1);
}

} // namespace

} // namespace voxmate::qt
