// A list in report style as a widget.
#include "controls/ListView.h"
#include "tests/unit/qt/QtTest.h"

#include <QAccessible>
#include <QHeaderView>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTreeView>

namespace voxmate::qt
{

namespace
{

class ListForm : public Form
{
public:
    explicit ListForm(WindowSystem& windows) : Form(windows, "frmList")
    {
        Border = BorderStyle::Sizable;
        lst.SmallIcons = &images;
        lst.AccessibleName = "Reminders";
        lst.FullRowSelect = true;
        lst.PlaceholderText = "Nothing to do yet";
        Arrangement = Item(lst).Min(500, 300);
    }

    ImageList images{this, "images", {{"done", "Done"}, {"pending", "Pending"}}};
    ListView lst{this, "lst", {{"Id", 5}, {"Title", 0}, {"Date", 10}}};
};

class ListTest : public testing::Test
{
protected:
    ListTest() { form.Show(); }

    QTreeView* View() const
    {
        for (QWidget* window : QApplication::topLevelWidgets()) {
            if (window->objectName() == QStringLiteral("frmList") && window->isVisible())
                return window->findChild<QTreeView*>(QStringLiteral("lst"));
        }
        throw std::logic_error("the form has no window");
    }
    void Fill(const std::vector<std::string>& titles)
    {
        for (std::size_t i = 0; i < titles.size(); ++i)
            form.lst.AddItem({std::to_string(i + 1), i == 0 ? 1 : 2, {titles[i], "2004/03/07"}});
        QCoreApplication::processEvents();
    }
    QStringList Shown(int column = 1) const
    {
        QStringList texts;
        for (int row = 0; row < View()->model()->rowCount(); ++row)
            texts.append(View()->model()->index(row, column).data().toString());
        return texts;
    }
    QPoint Middle(int row, int column = 1) const
    {
        return View()->visualRect(View()->model()->index(row, column)).center();
    }
    void Press(int row) { QTest::mouseClick(View()->viewport(), Qt::LeftButton, {}, Middle(row)); }
    void PressHeader(int column)
    {
        QHeaderView* header = View()->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          {header->sectionViewportPosition(column) + 20, header->height() / 2});
    }
    std::vector<std::size_t> Clicks() { return clicks_; }
    void Watch()
    {
        form.lst.ItemClick = [this](std::size_t number) { clicks_.push_back(number); };
    }

    QtApplication& app = App();
    QtWindowSystem windows{VOXMATE_SHARE_DIR};
    ListForm form{windows};
    std::vector<std::size_t> clicks_;
};

using Numbers = std::vector<std::size_t>;

} // namespace

TEST_F(ListTest, AnEmptyListShowsAndTellsWhatToDo)
{
    QCoreApplication::processEvents();
    const QImage empty = View()->viewport()->grab().toImage();
    EXPECT_EQ(View()->accessibleDescription(), QStringLiteral("Nothing to do yet"));
    Fill({"Tea"});
    EXPECT_EQ(View()->accessibleDescription(), QString());
    form.lst.ClearItems();
    QCoreApplication::processEvents();
    EXPECT_EQ(View()->viewport()->grab().toImage(), empty);
    const QColor ground = View()->palette().color(QPalette::Base);
    int inked = 0;
    for (int x = 0; x < empty.width(); ++x) {
        for (int y = 0; y < empty.height(); ++y)
            inked += empty.pixelColor(x, y) != ground ? 1 : 0;
    }
    EXPECT_GT(inked, 100);
}

TEST_F(ListTest, ItemsAreShownInTheirColumnsWithTheirPictures)
{
    Fill({"b", "a"});
    EXPECT_EQ(Shown(0), (QStringList{"1", "2"}));
    EXPECT_EQ(Shown(1), (QStringList{"b", "a"}));
    EXPECT_EQ(Shown(2), (QStringList{"2004/03/07", "2004/03/07"}));
    const QAbstractItemModel& model = *View()->model();
    const auto picture = [&](int row) {
        return model.index(row, 0).data(Qt::DecorationRole).value<QPixmap>().toImage();
    };
    EXPECT_FALSE(picture(0).isNull());
    EXPECT_FALSE(picture(1).isNull());
    EXPECT_NE(picture(0), picture(1));
    EXPECT_EQ(model.headerData(1, Qt::Horizontal).toString(), "Title");
}

TEST_F(ListTest, ManyAdditionsAreShownTogetherOnceTheHandlerHasEnded)
{
    int resets = 0;
    QObject::connect(View()->model(), &QAbstractItemModel::modelReset, View(), [&] { ++resets; });
    for (int i = 0; i < 1000; ++i)
        form.lst.AddItem({std::to_string(i), 2, {"x", "y"}});
    form.lst.ClearItems();
    Fill({"a", "b", "c"});
    EXPECT_EQ(Shown(), (QStringList{"a", "b", "c"}));
    EXPECT_EQ(resets, 1);
}

TEST_F(ListTest, AClickTellsTheItemAndASecondOneTellsItAgain)
{
    Fill({"a", "b", "c"});
    Watch();
    Press(1);
    Press(1);
    Press(2);
    EXPECT_EQ(Clicks(), (Numbers{2, 2, 3}));
    EXPECT_EQ(form.lst.SelectedItem(), 3U);
}

TEST_F(ListTest, ArrowsHomeAndEndTellTheItemsTheyComeTo)
{
    Fill({"a", "b", "c"});
    form.lst.SelectItem(1);
    Watch();
    for (const auto key : {Qt::Key_Down, Qt::Key_End, Qt::Key_Down, Qt::Key_Up, Qt::Key_Home, Qt::Key_Right})
        QTest::keyClick(View(), key);
    EXPECT_EQ(Clicks(), (Numbers{2, 3, 2, 1}));
}

TEST_F(ListTest, WhatTheProgramSelectsIsShownAndTellsNothing)
{
    Fill({"a", "b", "c"});
    Watch();
    form.lst.SelectItem(3);
    EXPECT_EQ(View()->currentIndex().row(), 2);
    EXPECT_TRUE(View()->selectionModel()->isRowSelected(2));
    form.lst.ClearItems();
    Fill({"d", "e"});
    form.lst.SelectItem(2);
    QCoreApplication::processEvents();
    EXPECT_EQ(View()->currentIndex().row(), 1);
    EXPECT_EQ(Clicks(), Numbers{});
}

TEST_F(ListTest, TheKeyboardComingToTheListTellsNothing)
{
    Fill({"a", "b"});
    Watch();
    View()->clearFocus();
    View()->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(Clicks(), Numbers{});
    EXPECT_EQ(form.lst.SelectedItem(), 0U);
    QTest::keyClick(View(), Qt::Key_Down);
    EXPECT_EQ(Clicks(), Numbers{2});
}

TEST_F(ListTest, TheSelectedRowStaysSelectedWhateverIsClickedBesideIt)
{
    Fill({"a", "b"});
    form.lst.SelectItem(1);
    QTest::mouseClick(View()->viewport(), Qt::LeftButton, {}, {100, 250});
    EXPECT_TRUE(View()->selectionModel()->isRowSelected(0));
    QTest::mouseClick(View()->viewport(), Qt::LeftButton, Qt::ControlModifier, Middle(0));
    EXPECT_TRUE(View()->selectionModel()->isRowSelected(0));
    EXPECT_EQ(View()->selectionModel()->selectedRows().size(), 1);
}

TEST_F(ListTest, AHeadersClickIsToldAndTheSortedListShowsItsOrder)
{
    Fill({"b", "C", "a"});
    form.lst.SelectItem(1);
    std::vector<int> columns;
    form.lst.ColumnClick = [&](int column) {
        columns.push_back(column);
        form.lst.Order = form.lst.SortKey == column - 1 ? SortOrder::Descending : SortOrder::Ascending;
        form.lst.SortKey = column - 1;
        form.lst.Sorted = true;
    };
    EXPECT_FALSE(View()->header()->isSortIndicatorShown());
    PressHeader(1);
    QCoreApplication::processEvents();
    EXPECT_EQ(Shown(), (QStringList{"a", "b", "C"}));
    EXPECT_TRUE(View()->header()->isSortIndicatorShown());
    EXPECT_EQ(View()->header()->sortIndicatorSection(), 1);
    EXPECT_EQ(View()->header()->sortIndicatorOrder(), Qt::AscendingOrder);
    PressHeader(1);
    QCoreApplication::processEvents();
    EXPECT_EQ(Shown(), (QStringList{"C", "b", "a"}));
    EXPECT_EQ(View()->header()->sortIndicatorOrder(), Qt::DescendingOrder);
    EXPECT_EQ(columns, (std::vector<int>{2, 2}));
    // The same item stays selected at its new position, and a click reports an item, not a row.
    EXPECT_EQ(View()->currentIndex().row(), 1);
    Watch();
    Press(0);
    EXPECT_EQ(Clicks(), Numbers{2});
}

// The toolkit's cache of pictures remembers each one that it has ever drawn.
TEST_F(ListTest, DrawingARowAgainMakesNoNewPictures)
{
    Fill({"a"});
    form.lst.SelectItem(1);
    const auto icon = [this] {
        struct Delegate : QStyledItemDelegate {
            using QStyledItemDelegate::initStyleOption;
        };
        QStyleOptionViewItem option;
        option.initFrom(View());
        (static_cast<QStyledItemDelegate*>(View()->itemDelegate())->*&Delegate::initStyleOption)(
            &option, View()->model()->index(0, 0));
        return option.icon;
    };
    ASSERT_FALSE(icon().isNull());
    EXPECT_EQ(icon().cacheKey(), icon().cacheKey());
}

TEST_F(ListTest, TwoQuickClicksOnAHeaderAreTwoClicks)
{
    Fill({"a"});
    std::vector<int> columns;
    form.lst.ColumnClick = [&](int column) { columns.push_back(column); };
    const QHeaderView& header = *View()->header();
    const QPoint middle(header.sectionViewportPosition(1) + header.sectionSize(1) / 2, header.height() / 2);
    QTest::mouseClick(header.viewport(), Qt::LeftButton, {}, middle);
    QTest::mouseDClick(header.viewport(), Qt::LeftButton, {}, middle);
    EXPECT_EQ(columns, (std::vector<int>{2, 2}));
}

TEST_F(ListTest, WithoutFullRowSelectOnlyTheFirstColumnIsMarked)
{
    form.lst.FullRowSelect = false;
    Fill({"a", "b"});
    form.lst.SelectItem(2);
    EXPECT_TRUE(View()->selectionModel()->isSelected(View()->model()->index(1, 0)));
    EXPECT_FALSE(View()->selectionModel()->isSelected(View()->model()->index(1, 1)));
    form.lst.FullRowSelect = true;
    form.lst.SelectItem(1);
    EXPECT_TRUE(View()->selectionModel()->isRowSelected(0));
}

TEST_F(ListTest, AScreenReaderHearsTheListsNameAndWhatAnItemsPictureSays)
{
    Fill({"a", "b"});
    EXPECT_EQ(View()->accessibleName(), "Reminders");
    EXPECT_EQ(View()->model()->index(0, 0).data(Qt::AccessibleTextRole).toString(), "1, Done");
    EXPECT_EQ(View()->model()->index(1, 0).data(Qt::AccessibleTextRole).toString(), "2, Pending");
    EXPECT_EQ(View()->model()->index(1, 1).data(Qt::AccessibleTextRole).toString(), "b");
    EXPECT_EQ(View()->model()->index(1, 0).data(Qt::ToolTipRole).toString(), "Pending");
}

TEST_F(ListTest, ATitleThatLooksLikeMarkupIsShownAsItIs)
{
    Fill({"<b>bold</b>"});
    EXPECT_EQ(Shown(), QStringList{"<b>bold</b>"});
    EXPECT_EQ(View()->model()->index(0, 1).data(Qt::ToolTipRole).toString(), "&lt;b&gt;bold&lt;/b&gt;");
}

TEST_F(ListTest, TheLargestListIsShownToItsEndAndReachedByKeys)
{
    for (int i = 1; i <= 32767; ++i)
        form.lst.AddItem({std::to_string(i), 2, {"x", "y"}});
    form.lst.SelectItem(20000);
    QCoreApplication::processEvents();
    EXPECT_EQ(View()->model()->rowCount(), 32767);
    EXPECT_EQ(View()->currentIndex().row(), 19999);
    EXPECT_TRUE(View()->viewport()->rect().contains(View()->visualRect(View()->currentIndex())));
    Watch();
    QTest::keyClick(View(), Qt::Key_End);
    EXPECT_EQ(Clicks(), Numbers{32767});
    EXPECT_EQ(View()->verticalScrollBar()->value(), View()->verticalScrollBar()->maximum());
}

TEST_F(ListTest, AFormMayGoInItsOwnListsClick)
{
    Fill({"a", "b"});
    form.lst.ItemClick = [this](std::size_t) { form.Unload(); };
    Press(1);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(form.IsLoaded());
    form.lst.ItemClick = nullptr;
    form.Show();
    EXPECT_EQ(Shown(), (QStringList{"a", "b"}));
    EXPECT_EQ(View()->currentIndex().row(), 1);
}

TEST_F(ListTest, AListThatIsEmptiedInItsOwnClickShowsNothing)
{
    Fill({"a", "b"});
    form.lst.ItemClick = [this](std::size_t) { form.lst.ClearItems(); };
    Press(1);
    View()->grab();
    QCoreApplication::processEvents();
    EXPECT_EQ(Shown(), QStringList{});
    EXPECT_FALSE(View()->currentIndex().isValid());
}

} // namespace voxmate::qt
