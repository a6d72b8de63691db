// The small calendar as a widget.
#include "controls/MonthView.h"
#include "qt/widgets/MonthCalendar.h"
#include "tests/unit/qt/QtTest.h"

#include <QLocale>

namespace voxmate::qt
{

namespace
{

class MonthForm : public Form
{
public:
    explicit MonthForm(WindowSystem& windows) : Form(windows, "frmMonth")
    {
        mvDate.AccessibleName = "Date";
        mvDate.SetValue({2004, 3, 7});
        Arrangement = Item(mvDate);
    }
    MonthView mvDate{this, "mvDate"};
};

class MonthTest : public testing::Test
{
protected:
    MonthTest()
    {
        form.Show();
        form.mvDate.SelChange = [this] { told.push_back(Date()); };
    }

    MonthCalendar* Calendar() const
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == QStringLiteral("frmMonth") && window->isVisible())
                return static_cast<MonthCalendar*>(window->findChild<QWidget*>(QStringLiteral("mvDate")));
        }
        throw std::logic_error("the form has no window");
    }
    std::string Date() const
    {
        return std::to_string(form.mvDate.Year()) + "-" + std::to_string(form.mvDate.Month()) + "-" +
               std::to_string(form.mvDate.Day());
    }
    QPushButton* Button(const QString& name) const
    {
        for (auto* button : Calendar()->findChildren<QPushButton*>()) {
            if (button->accessibleName() == name && button->isVisible())
                return button;
        }
        return nullptr;
    }
    static QString Long(int year, int month, int day)
    {
        return QLocale().toString(QDate(year, month, day), QLocale::LongFormat);
    }
    void Press(const QString& name)
    {
        ASSERT_NE(Button(name), nullptr) << name.toStdString();
        QTest::mouseClick(Button(name), Qt::LeftButton);
    }
    std::string Checked() const
    {
        std::string names;
        for (const auto* button : Calendar()->findChildren<QPushButton*>()) {
            if (button->isChecked())
                names += button->accessibleName().toStdString() + ";";
        }
        return names;
    }

    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    MonthForm form{windows};
    Happened told;
};

} // namespace

TEST_F(MonthTest, TheDateFromTheProgramIsShownAndToldOnce)
{
    form.mvDate.SetValue({2005, 12, 31});
    EXPECT_EQ(Calendar()->Date(), QDate(2005, 12, 31));
    EXPECT_EQ(Checked(), Long(2005, 12, 31).toStdString() + ";");
    EXPECT_EQ(told, Happened{"2005-12-31"});
}

TEST_F(MonthTest, ADayIsChosenByTheMouseOneOfTheNextMonthToo)
{
    Press(Long(2004, 3, 20));
    Press(Long(2004, 3, 20));
    Press(Long(2004, 4, 1));
    EXPECT_EQ(told, (Happened{"2004-3-20", "2004-4-1"}));
    EXPECT_EQ(Checked(), Long(2004, 4, 1).toStdString() + ";");
}

TEST_F(MonthTest, KeysGoByDaysWeeksMonthsAndYears)
{
    for (const auto& [key, held] :
         {std::pair{Qt::Key_Right, Qt::NoModifier}, std::pair{Qt::Key_Left, Qt::NoModifier},
          std::pair{Qt::Key_Down, Qt::NoModifier}, std::pair{Qt::Key_Up, Qt::NoModifier},
          std::pair{Qt::Key_PageDown, Qt::NoModifier}, std::pair{Qt::Key_PageUp, Qt::NoModifier},
          std::pair{Qt::Key_PageDown, Qt::ControlModifier}, std::pair{Qt::Key_PageUp, Qt::ControlModifier},
          std::pair{Qt::Key_End, Qt::NoModifier}, std::pair{Qt::Key_Home, Qt::NoModifier}})
        QTest::keyClick(Calendar(), key, held);
    EXPECT_EQ(told, (Happened{"2004-3-8", "2004-3-7", "2004-3-14", "2004-3-7", "2004-4-7", "2004-3-7", "2005-3-7",
                              "2004-3-7", "2004-3-31", "2004-3-1"}));
}

TEST_F(MonthTest, AMonthThatIsShorterTakesItsLastDay)
{
    form.mvDate.SetValue({2004, 1, 31});
    QTest::keyClick(Calendar(), Qt::Key_PageDown);
    EXPECT_EQ(Date(), "2004-2-29");
    QTest::keyClick(Calendar(), Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(Date(), "2005-2-28");
}

TEST_F(MonthTest, TheArrowsAndTodayDoWhatTheySay)
{
    Press("Month after");
    Press("Year after");
    Press("Month before");
    Press("Year before");
    EXPECT_EQ(told, (Happened{"2004-4-7", "2005-4-7", "2005-3-7", "2004-3-7"}));
    const QDate today = QDate::currentDate();
    Press("Today, " + QLocale().toString(today, QLocale::LongFormat));
    EXPECT_EQ(Calendar()->Date(), today);
}

TEST_F(MonthTest, TheCalendarEndsWhereItsYearsDo)
{
    form.mvDate.SetValue({9999, 12, 31});
    told.clear();
    QTest::keyClick(Calendar(), Qt::Key_Right);
    QTest::keyClick(Calendar(), Qt::Key_PageDown);
    form.mvDate.SetValue({100, 1, 1});
    told.clear();
    QTest::keyClick(Calendar(), Qt::Key_Left);
    QTest::keyClick(Calendar(), Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(told, Happened{});
    EXPECT_EQ(Date(), "100-1-1");
    EXPECT_EQ(Button(Long(99, 12, 31)), nullptr);
}

TEST_F(MonthTest, TheWeekBeginsAsTheLocaleHasIt)
{
    const QLocale before;
    for (const auto& [locale, first] : {std::pair{QLocale(QLocale::English, QLocale::UnitedStates), QDate(2004, 2, 29)},
                                        std::pair{QLocale(QLocale::German, QLocale::Germany), QDate(2004, 3, 1)}}) {
        QLocale::setDefault(locale);
        form.mvDate.SetValue({2004, 3, 8});
        form.mvDate.SetValue({2004, 3, 7});
        QPushButton* upperLeft = nullptr;
        for (auto* button : Calendar()->findChildren<QPushButton*>()) {
            if (button->isCheckable() && (!upperLeft || button->y() < upperLeft->y() ||
                                          (button->y() == upperLeft->y() && button->x() < upperLeft->x())))
                upperLeft = button;
        }
        ASSERT_NE(upperLeft, nullptr);
        EXPECT_EQ(upperLeft->accessibleName(), QLocale().toString(first, QLocale::LongFormat));
    }
    QLocale::setDefault(before);
}

TEST_F(MonthTest, AScreenReaderHearsItsNameAndTheDate)
{
    EXPECT_EQ(Calendar()->accessibleName(), "Date");
    EXPECT_EQ(Calendar()->accessibleDescription(), Long(2004, 3, 7));
    QTest::keyClick(Calendar(), Qt::Key_Right);
    EXPECT_EQ(Calendar()->accessibleDescription(), Long(2004, 3, 8));
}

TEST_F(MonthTest, AFormMayGoInItsOwnDatesChange)
{
    form.mvDate.SelChange = [this] { form.Unload(); };
    Press(Long(2004, 3, 20));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(form.IsLoaded());
}

} // namespace voxmate::qt
